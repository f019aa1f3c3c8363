// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

class QWindow;

namespace stowly::TaskbarHints {

// Asks the window manager to leave the window out of taskbars and pagers (EWMH
// _NET_WM_STATE_SKIP_TASKBAR and _NET_WM_STATE_SKIP_PAGER). Window managers drop the
// state when a window is withdrawn, so this goes before every show(). Does nothing
// off X11.
void skipTaskbarAndPager(QWindow& window);

} // namespace stowly::TaskbarHints
