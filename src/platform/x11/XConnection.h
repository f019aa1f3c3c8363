// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace stowly::x11 {

// The atoms this backend uses, interned together on every (re)connection.
enum class Atom : int {
    NET_SUPPORTED,
    NET_SUPPORTING_WM_CHECK,
    NET_CLIENT_LIST,
    NET_CLIENT_LIST_STACKING,
    NET_ACTIVE_WINDOW,
    NET_CLOSE_WINDOW,
    NET_WM_PID,
    NET_WM_NAME,
    NET_WM_ICON,
    NET_WM_WINDOW_TYPE,
    NET_WM_WINDOW_TYPE_NORMAL,
    NET_WM_WINDOW_TYPE_DIALOG,
    NET_WM_WINDOW_TYPE_UTILITY,
    NET_WM_WINDOW_TYPE_TOOLBAR,
    NET_WM_WINDOW_TYPE_MENU,
    NET_WM_WINDOW_TYPE_SPLASH,
    NET_WM_WINDOW_TYPE_DESKTOP,
    NET_WM_WINDOW_TYPE_DOCK,
    NET_WM_STATE,
    NET_WM_STATE_SKIP_TASKBAR,
    NET_WM_STATE_HIDDEN,
    WM_STATE,
    WM_CHANGE_STATE,
    WM_PROTOCOLS,
    WM_DELETE_WINDOW,
    UTF8_STRING,
    GTK_APPLICATION_ID,
    KDE_NET_WM_DESKTOP_FILE,
    STOWLY_HIDDEN,
    STOWLY_TIMESTAMP,
    Count
};

struct WindowSnapshot;

// How long what was last read from the socket counts as current for the next step of a
// walk over windows (see XConnection::drainEventsOlderThan).
inline constexpr std::chrono::microseconds kWalkStepFreshness{250};

// One connection to the X server, shared by every X-backed service. It never lets an
// X error end the program: replies are always fetched with an error out-parameter, and
// errors of requests without replies are drained from the event queue and dropped.
// A connection that broke is re-established on the next ensureConnected().
class XConnection {
public:
    explicit XConnection(std::string displayName = {}); // empty: $DISPLAY
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    // True when usable; reconnects once if the previous connection broke.
    bool ensureConnected();
    bool isConnected() const;

    xcb_connection_t* get() const { return m_connection; }
    xcb_window_t root() const { return m_root; }
    xcb_atom_t atom(Atom which) const { return m_atoms[static_cast<int>(which)]; }
    bool hasResourceExtension() const { return m_hasRes; }
    // Changes whenever a new connection replaces the old one: window ids of an older
    // generation must not be used any more.
    std::uint64_t generation() const { return m_generation; }

    // Reads every queued event and asynchronous error (without a round trip) and keeps
    // what they say about the client list and the watched windows; then drops them.
    void drainEvents();
    // The same, except that the socket is read only when its last read is older than
    // `maxAge`: the per-window steps of a walk follow each other within microseconds, and
    // news that arrived in that time is no different from news of a moment after the step.
    void drainEventsOlderThan(std::chrono::microseconds maxAge);

    // What the server has told us, counted in event serials: a snapshot remembers the
    // serial it was taken at and is still exact for what has not changed since.
    std::uint64_t eventSerial() const { return m_serial; }
    bool clientListChangedSince(std::uint64_t serial) const { return m_clientListChangedAt > serial; }
    // _NET_ACTIVE_WINDOW or _NET_CLIENT_LIST_STACKING changed.
    bool rootStateChangedSince(std::uint64_t serial) const { return m_rootStateChangedAt > serial; }
    // True for a window we do not watch (nothing is known about it), or whose property
    // changed after `serial`.
    bool propertyChangedSince(xcb_window_t window, xcb_atom_t property, std::uint64_t serial) const;
    // The same for any property at all: one lookup spares an unchanged window the
    // questions about each property.
    bool anyPropertyChangedSince(xcb_window_t window, std::uint64_t serial) const;
    // A watched window exists as far as the server has told us: its destruction (or a
    // BadWindow for it) would have ended the watch.
    bool isWatched(xcb_window_t window) const { return m_watched.count(window) != 0; }
    // Selects property and structure events on a client window (no round trip); must be
    // sent before the window's properties are read so that no later change goes unseen.
    void watchWindow(xcb_window_t window);
    void forgetWindowsExcept(const std::vector<xcb_window_t>& listed);

