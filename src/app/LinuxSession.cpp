// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "LinuxSession.h"

#include "KWinPlatform.h"
#include "PlasmaWindowManagement.h"
#include "WaylandConnection.h"
#include "X11Platform.h"
#include "XConnection.h"
#include "XwaylandOnlyAccess.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstdio>

namespace stowly {

namespace {

bool isWaylandSession()
{
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           qEnvironmentVariable("XDG_SESSION_TYPE") == QStringLiteral("wayland");
}

bool isPlasmaSession()
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':')).contains(QStringLiteral("KDE"));
}

} // namespace

void LinuxSession::prepareEnvironment()
{
    if (isWaylandSession() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("xcb"));
}

LinuxSession::LinuxSession()
{
    const bool wayland = isWaylandSession();
    if (wayland) {
        auto kwin = std::make_unique<kwin::KWinPlatform>();
        // On Plasma the backend stays even while KWin withholds the interface: the settings
        // window then shows access as missing, which is the truth there.
        if (kwin->windows().isAdvertised() || (kwin->windows().connection().isConnected() && isPlasmaSession())) {
            m_kwin = std::move(kwin);
            m_windowSystem = WindowSystem::kwin;
            std::fprintf(stderr,
                         "stowly: Wayland session on KWin: windows through org_kde_plasma_window_management%s\n",
                         m_kwin->windows().isGranted() ? "" : " (not granted to this program yet)");
            return;
        }
        std::fprintf(stderr, "stowly: this Wayland compositor offers no window management that Stowly speaks; "
                             "using X11 through Xwayland, which reaches only the apps that run through it\n");
    }
    m_x11 = std::make_unique<x11::X11Platform>();
    if (wayland) {
        Platform& x11 = m_x11->platform();
        m_xwaylandOnlyAccess = std::make_unique<x11::XwaylandOnlyAccess>(x11.accessSettings);
        m_xwaylandOnlyPlatform.emplace(Platform{x11.workspace, x11.accessibility, x11.trust, x11.processTable,
                                                x11.loginItems, x11.urlOpener, x11.preferences, *m_xwaylandOnlyAccess});
    }
}

LinuxSession::~LinuxSession() = default;

Platform& LinuxSession::platform()
{
    if (m_kwin)
        return m_kwin->platform();
    return m_xwaylandOnlyPlatform ? *m_xwaylandOnlyPlatform : m_x11->platform();
}

} // namespace stowly

namespace stowly {

bool LinuxSession::reachesWindowSystem()
{
    return m_kwin ? m_kwin->windows().connection().isConnected() : m_x11->connection().isConnected();
}

} // namespace stowly
