// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <string>
#include <vector>

namespace stowly::bench {

// A second, independent X client that watches what the window manager has done, so that
// a benchmark can stop its clock when a request has taken effect on the screen rather
// than when our code returned. It never goes through the backend under test.
class DisplayObserver {
public:
    DisplayObserver(); // $DISPLAY; throws std::runtime_error when it cannot connect
    ~DisplayObserver();
    DisplayObserver(const DisplayObserver&) = delete;
    DisplayObserver& operator=(const DisplayObserver&) = delete;

    // _NET_CLIENT_LIST, in its order.
    std::vector<xcb_window_t> clientList();
    // Clients whose WM_CLASS instance or class equals `className` (ASCII case-insensitive).
    std::vector<xcb_window_t> clientsOfClass(const std::string& className);
    // How many of `windows` carry _NET_WM_STATE_HIDDEN.
    int countHidden(const std::vector<xcb_window_t>& windows);

    // Wakes the waits below on every state or structure change of these windows
    // and on every change of the root's properties (the client list).
    void watch(const std::vector<xcb_window_t>& windows);

    // Each returns true when the condition held before the timeout.
    bool waitAllHidden(const std::vector<xcb_window_t>& windows, std::chrono::milliseconds timeout);
    bool waitNoneHidden(const std::vector<xcb_window_t>& windows, std::chrono::milliseconds timeout);
    // Until none of `windows` is in the client list any more.
    bool waitAllGone(const std::vector<xcb_window_t>& windows, std::chrono::milliseconds timeout);
    // Until at least `count` clients of the class are listed and viewable.
    bool waitClientsOfClass(const std::string& className, std::size_t count, std::chrono::milliseconds timeout);

    // Asks the window manager to show these windows again (_NET_ACTIVE_WINDOW, source
    // indication 2, as a pager does) and waits until none is hidden.
    bool restore(const std::vector<xcb_window_t>& windows, std::chrono::milliseconds timeout);

    // Throws away queued events.
    void drain();

private:
    template <typename Pending>
    bool waitUntil(Pending pendingCount, std::chrono::milliseconds timeout);
    std::vector<bool> hiddenFlags(const std::vector<xcb_window_t>& windows);
    xcb_atom_t intern(const char* name);

    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = 0;
    xcb_atom_t m_clientList = 0;
    xcb_atom_t m_state = 0;
    xcb_atom_t m_hidden = 0;
    xcb_atom_t m_activeWindow = 0;
};

} // namespace stowly::bench
