// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "WindowTypes.h"

namespace stowly::x11 {

xcb_atom_t effectiveWindowType(const XConnection& x, const ClientWindow& window)
{
    static constexpr Atom kKnown[] = {
        Atom::NET_WM_WINDOW_TYPE_NORMAL,  Atom::NET_WM_WINDOW_TYPE_DIALOG, Atom::NET_WM_WINDOW_TYPE_UTILITY,
        Atom::NET_WM_WINDOW_TYPE_TOOLBAR, Atom::NET_WM_WINDOW_TYPE_MENU,   Atom::NET_WM_WINDOW_TYPE_SPLASH,
        Atom::NET_WM_WINDOW_TYPE_DESKTOP, Atom::NET_WM_WINDOW_TYPE_DOCK,
    };
    for (const xcb_atom_t type : window.types)
        for (const Atom known : kKnown)
            if (type == x.atom(known))
                return type;
    return XCB_NONE;
}

bool isRegularAppWindow(const XConnection& x, const ClientWindow& window)
{
    const xcb_atom_t type = effectiveWindowType(x, window);
    const bool regularType = type == XCB_NONE || type == x.atom(Atom::NET_WM_WINDOW_TYPE_NORMAL) ||
                             type == x.atom(Atom::NET_WM_WINDOW_TYPE_DIALOG);
    return regularType && !window.hasState(x.atom(Atom::NET_WM_STATE_SKIP_TASKBAR));
}

} // namespace stowly::x11
