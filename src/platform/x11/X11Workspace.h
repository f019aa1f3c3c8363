// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "DesktopEntries.h"
#include "ForeignActiveWindow.h"
#include "ListedApplication.h"
#include "ProcessRoster.h"
#include "ThemedIcons.h"
#include "WindowSnapshot.h"
#include "XConnection.h"
#include "platform/Workspace.h"

#include <chrono>
#include <memory>
#include <unordered_map>

namespace stowly::x11 {

// The running applications of an EWMH desktop: one per process owning client windows.
class X11Workspace : public Workspace, public linuxdesktop::ProcessWindows {
public:
    X11Workspace(XConnection& x, linuxdesktop::ProcessRoster& processes, linuxdesktop::DesktopEntries& entries);

    std::vector<RunningApplicationRef> runningApplications() override;
    RunningApplicationRef runningApplication(std::int32_t processIdentifier) override;
    std::int32_t currentProcessIdentifier() const override;

    // A pass over the process table started: the lookups of that pass share one snapshot.
    void beginProcessPass();

    // Asked of the process roster, which holds each process by a pidfd.
    bool isProcessAlive(std::int32_t pid, std::optional<std::uint64_t> startTime) override
    {
        return m_processes.isRunning(pid, startTime);
    }
    // Requests on the live windows of a process (re-read, not taken from a snapshot).
    bool hideProcess(std::int32_t pid) override;
    bool activateProcess(std::int32_t pid) override;
    bool closeProcessWindows(std::int32_t pid) override;

private:
    struct AppTable {
        std::shared_ptr<const WindowSnapshot> snapshot;
        std::chrono::steady_clock::time_point builtAt; // a reused snapshot may be older
        std::vector<RunningApplicationRef> apps;       // first-listed window order
        linuxdesktop::AppsByPid byPid;
    };

    std::shared_ptr<const AppTable> buildTable(const std::shared_ptr<const WindowSnapshot>& snapshot);
    std::shared_ptr<const AppTable> freshTable();
    std::vector<const ClientWindow*> windowsOf(const WindowSnapshot& snapshot, std::int32_t pid) const;
    std::vector<xcb_window_t> windowIdsOf(const WindowSnapshot& snapshot, std::int32_t pid) const;

    XConnection& m_x;
    linuxdesktop::ProcessRoster& m_processes;
    linuxdesktop::DesktopEntries& m_entries;
    IconCache m_icons;
    linuxdesktop::ThemedIcons m_themedIcons;
    ForeignActiveWindow m_activeWindow;

    bool m_passOpen = false;
    std::shared_ptr<const AppTable> m_passTable;
    linuxdesktop::AppsByPid m_ancestorMemo;
};

} // namespace stowly::x11
