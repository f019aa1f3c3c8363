// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ProcessLiveness.h"

#include "Pidfd.h"

#include <unistd.h>

#include <algorithm>

namespace stowly::linuxdesktop {

ProcessLiveness::~ProcessLiveness()
{
    for (const auto& [pid, held] : m_held)
        ::close(held.pidfd);
}

void ProcessLiveness::release(std::unordered_map<std::int32_t, Held>::iterator it)
{
    ::close(it->second.pidfd);
    m_held.erase(it);
}

const ProcessLiveness::Held* ProcessLiveness::running(std::int32_t pid, std::optional<ProcStat>* exited)
{
    if (pid <= 0)
        return nullptr;
    if (const auto it = m_held.find(pid); it != m_held.end()) {
        if (!hasExited(it->second.pidfd))
            return &it->second;
        // That process has exited; the pid may be another's by now.
        release(it);
    }
    const int pidfd = openPidfd(pid);
    ++m_statReads;
    auto stat = readProcStat(pid);
    const bool read = stat && stat->pid == pid;
    // Read after the pidfd was opened: while the pidfd says it runs, what was read is that
    // process's, not a later one's under the same pid.
    if (!read || stat->isZombie() || (pidfd >= 0 && hasExited(pidfd))) {
        if (pidfd >= 0)
            ::close(pidfd);
        if (exited != nullptr && read)
            *exited = std::move(stat);
        return nullptr;
    }
    if (pidfd < 0) {
        // No pidfd (a kernel before 5.3, or no descriptor left): the read alone answers,
        // every time.
        m_unheld = Held{-1, stat->startTime};
        return &m_unheld;
    }
    return &m_held.emplace(pid, Held{pidfd, stat->startTime}).first->second;
}

bool ProcessLiveness::isAlive(std::int32_t pid, std::optional<std::uint64_t> startTime)
{
    const Held* held = running(pid, nullptr);
    return held != nullptr && (!startTime || held->startTime == *startTime);
}

std::optional<std::uint64_t> ProcessLiveness::startTime(std::int32_t pid)
{
    std::optional<ProcStat> exited;
    if (const Held* held = running(pid, &exited))
        return held->startTime;
    // A zombie keeps its pid until it is reaped: its start time still tells it apart.
    if (exited)
        return exited->startTime;
    return std::nullopt;
}

void ProcessLiveness::keepOnly(const std::vector<std::int32_t>& pids)
{
    for (auto it = m_held.begin(); it != m_held.end();) {
        if (std::find(pids.begin(), pids.end(), it->first) == pids.end()) {
            const auto next = std::next(it);
            release(it);
            it = next;
        } else {
            ++it;
        }
    }
}

} // namespace stowly::linuxdesktop
