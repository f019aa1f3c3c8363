// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "KWinWorkspace.h"

#include "ProcStat.h"

#include <unistd.h>

#include <algorithm>
#include <unordered_map>

namespace stowly::kwin {

namespace {
// A compositor that does not answer within this leaves the list as the last events told.
constexpr int kSyncTimeoutMs = 250;

std::vector<std::string> uuidsOf(const std::vector<PlasmaWindowInfo>& windows)
{
    std::vector<std::string> uuids;
    uuids.reserve(windows.size());
    for (const PlasmaWindowInfo& window : windows)
        uuids.push_back(window.uuid);
    return uuids;
}
} // namespace

// ---- KWinWorkspace ------------------------------------------------------------------------

KWinWorkspace::KWinWorkspace(PlasmaWindowManagement& windows, linuxdesktop::ProcessRoster& processes,
                             linuxdesktop::DesktopEntries& entries, HiddenWindowRecord& hidden)
    : m_windows(windows), m_processes(processes), m_entries(entries), m_hidden(hidden)
{
}

std::int32_t KWinWorkspace::currentProcessIdentifier() const
{
    return static_cast<std::int32_t>(::getpid());
}

std::vector<PlasmaWindowInfo> KWinWorkspace::currentWindows()
{
    m_windows.sync(kSyncTimeoutMs);
    return m_windows.windows();
}

std::vector<PlasmaWindowInfo> KWinWorkspace::windowsOf(std::int32_t pid)
{
    std::vector<PlasmaWindowInfo> own;
    for (PlasmaWindowInfo& window : currentWindows()) {
        if (window.pid == pid)
            own.push_back(std::move(window));
    }
    return own;
}

std::string KWinWorkspace::activeWindow(const std::vector<PlasmaWindowInfo>& windows)
{
    const std::int32_t self = currentProcessIdentifier();
    const auto active = std::find_if(windows.begin(), windows.end(),
                                     [](const PlasmaWindowInfo& w) { return w.has(WindowState::active); });
    if (active != windows.end() && active->pid != self) {
        m_lastForeignActive = active->uuid;
        return m_lastForeignActive;
    }
    // Our own window or none has the focus: the user's window stays the active one while it
    // is still there and on screen.
    const auto previous = std::find_if(windows.begin(), windows.end(),
                                       [&](const PlasmaWindowInfo& w) { return w.uuid == m_lastForeignActive; });
    if (previous == windows.end() || previous->has(WindowState::minimized))
        m_lastForeignActive.clear();
    return m_lastForeignActive;
}

std::vector<RunningApplicationRef> KWinWorkspace::runningApplications()
{
    // The listing ends a pass over the process table.
    m_passOpen = false;
    m_passListedAt.reset();
    m_passApps.clear();
    m_ancestorMemo.clear();
    std::vector<RunningApplicationRef> apps = listApplications();
    // What the user sees is the latest listing; the commands act on those processes.
    m_listed.remember(apps);
    return apps;
}

std::vector<RunningApplicationRef> KWinWorkspace::listApplications()
{
    m_entries.refreshIfChanged();
    const std::vector<PlasmaWindowInfo> windows = currentWindows();
    m_hidden.keepOnly(uuidsOf(windows));
    const std::string active = activeWindow(windows);

    std::vector<std::int32_t> order;
    std::unordered_map<std::int32_t, std::vector<const PlasmaWindowInfo*>> byPid;
    for (const PlasmaWindowInfo& window : windows) {
        if (window.pid <= 0)
            continue; // a window of unknown owner cannot be attributed or acted on
        auto& list = byPid[window.pid];
        if (list.empty())
            order.push_back(window.pid);
        list.push_back(&window);
    }

    std::vector<RunningApplicationRef> apps;
    apps.reserve(order.size());
    for (const std::int32_t pid : order) {
        linuxdesktop::AppRecord state;
        state.pid = pid;
        state.startTime = m_processes.startTime(pid);
        bool allHidden = true;
        for (const PlasmaWindowInfo* window : byPid[pid]) {
            if (!window->has(WindowState::skipTaskbar))
                state.policy = ActivationPolicy::regular;
            if (!(window->has(WindowState::minimized) && m_hidden.contains(window->uuid)))
                allHidden = false;
            if (window->uuid == active)
                state.active = true;
        }
        state.hidden = allHidden;
        for (const PlasmaWindowInfo* window : byPid[pid]) {
            if (window->appId.empty())
                continue;
            const std::optional<std::string> appId = window->appId;
            const std::optional<std::string> resourceName =
                window->resourceName.empty() ? std::nullopt : std::optional<std::string>(window->resourceName);
            const linuxdesktop::DesktopEntries::Hints hints{nullptr, &appId, &appId, &resourceName};
            if (const linuxdesktop::DesktopEntries::Entry* entry = m_entries.match(hints)) {
                state.name = entry->name;
                state.bundleId = entry->id;
                state.icon = m_themedIcons.lookup(entry->icon);
            } else {
                state.name = window->appId;
                state.bundleId = window->appId;
            }
            break;
        }
        // No icon from a desktop entry: the one KWin shows for the app's windows, by image
        // (an X11 window's own) or by theme name.
        for (const PlasmaWindowInfo* window : byPid[pid]) {
            if (state.icon)
                break;
            state.icon = window->icon ? window->icon : m_themedIcons.lookup(window->themedIconName);
        }
        apps.push_back(std::make_shared<linuxdesktop::ListedApplication>(*this, std::move(state)));
    }
    return apps;
}

void KWinWorkspace::beginProcessPass()
{
    m_passOpen = true;
    m_passListedAt.reset();
    m_passApps.clear();
    m_ancestorMemo.clear();
}

RunningApplicationRef KWinWorkspace::runningApplication(std::int32_t pid)
{
    if (pid <= 0)
        return nullptr;
    const auto now = std::chrono::steady_clock::now();
    if (m_passOpen && m_passListedAt && now - *m_passListedAt < kPassListingLifetime)
        return linuxdesktop::owningApplication(pid, m_passApps, m_processes, &m_ancestorMemo);

    linuxdesktop::AppsByPid byPid;
    for (const RunningApplicationRef& app : listApplications())
        byPid.emplace(app->processIdentifier(), app);
    if (!m_passOpen)
        return linuxdesktop::owningApplication(pid, byPid, m_processes);
    m_passApps = std::move(byPid);
    m_passListedAt = now;
    m_ancestorMemo.clear();
    return linuxdesktop::owningApplication(pid, m_passApps, m_processes, &m_ancestorMemo);
}

bool KWinWorkspace::hideProcess(std::int32_t pid)
{
    const auto windows = windowsOf(pid);
    if (windows.empty())
        return false;
    // The record first, so that the app reads "hidden" as soon as KWin minimizes.
    m_hidden.add(uuidsOf(windows));
    bool any = false;
    for (const PlasmaWindowInfo& window : windows)
        any = m_windows.setMinimized(window.uuid, true) || any;
    return any;
}

bool KWinWorkspace::activateProcess(std::int32_t pid)
{
    const auto windows = windowsOf(pid);
    if (windows.empty())
        return false;
    m_hidden.remove(uuidsOf(windows));
    bool any = false;
    for (const PlasmaWindowInfo& window : windows)
        any = m_windows.activate(window.uuid) || any;
    return any;
}

bool KWinWorkspace::closeProcessWindows(std::int32_t pid)
{
    bool any = false;
    for (const PlasmaWindowInfo& window : windowsOf(pid)) {
        if (window.has(WindowState::closeable))
            any = m_windows.close(window.uuid) || any;
    }
    return any;
}

} // namespace stowly::kwin
