// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ForeignActiveWindow.h"

#include <algorithm>

namespace stowly::x11 {

xcb_window_t ForeignActiveWindow::update(const WindowSnapshot& snapshot, const XConnection& x)
{
    if (!snapshot.connected)
        return XCB_NONE;
    if (snapshot.generation != m_generation) {
        // Window ids of an older connection name nothing any more.
        m_remembered = XCB_NONE;
        m_generation = snapshot.generation;
    }
    auto listed = [&](xcb_window_t id) -> const ClientWindow* {
        if (id == XCB_NONE)
            return nullptr;
        const auto it = std::find_if(snapshot.windows.begin(), snapshot.windows.end(),
                                     [id](const ClientWindow& w) { return w.id == id && !w.vanished; });
        return it == snapshot.windows.end() ? nullptr : &*it;
    };

    const xcb_window_t active = snapshot.activeWindow;
    const ClientWindow* activeClient = listed(active);
    // None, the root, or a window the window manager does not list (it cannot be told
    // apart from one of ours going away) say nothing about which app the user is in.
    const bool saysNothing = activeClient == nullptr;
    const bool ours = activeClient != nullptr && activeClient->pid == m_ownPid;
    if (!saysNothing && !ours) {
        m_remembered = active;
        return active;
    }
    const ClientWindow* remembered = listed(m_remembered);
    if (remembered == nullptr || remembered->pid == m_ownPid || remembered->isMinimized(x)) {
        // Gone, minimized or hidden: that app is no longer the one the user works in.
        m_remembered = XCB_NONE;
        return XCB_NONE;
    }
    return m_remembered;
}

} // namespace stowly::x11
