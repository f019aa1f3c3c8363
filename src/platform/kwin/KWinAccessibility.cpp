// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "KWinAccessibility.h"

#include "WaylandConnection.h"

#include <algorithm>
#include <cstdio>

namespace stowly::kwin {

namespace {

struct KWinWindow : linuxdesktop::WindowAccessibility::Window {
    explicit KWinWindow(PlasmaWindowInfo info) : info(std::move(info)) {}
    PlasmaWindowInfo info; // as read with the app's window list
};

struct KWinCloseButton : linuxdesktop::WindowAccessibility::CloseButton {
    explicit KWinCloseButton(std::string uuid) : uuid(std::move(uuid)) {}
    std::string uuid;
};

// Every Window and CloseButton this backend hands out is one of its own.
const PlasmaWindowInfo& infoOf(const linuxdesktop::WindowAccessibility::Window& window)
{
    return static_cast<const KWinWindow&>(window).info;
}

} // namespace

AXError KWinAccessibility::reachable()
{
    return m_windows.isGranted() ? kAXErrorSuccess : kAXErrorCannotComplete;
}

AXError KWinAccessibility::windowsOf(std::int32_t pid, AXElementList& windows)
{
    for (PlasmaWindowInfo& window : m_workspace.windowsOf(pid))
        windows.push_back(std::make_shared<KWinWindow>(std::move(window)));
    return kAXErrorSuccess;
}

std::string KWinAccessibility::subroleOf(const Window& window)
{
    // KWin says which windows have a transient parent; those are the dialogs.
    return infoOf(window).isTransient() ? kAXDialogSubrole : kAXStandardWindowSubrole;
}

bool KWinAccessibility::isMinimized(const Window& window)
{
    return infoOf(window).has(WindowState::minimized);
}

std::optional<std::string> KWinAccessibility::titleOf(const Window& window)
{
    return infoOf(window).title;
}

AXElementRef KWinAccessibility::closeButtonOf(const Window& window)
{
    const PlasmaWindowInfo& info = infoOf(window);
    return info.has(WindowState::closeable) ? std::make_shared<KWinCloseButton>(info.uuid) : nullptr;
}

AXError KWinAccessibility::setMinimized(const Window& window, bool minimized)
{
    if (!m_windows.isGranted())
        return kAXErrorCannotComplete;
    const std::string& uuid = infoOf(window).uuid;
    const bool sent = minimized ? m_windows.setMinimized(uuid, true) : m_windows.activate(uuid);
    // Not in the list any more: the window closed since it was read.
    return sent ? kAXErrorSuccess : kAXErrorInvalidUIElement;
}

AXError KWinAccessibility::press(const CloseButton& button)
{
    if (!m_windows.isGranted())
        return kAXErrorCannotComplete;
    return m_windows.close(static_cast<const KWinCloseButton&>(button).uuid) ? kAXErrorSuccess
                                                                             : kAXErrorInvalidUIElement;
}

bool KWinAccessibilityTrust::isProcessTrusted(bool prompt)
{
    if (m_windows.isGranted())
        return true;
    const Clock::time_point now = Clock::now();
    if (prompt && !m_grant.isWritten()) {
        if (const auto error = m_grant.write())
            std::fprintf(stderr, "stowly: cannot write %s: %s\n", m_grant.entryPath().c_str(), error->c_str());
        else
            m_grantWrittenAt = now;
    }
    // KWin reads its desktop entries again at most every 1.5 s after a change.
    const bool grantReadable = m_grantWrittenAt && now - *m_grantWrittenAt >= std::chrono::milliseconds(1600);
    const bool compositorGone = !m_windows.connection().isConnected();
    if ((grantReadable || compositorGone) && now - m_lastReconnect >= std::chrono::seconds(2)) {
        m_lastReconnect = now;
        m_windows.reconnect();
        // Granted, or KWin did not take the entry (another program's path?): stop asking.
        if (m_windows.isGranted() || (m_grantWrittenAt && now - *m_grantWrittenAt > std::chrono::seconds(12)))
            m_grantWrittenAt.reset();
    }
    return m_windows.isGranted();
}

} // namespace stowly::kwin
