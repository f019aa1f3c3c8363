// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "WindowSnapshot.h"

namespace stowly::x11 {

// The window's EWMH type: the first type in its list that we know, else XCB_NONE
// (untyped). Unknown vendor types before a known one are skipped, as EWMH asks.
xcb_atom_t effectiveWindowType(const XConnection& x, const ClientWindow& window);

// A window that makes its process a regular app: NORMAL, DIALOG or untyped, and not
// asking to be left out of the taskbar.
bool isRegularAppWindow(const XConnection& x, const ClientWindow& window);

} // namespace stowly::x11
