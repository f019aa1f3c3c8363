// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TaskbarHints.h"

#include <QGuiApplication>
#include <QWindow>

#ifdef STOWLY_UI_X11
#include <xcb/xcb.h>

#include <array>
#include <cstdlib>
#include <cstring>
#endif

namespace stowly::TaskbarHints {

#ifdef STOWLY_UI_X11
namespace {

xcb_atom_t internAtom(xcb_connection_t* connection, const char* name)
{
    const xcb_intern_atom_cookie_t cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    if (!reply)
        return XCB_ATOM_NONE;
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
}

} // namespace

void skipTaskbarAndPager(QWindow& window)
{
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection())
        return;
    xcb_connection_t* connection = x11->connection();
    window.create();
    const auto id = static_cast<xcb_window_t>(window.winId());

    const xcb_atom_t state = internAtom(connection, "_NET_WM_STATE");
    const std::array<xcb_atom_t, 2> states{internAtom(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                                           internAtom(connection, "_NET_WM_STATE_SKIP_PAGER")};
    if (state == XCB_ATOM_NONE || states[0] == XCB_ATOM_NONE || states[1] == XCB_ATOM_NONE)
        return;
    // Before mapping, the client owns _NET_WM_STATE; Qt adds its own states to it on show.
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, state, XCB_ATOM_ATOM, 32,
                        static_cast<std::uint32_t>(states.size()), states.data());
    xcb_flush(connection);
}
#else
void skipTaskbarAndPager(QWindow&)
{
    // Other platforms keep tool windows out of their task lists themselves.
}
#endif

} // namespace stowly::TaskbarHints
