// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "DesktopEntries.h"
#include "HiddenWindowRecord.h"
#include "ListedApplication.h"
#include "PlasmaWindowManagement.h"
#include "ProcessRoster.h"
#include "ThemedIcons.h"
#include "platform/Workspace.h"

#include <chrono>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace stowly::kwin {

// The running applications of a KWin Wayland session: one per process that owns windows,
// native Wayland and Xwayland alike (KWin lists both, with their pids).
class KWinWorkspace : public Workspace, public linuxdesktop::ProcessWindows {
public:
    KWinWorkspace(PlasmaWindowManagement& windows, linuxdesktop::ProcessRoster& processes,
                  linuxdesktop::DesktopEntries& entries, HiddenWindowRecord& hidden);

    std::vector<RunningApplicationRef> runningApplications() override;
    RunningApplicationRef runningApplication(std::int32_t processIdentifier) override;
    std::int32_t currentProcessIdentifier() const override;

    // A pass over the process table started: its lookups share one reading of the windows.
    void beginProcessPass();

    // KWin's windows now: pending events are taken in first (bounded wait).
    std::vector<PlasmaWindowInfo> currentWindows();
    std::vector<PlasmaWindowInfo> windowsOf(std::int32_t pid);

    bool isProcessAlive(std::int32_t pid, std::optional<std::uint64_t> startTime) override
    {
        return m_processes.isRunning(pid, startTime);
    }
    bool hideProcess(std::int32_t pid) override;
    bool activateProcess(std::int32_t pid) override;
    bool closeProcessWindows(std::int32_t pid) override;

private:
    // The window that counts as active: Stowly's own windows (panel, settings) never do, so
    // while one of them has the focus, the window the user was in before keeps it.
    std::string activeWindow(const std::vector<PlasmaWindowInfo>& windows);

    PlasmaWindowManagement& m_windows;
    linuxdesktop::ProcessRoster& m_processes;
    linuxdesktop::DesktopEntries& m_entries;
    HiddenWindowRecord& m_hidden;
    linuxdesktop::ThemedIcons m_themedIcons;
    std::string m_lastForeignActive;

    // Within a pass over the process table, every lookup answers from one listing, read
    // at most this long ago; outside a pass, a lookup reads afresh.
    static constexpr auto kPassListingLifetime = std::chrono::seconds(1);
    std::vector<RunningApplicationRef> listApplications();
    bool m_passOpen = false;
    std::optional<std::chrono::steady_clock::time_point> m_passListedAt;
    linuxdesktop::AppsByPid m_passApps;
    linuxdesktop::AppsByPid m_ancestorMemo;
};

} // namespace stowly::kwin
