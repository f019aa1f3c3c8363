#include "KWinWorkspace.h"

#include "ProcStat.h"
#include "ProcessSignals.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <unordered_map>

namespace stowly::kwin {

namespace {
// A compositor that does not answer within this leaves the list as the last events told.
constexpr int kSyncTimeoutMs = 250;
constexpr int kMaxAncestorDepth = 128;

std::vector<std::string> uuidsOf(const std::vector<PlasmaWindowInfo>& windows)
{
    std::vector<std::string> uuids;
    uuids.reserve(windows.size());
    for (const PlasmaWindowInfo& window : windows)
        uuids.push_back(window.uuid);
    return uuids;
}
} // namespace

// ---- KWinRunningApplication ---------------------------------------------------------

bool KWinRunningApplication::isTerminated() const
{
    return !m_workspace.isProcessAlive(m_state.pid);
}

bool KWinRunningApplication::hide()
{
    return m_workspace.hideProcess(m_state.pid);
}

bool KWinRunningApplication::terminate()
{
    const auto intended = m_workspace.intendedStartTime(m_state.pid, m_state.startTime);
    const auto now = x11::readProcStat(m_state.pid);
    if (!now || now->isZombie() || (intended && now->startTime != *intended))
        return false; // gone, or the pid is another process's by now: not its windows
    if (m_workspace.closeProcessWindows(m_state.pid))
        return true;
    // No window the app could close politely: a termination request it may handle.
    return x11::signalListedProcess(m_state.pid, SIGTERM, intended);
}

bool KWinRunningApplication::forceTerminate()
{
    return x11::signalListedProcess(m_state.pid, SIGKILL,
                                    m_workspace.intendedStartTime(m_state.pid, m_state.startTime));
}

bool KWinRunningApplication::activate(unsigned options)
{
    (void)options; // KWin activates each window; the app's windows all come forward
    return m_workspace.activateProcess(m_state.pid);
}

// ---- KWinWorkspace ------------------------------------------------------------------------

KWinWorkspace::KWinWorkspace(PlasmaWindowManagement& windows, x11::ProcStatusCache& proc,
                             x11::DesktopEntries& entries, HiddenWindowRecord& hidden)
    : m_windows(windows), m_proc(proc), m_entries(entries), m_hidden(hidden)
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

std::optional<std::uint64_t> KWinWorkspace::intendedStartTime(std::int32_t pid,
                                                             std::optional<std::uint64_t> seen) const
{
    const auto listed = m_listedStartTimes.find(pid);
    return listed != m_listedStartTimes.end() ? std::optional<std::uint64_t>(listed->second) : seen;
}

std::vector<RunningApplicationRef> KWinWorkspace::runningApplications()
{
    // The listing ends a pass over the process table.
    m_passOpen = false;
    m_havePassApps = false;
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
        KWinAppState state;
        state.pid = pid;
        if (const auto stat = x11::readProcStat(pid))
            state.startTime = stat->startTime;
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
            const x11::DesktopEntries::Hints hints{nullptr, &appId, &appId, &resourceName};
            if (const x11::DesktopEntries::Entry* entry = m_entries.match(hints)) {
                state.name = entry->name;
                state.bundleId = entry->id;
                state.icon = m_themedIcons.lookup(entry->icon);
            } else {
                state.name = window->appId;
                state.bundleId = window->appId;
            }
            break;
        }
        apps.push_back(std::make_shared<KWinRunningApplication>(*this, std::move(state)));
    }
    m_liveness.keepOnly(order);
    // What the user sees is the latest listing; the commands act on those processes.
    m_listedStartTimes.clear();
    for (const RunningApplicationRef& app : apps) {
        if (const auto start = static_cast<const KWinRunningApplication&>(*app).startTime())
            m_listedStartTimes.emplace(app->processIdentifier(), *start);
    }
    return apps;
}

void KWinWorkspace::beginProcessPass()
{
    m_passOpen = true;
    m_havePassApps = false;
    m_passApps.clear();
}

RunningApplicationRef KWinWorkspace::runningApplication(std::int32_t pid)
{
    if (pid <= 0)
        return nullptr;
    // Within a pass every lookup answers from one reading; outside one, each reads afresh.
    if (!m_passOpen || !m_havePassApps) {
        const bool passOpen = m_passOpen;
        m_passApps = runningApplications();
        m_passOpen = passOpen;
        m_havePassApps = passOpen;
    }
    const std::vector<RunningApplicationRef>& apps = m_passApps;
    std::unordered_map<std::int32_t, RunningApplicationRef> byPid;
    for (const RunningApplicationRef& app : apps)
        byPid.emplace(app->processIdentifier(), app);
    // The app owning windows in this process, else the nearest ancestor that is one, so
    // that helper processes count for their app.
    std::vector<std::int32_t> visited;
    std::int32_t current = pid;
    for (int depth = 0; depth < kMaxAncestorDepth && current > 0; ++depth) {
        if (const auto it = byPid.find(current); it != byPid.end())
            return it->second;
        if (current == 1)
            break;
        visited.push_back(current);
        const std::int32_t parent = m_proc.status(current).ppid;
        if (parent == current || std::find(visited.begin(), visited.end(), parent) != visited.end())
            break;
        current = parent;
    }
    return nullptr;
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
