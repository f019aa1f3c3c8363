// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/AccessSettings.h"

namespace stowly::x11 {

// The access settings of the X11 backend on a Wayland compositor that offers no window
// management this program speaks: the same settings to open, and the plain fact that only
// the apps running through Xwayland can be reached; the compositor's native windows cannot.
class XwaylandOnlyAccess : public AccessSettings {
public:
    explicit XwaylandOnlyAccess(AccessSettings& x11Settings) : m_x11Settings(x11Settings) {}

    std::optional<std::string> name() override { return m_x11Settings.name(); }
    bool open() override { return m_x11Settings.open(); }
    std::optional<std::string> limitation() override;

private:
    AccessSettings& m_x11Settings;
};

} // namespace stowly::x11
