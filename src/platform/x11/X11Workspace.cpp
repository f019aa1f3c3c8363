// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "X11Workspace.h"

#include "WindowRequests.h"
#include "WindowTypes.h"

#include <unistd.h>

#include <QtGlobal>

#include <algorithm>
#include <unordered_set>

namespace stowly::x11 {

namespace {

// A pass snapshot older than this is not reused, should a pass ever be left open.
constexpr auto kPassSnapshotLifetime = std::chrono::seconds(1);

} // namespace

// ---- X11Workspace -------------------------------------------------------------------

X11Workspace::X11Workspace(XConnection& x, linuxdesktop::ProcessRoster& processes,
                           linuxdesktop::DesktopEntries& entries)
    : m_x(x), m_processes(processes), m_entries(entries), m_activeWindow(static_cast<std::int32_t>(::getpid()))
{
}

std::int32_t X11Workspace::currentProcessIdentifier() const
{
    return static_cast<std::int32_t>(::getpid());
}

void X11Workspace::beginProcessPass()
{
    m_passOpen = true;
    m_passTable.reset();
    m_ancestorMemo.clear();
}

std::shared_ptr<const X11Workspace::AppTable> X11Workspace::freshTable()
{
    m_entries.refreshIfChanged();
    return buildTable(currentWindowSnapshot(m_x, m_icons));
}

std::shared_ptr<const X11Workspace::AppTable>
X11Workspace::buildTable(const std::shared_ptr<const WindowSnapshot>& snapshot)
{
    auto table = std::make_shared<AppTable>();
    table->snapshot = snapshot;
    table->builtAt = std::chrono::steady_clock::now();
    // Stowly's own windows never make an app inactive: see ForeignActiveWindow.
    const xcb_window_t activeWindow = m_activeWindow.update(*snapshot, m_x);
    std::vector<std::int32_t> order;
    std::unordered_map<std::int32_t, std::vector<const ClientWindow*>> windowsByPid;
    for (const ClientWindow& w : snapshot->windows) {
        if (w.vanished || w.pid <= 0)
            continue; // a window of unknown owner cannot be attributed or acted on
        auto& list = windowsByPid[w.pid];
        if (list.empty())
            order.push_back(w.pid);
        list.push_back(&w);
    }
    for (const std::int32_t pid : order) {
        const auto& windows = windowsByPid[pid];
        linuxdesktop::AppRecord state;
        state.pid = pid;
        state.startTime = m_processes.startTime(pid);
        bool allHidden = true;
        for (const ClientWindow* w : windows) {
            if (isRegularAppWindow(m_x, *w))
                state.policy = ActivationPolicy::regular;
            if (!(w->isMinimized(m_x) && w->stowlyHidden))
                allHidden = false;
            if (w->id == activeWindow)
                state.active = true;
            if (!state.icon && w->icon)
                state.icon = w->icon;
        }
        state.hidden = allHidden;
        for (const ClientWindow* w : windows) {
            const linuxdesktop::DesktopEntries::Hints hints{&w->gtkApplicationId, &w->kdeDesktopFile, &w->wmClassClass,
                                                            &w->wmClassInstance};
            if (const linuxdesktop::DesktopEntries::Entry* entry = m_entries.match(hints)) {
                state.name = entry->name;
                state.bundleId = entry->id;
                // No window drew its own icon: the one its desktop entry names.
                if (!state.icon)
                    state.icon = m_themedIcons.lookup(entry->icon);
                break;
            }
        }
        if (!state.name) {
            for (const ClientWindow* w : windows) {
                if (w->wmClassClass) {
                    state.name = w->wmClassClass;
                    state.bundleId = w->wmClassClass;
                    break;
                }
            }
        }
        auto app = std::make_shared<linuxdesktop::ListedApplication>(*this, std::move(state));
        table->apps.push_back(app);
        table->byPid.emplace(pid, app);
    }
    return table;
}

std::vector<RunningApplicationRef> X11Workspace::runningApplications()
{
    std::shared_ptr<const AppTable> table;
    // Within a refresh the process walk came first; its snapshot is the same moment.
    if (m_passOpen && m_passTable && std::chrono::steady_clock::now() - m_passTable->builtAt < kPassSnapshotLifetime)
        table = m_passTable;
    else
        table = freshTable();
    // Only a refresh lists after a pass over the process table: that list is what the
    // panel shows, and what the user's later commands refer to. A command's own lookups
    // come without a pass and leave it alone.
    if (m_passOpen)
        m_listed.remember(table->apps);
    m_passOpen = false;
    m_passTable.reset();
    m_ancestorMemo.clear();
    return table->apps;
}

RunningApplicationRef X11Workspace::runningApplication(std::int32_t pid)
{
    if (pid <= 0)
        return nullptr;
    std::shared_ptr<const AppTable> table;
    if (m_passOpen) {
        if (!m_passTable || std::chrono::steady_clock::now() - m_passTable->builtAt >= kPassSnapshotLifetime) {
            m_passTable = freshTable();
            m_ancestorMemo.clear();
        }
        table = m_passTable;
    } else {
        table = freshTable();
        m_ancestorMemo.clear();
    }

    return linuxdesktop::owningApplication(pid, table->byPid, m_processes, m_passOpen ? &m_ancestorMemo : nullptr);
}

std::vector<const ClientWindow*> X11Workspace::windowsOf(const WindowSnapshot& snapshot, std::int32_t pid) const
{
    std::vector<const ClientWindow*> out;
    for (const ClientWindow& w : snapshot.windows)
        if (!w.vanished && w.pid == pid)
            out.push_back(&w);
    return out;
}

std::vector<xcb_window_t> X11Workspace::windowIdsOf(const WindowSnapshot& snapshot, std::int32_t pid) const
{
    std::vector<xcb_window_t> ids;
    for (const ClientWindow* w : windowsOf(snapshot, pid))
        ids.push_back(w->id);
    return ids;
}

bool X11Workspace::hideProcess(std::int32_t pid)
{
    const auto snapshot = takeWindowSnapshot(m_x, nullptr);
    const auto ids = windowIdsOf(*snapshot, pid);
    if (!snapshot->connected || ids.empty())
        return false;
    // The mark first, so that the state reads "hidden" as soon as the WM iconifies.
    setHiddenMark(m_x, ids, true);
    bool any = false;
    for (const xcb_window_t id : ids)
        any = requestIconify(m_x, id) == kAXErrorSuccess || any;
    return any;
}

bool X11Workspace::activateProcess(std::int32_t pid)
{
    const auto snapshot = takeWindowSnapshot(m_x, nullptr);
    auto ids = windowIdsOf(*snapshot, pid);
    if (!snapshot->connected || ids.empty())
        return false;
    setHiddenMark(m_x, ids, false);
    // Stacking order is bottom to top: the last used window comes last and stays on top.
    const auto& stacking = snapshot->stacking;
    std::stable_sort(ids.begin(), ids.end(), [&](xcb_window_t a, xcb_window_t b) {
        const auto ia = std::find(stacking.begin(), stacking.end(), a);
        const auto ib = std::find(stacking.begin(), stacking.end(), b);
        return ia < ib;
    });
    return requestActivate(m_x, ids) == kAXErrorSuccess;
}

bool X11Workspace::closeProcessWindows(std::int32_t pid)
{
    const auto snapshot = takeWindowSnapshot(m_x, nullptr);
    bool any = false;
    for (const ClientWindow* w : windowsOf(*snapshot, pid))
        if (w->supportsDelete)
            any = requestClose(m_x, w->id) == kAXErrorSuccess || any;
    return any;
}

} // namespace stowly::x11
