// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "WindowSnapshot.h"

#include <cstdint>

namespace stowly::x11 {

// Which client window counts as the active one for the app list. Stowly's own windows
// (the panel, the settings window) never do: while one of them holds the focus, and while
// the window manager names no active window (several set _NET_ACTIVE_WINDOW to None or
// to the root as a focused window of ours goes away), the window of another process that
// was active last keeps counting, for as long as it is listed, not minimized and not
// hidden. Any other process's window becoming active replaces it at once.
class ForeignActiveWindow {
public:
    explicit ForeignActiveWindow(std::int32_t ownPid) : m_ownPid(ownPid) {}

    // The window to treat as active in this snapshot, or XCB_NONE. Remembers what the
    // snapshot shows, so call it with snapshots in the order they were taken.
    xcb_window_t update(const WindowSnapshot& snapshot, const XConnection& x);

private:
    std::int32_t m_ownPid;
    xcb_window_t m_remembered = XCB_NONE;
    std::uint64_t m_generation = 0; // of the connection m_remembered belongs to
};

} // namespace stowly::x11
