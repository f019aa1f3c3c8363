// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "KWinAccessGrant.h"
#include "KWinWorkspace.h"
#include "PlasmaWindowManagement.h"
#include "WindowAccessibility.h"

#include <chrono>
#include <optional>

namespace stowly::kwin {

// Accessibility elements over KWin's windows: an application is a pid, a window is a KWin
// uuid read with the app's window list.
class KWinAccessibility : public linuxdesktop::WindowAccessibility {
public:
    KWinAccessibility(KWinWorkspace& workspace, PlasmaWindowManagement& windows)
        : m_workspace(workspace), m_windows(windows)
    {
    }

protected:
    AXError reachable() override;
    AXError windowsOf(std::int32_t pid, AXElementList& windows) override;
    std::string subroleOf(const Window& window) override;
    bool isMinimized(const Window& window) override;
    std::optional<std::string> titleOf(const Window& window) override;
    AXElementRef closeButtonOf(const Window& window) override;
    AXError setMinimized(const Window& window, bool minimized) override;
    AXError press(const CloseButton& button) override;

private:
    KWinWorkspace& m_workspace;
    PlasmaWindowManagement& m_windows;
};

// Trusted means: KWin offered us org_kde_plasma_window_management and the connection lives.
// KWin decides once per connection, from the desktop entries it has read: asking (prompt)
// writes our entry, and the checks that follow open a new connection once KWin can have
// read it (it looks at the disk at most every 1.5 s). A compositor that went away is
// looked for again the same way. Neither happens more than once every two seconds.
class KWinAccessibilityTrust : public AccessibilityTrust {
public:
    KWinAccessibilityTrust(PlasmaWindowManagement& windows, KWinAccessGrant grant = KWinAccessGrant())
        : m_windows(windows), m_grant(std::move(grant))
    {
    }
    bool isProcessTrusted(bool prompt) override;

private:
    using Clock = std::chrono::steady_clock;
    PlasmaWindowManagement& m_windows;
    KWinAccessGrant m_grant;
    std::optional<Clock::time_point> m_grantWrittenAt;
    Clock::time_point m_lastReconnect{};
};

} // namespace stowly::kwin
