// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "ProcStat.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace stowly::linuxdesktop {

// Whether the processes asked about again and again (the apps of the workspace) still
// run, and when each started. Each is held by a pidfd: asking whether it runs is one
// poll, and its start time, read once, holds for as long as the pidfd says it runs. A
// pidfd stays bound to the process it was opened for, never to a later one given the
// same pid.
class ProcessLiveness {
public:
    ProcessLiveness() = default;
    ~ProcessLiveness();
    ProcessLiveness(const ProcessLiveness&) = delete;
    ProcessLiveness& operator=(const ProcessLiveness&) = delete;

    // A process has the pid and is not a zombie; with a start time, only the process that
    // started then counts.
    bool isAlive(std::int32_t pid, std::optional<std::uint64_t> startTime = std::nullopt);
    // When the process that now has this pid started (clock ticks after boot), a zombie's
    // too; nullopt when there is none.
    std::optional<std::uint64_t> startTime(std::int32_t pid);
    // Lets go of every other process.
    void keepOnly(const std::vector<std::int32_t>& pids);

    // For tests: reads of /proc/PID/stat since this object was made.
    std::uint64_t statReads() const { return m_statReads; }

private:
    struct Held {
        int pidfd = -1;
        std::uint64_t startTime = 0;
    };
    // The entry for the process that has the pid now, read afresh unless a held pidfd
    // shows it still runs; nullptr when no process has it or it has exited.
    const Held* running(std::int32_t pid, std::optional<ProcStat>* exited);
    void release(std::unordered_map<std::int32_t, Held>::iterator it);

    std::unordered_map<std::int32_t, Held> m_held;
    Held m_unheld; // the answer for a process read without a pidfd
    std::uint64_t m_statReads = 0;
};

} // namespace stowly::linuxdesktop
