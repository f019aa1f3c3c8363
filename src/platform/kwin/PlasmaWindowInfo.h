// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// What KWin tells about one window through org_kde_plasma_window_management: a plain value,
// copied out of the protocol objects so that callers never hold a Wayland proxy.
#pragma once

#include "platform/AppIcon.h"

#include <cstdint>
#include <string>

namespace stowly::kwin {

// The protocol's state bits (org_kde_plasma_window_management.state).
namespace WindowState {
inline constexpr std::uint32_t active = 1u << 0;
inline constexpr std::uint32_t minimized = 1u << 1;
inline constexpr std::uint32_t closeable = 1u << 8;
inline constexpr std::uint32_t minimizable = 1u << 9;
inline constexpr std::uint32_t skipTaskbar = 1u << 12;
inline constexpr std::uint32_t skipSwitcher = 1u << 18;
} // namespace WindowState

struct PlasmaWindowInfo {
    std::string uuid;         // KWin's id for the window, stable for its lifetime
    std::string appId;        // xdg app id, or the X11 class for XWayland windows
    std::string resourceName; // empty before protocol version 16
    std::string title;
    std::string parentUuid;     // the transient parent; empty for a top-level window
    std::int32_t pid = 0;       // 0 when KWin does not know it
    std::uint32_t state = 0;    // WindowState bits
    std::string themedIconName; // the icon theme's name for the window's icon, if it has one
    AppIconRef icon;            // the window's own icon image (get_icon); null until read, or none

    bool has(std::uint32_t bit) const { return (state & bit) != 0; }
    bool isTransient() const { return !parentUuid.empty(); }
};

} // namespace stowly::kwin
