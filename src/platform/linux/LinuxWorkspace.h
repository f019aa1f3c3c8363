#pragma once

#include "DesktopEntries.h"
#include "ForeignActiveWindow.h"
#include "ProcFs.h"
#include "ThemedIcons.h"
#include "WindowSnapshot.h"
#include "XConnection.h"
#include "platform/Workspace.h"

#include <chrono>
#include <memory>
#include <unordered_map>

namespace stowly::x11 {

class LinuxWorkspace;

// What a workspace snapshot says about one process that owns client windows.
struct AppState {
    std::int32_t pid = 0;
    ActivationPolicy policy = ActivationPolicy::accessory;
    std::optional<std::string> name;
    std::optional<std::string> bundleId;
    AppIconRef icon;
    bool hidden = false;
    bool active = false;
    std::optional<std::uint64_t> startTime;   // of the process as this snapshot saw it
};

class LinuxRunningApplication : public RunningApplication {
public:
    LinuxRunningApplication(LinuxWorkspace& workspace, AppState state)
        : m_workspace(workspace), m_state(std::move(state)) {}

    std::int32_t processIdentifier() const override { return m_state.pid; }
    bool isTerminated() const override;
    ActivationPolicy activationPolicy() const override { return m_state.policy; }
    std::optional<std::string> localizedName() const override { return m_state.name; }
    std::optional<std::string> bundleIdentifier() const override { return m_state.bundleId; }
    AppIconRef icon() const override { return m_state.icon; }
    bool isHidden() const override { return m_state.hidden; }
    bool isActive() const override { return m_state.active; }
    std::optional<std::uint64_t> startTime() const { return m_state.startTime; }

    bool hide() override;
    bool terminate() override;
    bool forceTerminate() override;
    bool activate(unsigned options) override;

private:
    LinuxWorkspace& m_workspace;
    AppState m_state;
};

// The running applications of an EWMH desktop: one per process owning client windows.
class LinuxWorkspace : public Workspace {
public:
    LinuxWorkspace(XConnection& x, ProcStatusCache& proc, DesktopEntries& entries);

    std::vector<RunningApplicationRef> runningApplications() override;
    RunningApplicationRef runningApplication(std::int32_t processIdentifier) override;
    std::int32_t currentProcessIdentifier() const override;

    // A pass over the process table started: the lookups of that pass share one snapshot.
    void beginProcessPass();

    // processIsAlive through a kept-open /proc/PID/stat of each listed app.
    bool isProcessAlive(std::int32_t pid) { return m_liveness.isAlive(pid); }

    // Requests on the live windows of a process (re-read, not taken from a snapshot).
    bool hideProcess(std::int32_t pid);
    bool activateProcess(std::int32_t pid);
    bool closeProcessWindows(std::int32_t pid);

    // The start time of the process a command for `pid` is meant for: the one the latest
    // refresh listed under that pid, else `seen` (the one the command's own lookup saw).
    // A process started since under a reused pid has a different start time.
    std::optional<std::uint64_t> intendedStartTime(std::int32_t pid, std::optional<std::uint64_t> seen) const;

private:
    struct AppTable {
        std::shared_ptr<const WindowSnapshot> snapshot;
        std::chrono::steady_clock::time_point builtAt;   // a reused snapshot may be older
        std::vector<RunningApplicationRef> apps;   // first-listed window order
        std::unordered_map<std::int32_t, RunningApplicationRef> byPid;
    };

    std::shared_ptr<const AppTable> buildTable(const std::shared_ptr<const WindowSnapshot>& snapshot);
    std::shared_ptr<const AppTable> freshTable();
    std::vector<const ClientWindow*> windowsOf(const WindowSnapshot& snapshot, std::int32_t pid) const;
    std::vector<xcb_window_t> windowIdsOf(const WindowSnapshot& snapshot, std::int32_t pid) const;

    XConnection& m_x;
    ProcStatusCache& m_proc;
    DesktopEntries& m_entries;
    IconCache m_icons;
    ThemedIcons m_themedIcons;
    ProcessLiveness m_liveness;
    ForeignActiveWindow m_activeWindow;

    bool m_passOpen = false;
    std::shared_ptr<const AppTable> m_passTable;
    std::unordered_map<std::int32_t, RunningApplicationRef> m_ancestorMemo;
    // pid -> start time of every app the latest refresh listed.
    std::unordered_map<std::int32_t, std::uint64_t> m_listedStartTimes;
};

} // namespace stowly::x11
