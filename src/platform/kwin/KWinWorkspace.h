#pragma once

#include "DesktopEntries.h"
#include "HiddenWindowRecord.h"
#include "PlasmaWindowManagement.h"
#include "ProcFs.h"
#include "ThemedIcons.h"
#include "platform/Workspace.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace stowly::kwin {

class KWinWorkspace;

// What one refresh says about one process that owns KWin windows.
struct KWinAppState {
    std::int32_t pid = 0;
    ActivationPolicy policy = ActivationPolicy::accessory;
    std::optional<std::string> name;
    std::optional<std::string> bundleId;
    AppIconRef icon;
    bool hidden = false;
    bool active = false;
    std::optional<std::uint64_t> startTime; // of the process, when this state was read
};

class KWinRunningApplication : public RunningApplication {
public:
    KWinRunningApplication(KWinWorkspace& workspace, KWinAppState state)
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
    KWinWorkspace& m_workspace;
    KWinAppState m_state;
};

// The running applications of a KWin Wayland session: one per process that owns windows,
// native Wayland and Xwayland alike (KWin lists both, with their pids).
class KWinWorkspace : public Workspace {
public:
    KWinWorkspace(PlasmaWindowManagement& windows, x11::ProcStatusCache& proc, x11::DesktopEntries& entries,
                  HiddenWindowRecord& hidden);

    std::vector<RunningApplicationRef> runningApplications() override;
    RunningApplicationRef runningApplication(std::int32_t processIdentifier) override;
    std::int32_t currentProcessIdentifier() const override;

    // A pass over the process table started: its lookups share one reading of the windows.
    void beginProcessPass();

    // KWin's windows now: pending events are taken in first (bounded wait).
    std::vector<PlasmaWindowInfo> currentWindows();
    std::vector<PlasmaWindowInfo> windowsOf(std::int32_t pid);

    bool isProcessAlive(std::int32_t pid) { return m_liveness.isAlive(pid); }
    // The start time of the process the last listing showed under pid (what the user acts
    // on), else `seen`: a signal never reaches a process that took the pid over since.
    std::optional<std::uint64_t> intendedStartTime(std::int32_t pid, std::optional<std::uint64_t> seen) const;
    bool hideProcess(std::int32_t pid);
    bool activateProcess(std::int32_t pid);
    bool closeProcessWindows(std::int32_t pid);

private:
    // The window that counts as active: Stowly's own windows (panel, settings) never do, so
    // while one of them has the focus, the window the user was in before keeps it.
    std::string activeWindow(const std::vector<PlasmaWindowInfo>& windows);

    PlasmaWindowManagement& m_windows;
    x11::ProcStatusCache& m_proc;
    x11::DesktopEntries& m_entries;
    HiddenWindowRecord& m_hidden;
    x11::ThemedIcons m_themedIcons;
    x11::ProcessLiveness m_liveness;
    std::string m_lastForeignActive;
    std::unordered_map<std::int32_t, std::uint64_t> m_listedStartTimes;
    bool m_passOpen = false;
    std::vector<RunningApplicationRef> m_passApps;
    bool m_havePassApps = false;
};

} // namespace stowly::kwin
