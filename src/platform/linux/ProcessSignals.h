// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "ProcStat.h"

#include <cstdint>
#include <optional>

namespace stowly::linuxdesktop {

// Why a signal was or was not sent to a process.
enum class SignalVerdict {
    sent,
    gone,        // no such process, or a zombie
    replaced,    // the pid now belongs to a process started after the one we listed
    notAProcess, // pid 0, 1 or negative: the whole group, init, or nonsense
    ownProcess,
    parentProcess,
    ownGroupOrSession, // the leader of our process group or of our session
    otherUser,
    failed, // the kernel refused
};

// Short English reason, for the log.
const char* describeSignalVerdict(SignalVerdict verdict);

// Who we are, as far as choosing whom never to signal goes.
struct SignalSender {
    std::int32_t pid = 0;
    std::int32_t parent = 0;
    std::int32_t group = 0;
    std::int32_t session = 0;
    std::uint32_t uid = 0;

    static SignalSender thisProcess();
};

// What we know about the target just before the signal.
struct SignalTarget {
    std::int32_t pid = 0;
    std::optional<ProcStat> stat; // nullopt: could not be read
    std::optional<std::uint32_t> realUid, effectiveUid;
};

// The decision alone, without any system call: sent means "may be sent".
// `expectedStartTime` is the start time of the process we listed under this pid.
SignalVerdict judgeSignalTarget(const SignalSender& sender, const SignalTarget& target,
                                std::optional<std::uint64_t> expectedStartTime);

// Sends `signal` to pid only when judgeSignalTarget allows it. The process is pinned
// with a pidfd before it is looked at, so that a pid reused between the look and the
// signal cannot receive it (the signal then goes to the pinned, exited process and is
// lost). Where pidfds are missing (kernels before 5.3) plain kill() follows the checks.
SignalVerdict sendSignalGuarded(std::int32_t pid, int signal, std::optional<std::uint64_t> expectedStartTime);

// sendSignalGuarded for a workspace request: a refused signal answers false like any failed
// request, and the log says why (a process that is simply gone is not worth a line).
bool signalListedProcess(std::int32_t pid, int signal, std::optional<std::uint64_t> expectedStartTime);

} // namespace stowly::linuxdesktop
