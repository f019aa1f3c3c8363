// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ListedApplication.h"

#include "ProcStat.h"
#include "ProcessSignals.h"

#include <signal.h>

#include <algorithm>

namespace stowly::linuxdesktop {

namespace {
constexpr int kMaxAncestorDepth = 128;
}

bool ListedApplication::terminate()
{
    const auto intended = m_windows.intendedStartTime(m_record.pid, m_record.startTime);
    const auto now = readProcStat(m_record.pid);
    if (!now || now->isZombie() || (intended && now->startTime != *intended))
        return false; // gone, or the pid is another process's by now: not its windows
    if (m_windows.closeProcessWindows(m_record.pid))
        return true;
    // No window the app could close politely: a termination request it may handle.
    return signalListedProcess(m_record.pid, SIGTERM, intended);
}

bool ListedApplication::forceTerminate()
{
    return signalListedProcess(m_record.pid, SIGKILL, m_windows.intendedStartTime(m_record.pid, m_record.startTime));
}

bool ListedApplication::activate(unsigned options)
{
    (void)options;
    return m_windows.activateProcess(m_record.pid);
}

void ListedStartTimes::remember(const std::vector<RunningApplicationRef>& listed)
{
    m_startTimes.clear();
    for (const RunningApplicationRef& app : listed)
        if (const auto* own = dynamic_cast<const ListedApplication*>(app.get()); own && own->startTime())
            m_startTimes.emplace(own->processIdentifier(), *own->startTime());
}

std::optional<std::uint64_t> ListedStartTimes::intended(std::int32_t pid, std::optional<std::uint64_t> seen) const
{
    const auto listed = m_startTimes.find(pid);
    return listed != m_startTimes.end() ? std::optional<std::uint64_t>(listed->second) : seen;
}

RunningApplicationRef owningApplication(std::int32_t pid, const AppsByPid& apps, ProcessRoster& processes,
                                        AppsByPid* memo)
{
    std::vector<std::int32_t> visited;
    RunningApplicationRef found;
    std::int32_t current = pid;
    for (int depth = 0; depth < kMaxAncestorDepth && current > 0; ++depth) {
        if (memo != nullptr) {
            if (const auto known = memo->find(current); known != memo->end()) {
                found = known->second;
                break;
            }
        }
        visited.push_back(current);
        if (const auto it = apps.find(current); it != apps.end()) {
            found = it->second;
            break;
        }
        if (current == 1)
            break;
        const std::int32_t parent = processes.parent(current);
        if (parent == current || std::find(visited.begin(), visited.end(), parent) != visited.end())
            break;
        current = parent;
    }
    if (memo != nullptr)
        for (const std::int32_t p : visited)
            (*memo)[p] = found;
    return found;
}

} // namespace stowly::linuxdesktop
