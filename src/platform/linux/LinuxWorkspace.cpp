#include "LinuxWorkspace.h"

#include "ProcessSignals.h"
#include "WindowRequests.h"
#include "WindowTypes.h"

#include <signal.h>
#include <unistd.h>

#include <QtGlobal>

#include <algorithm>
#include <unordered_set>

namespace stowly::x11 {

namespace {

// A pass snapshot older than this is not reused, should a pass ever be left open.
constexpr auto kPassSnapshotLifetime = std::chrono::seconds(1);
constexpr int kMaxAncestorDepth = 128;

} // namespace

// ---- LinuxRunningApplication -------------------------------------------------------

bool LinuxRunningApplication::isTerminated() const
{
    return !m_workspace.isProcessAlive(m_state.pid);
}

bool LinuxRunningApplication::hide()
{
    return m_workspace.hideProcess(m_state.pid);
}

bool LinuxRunningApplication::terminate()
{
    const auto intended = m_workspace.intendedStartTime(m_state.pid, m_state.startTime);
    const auto now = readProcStat(m_state.pid);
    if (!now || now->isZombie() || (intended && now->startTime != *intended))
        return false;   // gone, or the pid is another process's by now: not its windows
    if (m_workspace.closeProcessWindows(m_state.pid))
        return true;
    // No window the app could close politely: a termination request it may handle.
    return signalListedProcess(m_state.pid, SIGTERM, intended);
}

bool LinuxRunningApplication::forceTerminate()
{
    return signalListedProcess(m_state.pid, SIGKILL, m_workspace.intendedStartTime(m_state.pid, m_state.startTime));
}

bool LinuxRunningApplication::activate(unsigned options)
{
    (void)options;   // X11 activation always raises every window of the app
    return m_workspace.activateProcess(m_state.pid);
}

// ---- LinuxWorkspace -------------------------------------------------------------------

LinuxWorkspace::LinuxWorkspace(XConnection& x, ProcStatusCache& proc, DesktopEntries& entries)
    : m_x(x), m_proc(proc), m_entries(entries), m_activeWindow(static_cast<std::int32_t>(::getpid()))
{
}

std::int32_t LinuxWorkspace::currentProcessIdentifier() const
{
    return static_cast<std::int32_t>(::getpid());
}

void LinuxWorkspace::beginProcessPass()
{
    m_passOpen = true;
    m_passTable.reset();
    m_ancestorMemo.clear();
}

std::shared_ptr<const LinuxWorkspace::AppTable> LinuxWorkspace::freshTable()
{
    m_entries.refreshIfChanged();
    return buildTable(currentWindowSnapshot(m_x, m_icons));
}

std::shared_ptr<const LinuxWorkspace::AppTable>
LinuxWorkspace::buildTable(const std::shared_ptr<const WindowSnapshot>& snapshot)
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
            continue;   // a window of unknown owner cannot be attributed or acted on
        auto& list = windowsByPid[w.pid];
        if (list.empty())
            order.push_back(w.pid);
        list.push_back(&w);
    }
    for (const std::int32_t pid : order) {
        const auto& windows = windowsByPid[pid];
        AppState state;
        state.pid = pid;
        if (const auto stat = m_liveness.stat(pid))
            state.startTime = stat->startTime;
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
            const DesktopEntries::Hints hints{&w->gtkApplicationId, &w->kdeDesktopFile, &w->wmClassClass,
                                              &w->wmClassInstance};
            if (const DesktopEntries::Entry* entry = m_entries.match(hints)) {
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
        auto app = std::make_shared<LinuxRunningApplication>(*this, std::move(state));
        table->apps.push_back(app);
        table->byPid.emplace(pid, app);
    }
    m_liveness.keepOnly(order);
    return table;
}

std::vector<RunningApplicationRef> LinuxWorkspace::runningApplications()
{
    std::shared_ptr<const AppTable> table;
    // Within a refresh the process walk came first; its snapshot is the same moment.
    if (m_passOpen && m_passTable &&
        std::chrono::steady_clock::now() - m_passTable->builtAt < kPassSnapshotLifetime)
        table = m_passTable;
    else
        table = freshTable();
    // Only a refresh lists after a pass over the process table: that list is what the
    // panel shows, and what the user's later commands refer to. A command's own lookups
    // come without a pass and leave it alone.
    if (m_passOpen) {
        m_listedStartTimes.clear();
        for (const auto& app : table->apps)
            if (const auto start = static_cast<const LinuxRunningApplication&>(*app).startTime())
                m_listedStartTimes.emplace(app->processIdentifier(), *start);
    }
    m_passOpen = false;
    m_passTable.reset();
    m_ancestorMemo.clear();
    return table->apps;
}

std::optional<std::uint64_t> LinuxWorkspace::intendedStartTime(std::int32_t pid,
                                                              std::optional<std::uint64_t> seen) const
{
    const auto listed = m_listedStartTimes.find(pid);
    return listed != m_listedStartTimes.end() ? listed->second : seen;
}

RunningApplicationRef LinuxWorkspace::runningApplication(std::int32_t pid)
{
    if (pid <= 0)
        return nullptr;
    std::shared_ptr<const AppTable> table;
    if (m_passOpen) {
        if (!m_passTable ||
            std::chrono::steady_clock::now() - m_passTable->builtAt >= kPassSnapshotLifetime) {
            m_passTable = freshTable();
            m_ancestorMemo.clear();
        }
        table = m_passTable;
    } else {
        table = freshTable();
        m_ancestorMemo.clear();
    }

    // The app owning windows in this process, else the nearest ancestor that is one, so
    // that helper processes count for their app.
    std::vector<std::int32_t> visited;
    RunningApplicationRef found;
    std::int32_t current = pid;
    for (int depth = 0; depth < kMaxAncestorDepth && current > 0; ++depth) {
        if (const auto memo = m_ancestorMemo.find(current); memo != m_ancestorMemo.end()) {
            found = memo->second;
            break;
        }
        visited.push_back(current);
        if (const auto it = table->byPid.find(current); it != table->byPid.end()) {
            found = it->second;
            break;
        }
        if (current == 1)
            break;
        const std::int32_t parent = m_proc.status(current).ppid;
        if (parent == current || std::find(visited.begin(), visited.end(), parent) != visited.end())
            break;
        current = parent;
    }
    if (m_passOpen)
        for (const std::int32_t p : visited)
            m_ancestorMemo[p] = found;
    return found;
}

std::vector<const ClientWindow*> LinuxWorkspace::windowsOf(const WindowSnapshot& snapshot, std::int32_t pid) const
{
    std::vector<const ClientWindow*> out;
    for (const ClientWindow& w : snapshot.windows)
        if (!w.vanished && w.pid == pid)
            out.push_back(&w);
    return out;
}

std::vector<xcb_window_t> LinuxWorkspace::windowIdsOf(const WindowSnapshot& snapshot, std::int32_t pid) const
{
    std::vector<xcb_window_t> ids;
    for (const ClientWindow* w : windowsOf(snapshot, pid))
        ids.push_back(w->id);
    return ids;
}

bool LinuxWorkspace::hideProcess(std::int32_t pid)
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

bool LinuxWorkspace::activateProcess(std::int32_t pid)
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

bool LinuxWorkspace::closeProcessWindows(std::int32_t pid)
{
    const auto snapshot = takeWindowSnapshot(m_x, nullptr);
    bool any = false;
    for (const ClientWindow* w : windowsOf(*snapshot, pid))
        if (w->supportsDelete)
            any = requestClose(m_x, w->id) == kAXErrorSuccess || any;
    return any;
}

} // namespace stowly::x11
