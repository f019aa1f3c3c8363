// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Platform.h"

#include <memory>
#include <optional>

namespace stowly::x11 {
class X11Platform;
class XwaylandOnlyAccess;
} // namespace stowly::x11
namespace stowly::kwin {
class KWinPlatform;
}

namespace stowly {

// The window system of this Linux session, chosen once at start-up: KWin's window-management
// protocol on a KDE Plasma Wayland session, X11 everywhere else (on another Wayland
// compositor through Xwayland, which shows only the apps that run through it, and the
// settings window says so).
class LinuxSession {
public:
    enum class WindowSystem { x11, kwin };

    // Before the QApplication exists: on Wayland the panel and settings window go through
    // Xwayland, where a window may be placed at the tray icon (unless the user chose a
    // platform through QT_QPA_PLATFORM).
    static void prepareEnvironment();

    // After the QApplication exists.
    LinuxSession();
    ~LinuxSession();
    LinuxSession(const LinuxSession&) = delete;
    LinuxSession& operator=(const LinuxSession&) = delete;

    Platform& platform();
    // The chosen window system answers (an X display, or KWin's Wayland socket).
    bool reachesWindowSystem();
    WindowSystem windowSystem() const { return m_windowSystem; }

private:
    WindowSystem m_windowSystem = WindowSystem::x11;
    std::unique_ptr<kwin::KWinPlatform> m_kwin;
    std::unique_ptr<x11::X11Platform> m_x11;
    // On a Wayland compositor without window management: X11's services with access
    // settings that name the windows out of reach.
    std::unique_ptr<x11::XwaylandOnlyAccess> m_xwaylandOnlyAccess;
    std::optional<Platform> m_xwaylandOnlyPlatform;
};

} // namespace stowly