    // The latest window snapshot, for reuse while nothing it describes has changed.
    std::shared_ptr<const WindowSnapshot> latestSnapshot() const { return m_latestSnapshot; }
    void setLatestSnapshot(std::shared_ptr<const WindowSnapshot> snapshot) { m_latestSnapshot = std::move(snapshot); }

    // The EWMH check window of the running window manager, watched so that a trusted
    // answer can be kept until the manager goes or changes what it announces: its
    // destruction, a change of its _NET_SUPPORTING_WM_CHECK, or a change of the root's
    // _NET_SUPPORTING_WM_CHECK or _NET_SUPPORTED. Sent before the window's property is read.
    void watchWmCheckWindow(xcb_window_t window);
    bool wmCheckChangedSince(std::uint64_t serial) const { return m_wmCheckChangedAt > serial; }

    // Whether the window manager lists _NET_CLOSE_WINDOW in _NET_SUPPORTED, remembered
    // until the root's _NET_SUPPORTED changes (absent: not known).
    const std::optional<bool>& wmSupportsClose() const { return m_wmSupportsClose; }
    void setWmSupportsClose(bool supported) { m_wmSupportsClose = supported; }
    // A server round trip, so that everything sent so far has been processed.
    bool sync();
    // The server's current time, taken from a property change on our own helper window
    // (one round trip). XCB_CURRENT_TIME when that fails.
    xcb_timestamp_t serverTime();
    // A server time no older than maxAge: the last one an event carried, or serverTime().
    xcb_timestamp_t recentServerTime(std::chrono::milliseconds maxAge);

    // Counts the round trips this connection has waited for (for measurements).
    std::uint64_t roundTrips() const { return m_roundTrips; }
    void countRoundTrip() { ++m_roundTrips; }

    // Sends a 32-bit client message to the root window, as EWMH and ICCCM ask for
    // requests addressed to the window manager.
    void sendToRoot(xcb_window_t window, Atom type, std::array<std::uint32_t, 5> data);

private:
    bool connect();
    void disconnect();
    void handleEvent(const xcb_generic_event_t* event);
    void resetTracking();
    void forgetWmCheckWindow();

    std::string m_displayName;
    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = 0;
    xcb_window_t m_helper = 0;
    bool m_hasRes = false;
    std::uint64_t m_generation = 0;
    std::uint64_t m_roundTrips = 0;
    std::array<xcb_atom_t, static_cast<int>(Atom::Count)> m_atoms{};

    std::uint64_t m_serial = 0;
    std::uint64_t m_clientListChangedAt = 0;
    std::uint64_t m_rootStateChangedAt = 0;
    std::uint64_t m_wmCheckChangedAt = 0;
    xcb_window_t m_wmCheckWindow = XCB_NONE;
    struct Watch {
        std::uint64_t since = 0;                                   // serial at which the events were selected
        std::uint64_t lastChange = 0;                              // serial of the latest change of any property
        std::vector<std::pair<xcb_atom_t, std::uint64_t>> changes; // property -> serial of its last change
    };
    std::unordered_map<xcb_window_t, Watch> m_watched;
    std::shared_ptr<const WindowSnapshot> m_latestSnapshot;
    std::optional<bool> m_wmSupportsClose;
    xcb_timestamp_t m_lastServerTime = XCB_CURRENT_TIME;
    std::chrono::steady_clock::time_point m_lastSocketRead{};
    std::chrono::steady_clock::time_point m_lastServerTimeAt{};
};

} // namespace stowly::x11
