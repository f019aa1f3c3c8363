// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// The display and the process table as an outsider sees them: its own X connection and
// /proc, nothing of Stowly's code. What the chaos rounds compare Stowly's word against.

#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace stowly::chaos {

struct SeenWindow {
    std::uint32_t id = 0;
    int pid = 0;              // _NET_WM_PID (our test apps all tell the truth)
    bool iconic = false;      // minimized: ICCCM WM_STATE Iconic or EWMH _NET_WM_STATE_HIDDEN
    bool hiddenMark = false;  // _STOWLY_HIDDEN set
    bool dialog = false;      // type DIALOG, or no type and transient for another
    bool regularType = false; // NORMAL, DIALOG or no type
    bool skipTaskbar = false;
    bool closable = false; // WM_PROTOCOLS lists WM_DELETE_WINDOW
    std::uint32_t transientFor = 0;

    std::string describe() const;
};

struct Scene {
    std::map<std::uint32_t, SeenWindow> windows; // by id, as listed in _NET_CLIENT_LIST
    bool windowManager = false;                  // _NET_SUPPORTING_WM_CHECK names a live window

    // Processes alive now that own at least one regular, taskbar window: the apps Stowly
    // must list, and the targets of its bulk commands.
    std::set<int> managedPids(int self) const;
    std::vector<const SeenWindow*> windowsOf(int pid) const;
};

// The process exists and is not a zombie.
bool alive(int pid);

class Observer {
public:
    explicit Observer(const std::string& display);
    ~Observer();
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;

    bool ok() const { return m_c != nullptr && xcb_connection_has_error(m_c) == 0; }
    Scene look();
    // The window still exists on the server, listed by the window manager or not.
    bool exists(std::uint32_t window);

    // Requests an outsider might send: EWMH state and type changes.
    void toggleSkipTaskbar(std::uint32_t window, bool on);
    void setWindowType(std::uint32_t window, const std::string& typeSuffix); // "UTILITY", "NORMAL"...

private:
    xcb_atom_t atom(const char* name);

    xcb_connection_t* m_c = nullptr;
    xcb_window_t m_root = 0;
    std::map<std::string, xcb_atom_t> m_atoms;
};

} // namespace stowly::chaos
