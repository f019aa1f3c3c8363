// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "XConnection.h"
#include "platform/AppIcon.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace stowly::x11 {

// How EWMH/ICCCM describe one managed client window, as far as this backend cares.
struct ClientWindow {
    xcb_window_t id = 0;
    bool vanished = false;                      // the server said BadWindow while we read it
    std::int32_t pid = 0;                       // 0 when unknown
    std::vector<xcb_atom_t> types;              // _NET_WM_WINDOW_TYPE, in preference order
    std::vector<xcb_atom_t> states;             // _NET_WM_STATE
    bool iconicByWmState = false;               // ICCCM WM_STATE is IconicState
    bool stowlyHidden = false;                  // carries our _STOWLY_HIDDEN mark
    bool transient = false;                     // has WM_TRANSIENT_FOR
    bool supportsDelete = false;                // WM_PROTOCOLS lists WM_DELETE_WINDOW
    std::optional<std::string> wmClassInstance; // UTF-8
    std::optional<std::string> wmClassClass;    // UTF-8
    std::optional<std::string> gtkApplicationId;
    std::optional<std::string> kdeDesktopFile;
    std::optional<std::string> title; // UTF-8
    AppIconRef icon;

    bool hasState(xcb_atom_t atom) const;
    bool isMinimized(const XConnection& x) const; // WM_STATE Iconic or _NET_WM_STATE_HIDDEN
};

struct WindowSnapshot {
    bool connected = false;
    std::uint64_t generation = 0;
    std::vector<ClientWindow> windows;  // _NET_CLIENT_LIST order
    std::vector<xcb_window_t> stacking; // _NET_CLIENT_LIST_STACKING, bottom to top
    xcb_window_t activeWindow = 0;
    std::chrono::steady_clock::time_point takenAt;
    std::uint64_t listSerial = 0; // XConnection::eventSerial() as the root's lists were read
    std::uint64_t serial = 0;     // XConnection::eventSerial() as its windows were read
    bool withIcons = false;       // read with an icon cache: every window's icon is filled in
};

// Icons decoded once per window and kept while the window is listed: icons rarely change
// and _NET_WM_ICON is by far the largest property a client carries.
class IconCache {
public:
    bool contains(xcb_window_t window) const { return m_icons.count(window) != 0; }
    AppIconRef get(xcb_window_t window) const;
    void put(xcb_window_t window, AppIconRef icon) { m_icons[window] = std::move(icon); }
    void keepOnly(const std::vector<ClientWindow>& windows);
    void clear() { m_icons.clear(); }

private:
    std::unordered_map<xcb_window_t, AppIconRef> m_icons;
};

// Reads the client list and then every property of every client window in exactly two
// round trips: all requests of a stage are sent before the first reply is awaited.
// Icons are read only for windows missing from `icons` (when given).
std::shared_ptr<const WindowSnapshot> takeWindowSnapshot(XConnection& x, IconCache* icons);

// The windows of one process: the latest snapshot when, as far as the server has told us
// (events, no round trip), neither the client list nor any window of that process has
// changed since it was taken; otherwise a fresh snapshot. A bulk walk over many apps thus
// reads the display once, and again only for apps whose windows changed meanwhile.
std::shared_ptr<const WindowSnapshot> windowSnapshotFor(XConnection& x, std::int32_t pid);

// The whole display as takeWindowSnapshot(x, &icons) would read it: the latest snapshot
// taken with icons while, as far as the server has told us, nothing it describes has
// changed (client list, stacking, active window, any window's properties or mapping);
// otherwise a fresh one. On a quiet desktop a refresh then costs no round trip here.
std::shared_ptr<const WindowSnapshot> currentWindowSnapshot(XConnection& x, IconCache& icons);

} // namespace stowly::x11
