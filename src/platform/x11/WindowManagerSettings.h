// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "XConnection.h"
#include "platform/AccessSettings.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <string>

namespace stowly::x11 {

// On X11, access to other apps' windows is the window manager's to give (an EWMH window
// manager is running), so what the settings window offers to open is the settings
// program of the running window manager, known by the name on its EWMH check window, or
// else of the desktop named in XDG_CURRENT_DESKTOP. It is offered only when installed.
class WindowManagerSettings : public AccessSettings {
public:
    struct Program {
        std::string title;  // "Openbox Configuration Manager"
        QString executable; // full path
        QStringList arguments;
    };

    explicit WindowManagerSettings(XConnection& x) : m_x(x) {}

    std::optional<std::string> name() override;
    bool open() override;

    // The settings program for a window manager's name (as _NET_WM_NAME on the check
    // window gives it) or, failing that, for the desktops of XDG_CURRENT_DESKTOP
    // (colon-separated); `findExecutable` answers a full path or "" when not installed.
    static std::optional<Program> programFor(const std::optional<std::string>& windowManagerName,
                                             const std::string& currentDesktops,
                                             const std::function<QString(const QString&)>& findExecutable);

private:
    std::optional<Program> resolve();
    std::optional<std::string> runningWindowManagerName();

    XConnection& m_x;
    xcb_window_t m_checkWindow = XCB_NONE; // the name below is this window's
    std::uint64_t m_checkGeneration = 0;
    std::optional<std::string> m_windowManagerName;
};

} // namespace stowly::x11
