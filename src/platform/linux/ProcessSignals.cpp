// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ProcessSignals.h"

#include "Pidfd.h"
#include "ProcFs.h"

#include <QtGlobal>

#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace stowly::linuxdesktop {

namespace {

class Fd {
public:
    explicit Fd(int fd) : m_fd(fd) {}
    ~Fd()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

} // namespace

const char* describeSignalVerdict(SignalVerdict verdict)
{
    switch (verdict) {
    case SignalVerdict::sent: return "sent";
    case SignalVerdict::gone: return "the process has exited";
    case SignalVerdict::replaced: return "the process id now belongs to another process";
    case SignalVerdict::notAProcess: return "not a single user process";
    case SignalVerdict::ownProcess: return "it is Stowly itself";
    case SignalVerdict::parentProcess: return "it started Stowly";
    case SignalVerdict::ownGroupOrSession: return "it leads Stowly's process group or session";
    case SignalVerdict::otherUser: return "it belongs to another user";
    case SignalVerdict::failed: return "the system refused the signal";
    }
    return "unknown";
}

SignalSender SignalSender::thisProcess()
{
    SignalSender s;
    s.pid = static_cast<std::int32_t>(::getpid());
    s.parent = static_cast<std::int32_t>(::getppid());
    s.group = static_cast<std::int32_t>(::getpgrp());
    s.session = static_cast<std::int32_t>(::getsid(0));
    s.uid = static_cast<std::uint32_t>(::getuid());
    return s;
}

SignalVerdict judgeSignalTarget(const SignalSender& sender, const SignalTarget& target,
                                std::optional<std::uint64_t> expectedStartTime)
{
    // kill() reads 0 and negative pids as process groups and -1 as everyone; 1 is init.
    if (target.pid <= 1)
        return SignalVerdict::notAProcess;
    if (target.pid == sender.pid)
        return SignalVerdict::ownProcess;
    if (target.pid == sender.parent)
        return SignalVerdict::parentProcess;
    if (target.pid == sender.group || target.pid == sender.session)
        return SignalVerdict::ownGroupOrSession;
    if (!target.stat || target.stat->pid != target.pid || target.stat->isZombie())
        return SignalVerdict::gone;
    if (expectedStartTime && target.stat->startTime != *expectedStartTime)
        return SignalVerdict::replaced;
    // Without a readable owner we cannot tell whose it is: refuse rather than guess.
    if (!target.realUid || !target.effectiveUid || *target.realUid != sender.uid || *target.effectiveUid != sender.uid)
        return SignalVerdict::otherUser;
    return SignalVerdict::sent;
}

SignalVerdict sendSignalGuarded(std::int32_t pid, int signal, std::optional<std::uint64_t> expectedStartTime)
{
    const SignalSender sender = SignalSender::thisProcess();
    SignalTarget target;
    target.pid = pid;
    // The cheap refusals first: they need no look at the target.
    if (const SignalVerdict early = judgeSignalTarget(sender, target, std::nullopt); early != SignalVerdict::gone)
        return early;

    // Pin first, look second: whatever the look finds is, or was after, the pinned process.
    const Fd pidfd(openPidfd(pid));
    if (pidfd.get() < 0 && errno != ENOSYS && errno != EPERM)
        return SignalVerdict::gone;
    target.stat = readProcStat(pid);
    if (const auto status = readProcFile("/proc/" + std::to_string(pid) + "/status", std::size_t{16} * 1024)) {
        const ProcStatus parsed = parseProcStatus(*status);
        target.realUid = parsed.realUid;
        target.effectiveUid = parsed.effectiveUid;
    }
    const SignalVerdict verdict = judgeSignalTarget(sender, target, expectedStartTime);
    if (verdict != SignalVerdict::sent)
        return verdict;
    const int result = pidfd.get() >= 0 ? sendThroughPidfd(pidfd.get(), signal) : ::kill(pid, signal);
    if (result == 0)
        return SignalVerdict::sent;
    return errno == ESRCH ? SignalVerdict::gone : SignalVerdict::failed;
}

bool signalListedProcess(std::int32_t pid, int signal, std::optional<std::uint64_t> expectedStartTime)
{
    const SignalVerdict verdict = sendSignalGuarded(pid, signal, expectedStartTime);
    if (verdict == SignalVerdict::sent)
        return true;
    if (verdict != SignalVerdict::gone)
        qWarning("Stowly: no signal %d to process %d: %s", signal, static_cast<int>(pid),
                 describeSignalVerdict(verdict));
    return false;
}

} // namespace stowly::linuxdesktop
