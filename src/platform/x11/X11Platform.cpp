// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "X11Platform.h"

#include "SessionServices.h"
#include "WindowManagerSettings.h"
#include "X11Accessibility.h"
#include "X11Workspace.h"
#include "XConnection.h"

namespace stowly::x11 {

struct X11Platform::Services {
    explicit Services(XConnection& x)
        : workspace(x, shared.roster, shared.desktopEntries), accessibility(x), trust(x), accessSettings(x)
    {
    }

    linuxdesktop::SessionServices shared;
    X11Workspace workspace;
    X11Accessibility accessibility;
    X11AccessibilityTrust trust;
    WindowManagerSettings accessSettings;
};

X11Platform::X11Platform(const std::string& display)
    : m_connection(std::make_unique<XConnection>(display)), m_services(std::make_unique<Services>(*m_connection))
{
    Services& s = *m_services;
    m_platform =
        std::make_unique<Platform>(s.shared.platformWith(s.workspace, s.accessibility, s.trust, s.accessSettings));
}

X11Platform::~X11Platform() = default;

} // namespace stowly::x11
