// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace stowly::testbed {

// A normal window owned by the test process itself, on its own connection: this process
// must never be listed, minimized, closed or killed by what it drives.
class OwnWindow {
public:
    explicit OwnWindow(const std::string& title)
    {
        m_connection = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(m_connection))
            return;
        xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, 400, 300, 150, 100, 1,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(title.size()), title.data());
        const char wmClass[] = "stowlyrunner\0StowlyRunner";
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                            sizeof wmClass, wmClass);
        xcb_map_window(m_connection, m_window);
        xcb_flush(m_connection);
    }
    ~OwnWindow() { xcb_disconnect(m_connection); }
    OwnWindow(const OwnWindow&) = delete;
    OwnWindow& operator=(const OwnWindow&) = delete;

    std::uint32_t window() const { return m_window; }

private:
    xcb_connection_t* m_connection = nullptr;
    std::uint32_t m_window = 0;
};

} // namespace stowly::testbed
