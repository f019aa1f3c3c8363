// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "XConnection.h"
#include "platform/Accessibility.h"

#include <vector>

namespace stowly::x11 {

// Requests to the window manager about client windows. Each answers an AXError:
// success, -25202 when the window is gone, -25204 when the X connection is lost.
// Nothing here destroys a window or kills a client.

// When a request to a window known to exist is written to the server. One that first has
// to check the window is written out by that round trip either way.
enum class Delivery {
    now,     // before the call returns
    batched, // left in the connection's buffer: the caller flushes once for many
};

// ICCCM iconify request (what XIconifyWindow sends).
AXError requestIconify(XConnection& x, xcb_window_t window, Delivery delivery = Delivery::now);
// As the close button: EWMH _NET_CLOSE_WINDOW when the window manager supports it,
// else ICCCM WM_DELETE_WINDOW to the window itself.
AXError requestClose(XConnection& x, xcb_window_t window, Delivery delivery = Delivery::now);
// EWMH _NET_ACTIVE_WINDOW for each window in turn (source indication 2), so that the
// last one ends up on top and focused.
AXError requestActivate(XConnection& x, const std::vector<xcb_window_t>& windows);
// Sets or removes our _STOWLY_HIDDEN mark on each window (requests only, no reply).
void setHiddenMark(XConnection& x, const std::vector<xcb_window_t>& windows, bool hidden);

} // namespace stowly::x11
