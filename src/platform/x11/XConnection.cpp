// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "XConnection.h"

#include <xcb/res.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace stowly::x11 {

namespace {

constexpr std::array<const char*, static_cast<int>(Atom::Count)> kAtomNames = {
    "_NET_SUPPORTED",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_ACTIVE_WINDOW",
    "_NET_CLOSE_WINDOW",
    "_NET_WM_PID",
    "_NET_WM_NAME",
    "_NET_WM_ICON",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_WM_WINDOW_TYPE_TOOLBAR",
    "_NET_WM_WINDOW_TYPE_MENU",
    "_NET_WM_WINDOW_TYPE_SPLASH",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_STATE",
    "_NET_WM_STATE_SKIP_TASKBAR",
    "_NET_WM_STATE_HIDDEN",
    "WM_STATE",
    "WM_CHANGE_STATE",
    "WM_PROTOCOLS",
    "WM_DELETE_WINDOW",
    "UTF8_STRING",
    "_GTK_APPLICATION_ID",
    "_KDE_NET_WM_DESKTOP_FILE",
    "_STOWLY_HIDDEN",
    "_STOWLY_TIMESTAMP",
};

// A write to a server that went away must fail the request, not kill the program.
void ignoreSigpipeUnlessHandled()
{
    struct sigaction current {};
    if (sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL) {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigemptyset(&ignore.sa_mask);
        sigaction(SIGPIPE, &ignore, nullptr);
    }
}

} // namespace

XConnection::XConnection(std::string displayName) : m_displayName(std::move(displayName))
{
    ignoreSigpipeUnlessHandled();
    // Pin the display now: a reconnection must reach the same server.
    if (m_displayName.empty())
        if (const char* display = std::getenv("DISPLAY"))
            m_displayName = display;
    connect();
}

XConnection::~XConnection()
{
    disconnect();
}

bool XConnection::isConnected() const
{
    return m_connection != nullptr && xcb_connection_has_error(m_connection) == 0;
}

bool XConnection::ensureConnected()
{
    if (isConnected())
        return true;
    disconnect();
    return connect();
}

bool XConnection::connect()
{
    int screenNumber = 0;
    xcb_connection_t* c = xcb_connect(m_displayName.empty() ? nullptr : m_displayName.c_str(), &screenNumber);
    if (c == nullptr)
        return false;
    if (xcb_connection_has_error(c) != 0) {
        xcb_disconnect(c);
        return false;
    }
    const xcb_setup_t* setup = xcb_get_setup(c);
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(setup);
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i)
        xcb_screen_next(&screens);
    if (screens.rem <= 0 || screens.data == nullptr) {
        xcb_disconnect(c);
        return false;
    }
    m_connection = c;
    m_root = screens.data->root;
    ++m_generation;
    resetTracking();

    // Atoms and the X-Resource version in one round trip.
    std::array<xcb_intern_atom_cookie_t, static_cast<int>(Atom::Count)> cookies{};
    for (std::size_t i = 0; i < kAtomNames.size(); ++i)
        cookies[i] = xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(kAtomNames[i])), kAtomNames[i]);
    const xcb_query_extension_reply_t* res = xcb_get_extension_data(c, &xcb_res_id);
    bool resPresent = res != nullptr && res->present;
    xcb_res_query_version_cookie_t versionCookie{};
    if (resPresent)
        versionCookie = xcb_res_query_version(c, 1, 2);

    bool ok = true;
    for (std::size_t i = 0; i < kAtomNames.size(); ++i) {
        xcb_generic_error_t* error = nullptr;
        xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(c, cookies[i], &error);
        if (reply != nullptr)
            m_atoms[i] = reply->atom;
        else
            ok = false;
        std::free(reply);
        std::free(error);
    }
    m_hasRes = false;
    if (resPresent) {
        xcb_generic_error_t* error = nullptr;
        xcb_res_query_version_reply_t* version = xcb_res_query_version_reply(c, versionCookie, &error);
        // Client-id queries need X-Resource 1.2.
        m_hasRes = version != nullptr &&
                   (version->server_major > 1 || (version->server_major == 1 && version->server_minor >= 2));
        std::free(version);
        std::free(error);
    }
    countRoundTrip();
    if (!ok || !isConnected()) {
        disconnect();
        return false;
    }

    // An unmapped input-only window of our own: it is no client of the window manager,
    // it only lets us read the server's clock from a PropertyNotify.
    // Root property changes tell us when the client list or _NET_SUPPORTED change.
    const std::uint32_t rootMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(c, m_root, XCB_CW_EVENT_MASK, &rootMask);

    m_helper = xcb_generate_id(c);
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, m_helper, m_root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(c);
    return true;
}

void XConnection::disconnect()
{
    if (m_connection == nullptr)
        return;
    if (isConnected()) {
        if (m_helper != 0)
            xcb_destroy_window(m_connection, m_helper);
        // Requests still in flight must reach the server before the socket closes.
        sync();
    }
    xcb_disconnect(m_connection);
    m_connection = nullptr;
    m_helper = 0;
    m_root = 0;
    resetTracking();
}

void XConnection::resetTracking()
{
    // Nothing learnt on another connection holds on this one.
    ++m_serial;
    m_clientListChangedAt = m_serial;
    m_rootStateChangedAt = m_serial;
    m_wmCheckChangedAt = m_serial;
    m_wmCheckWindow = XCB_NONE;
    m_watched.clear();
    m_latestSnapshot.reset();
    m_wmSupportsClose.reset();
    m_lastServerTime = XCB_CURRENT_TIME;
    m_lastSocketRead = {};
}

void XConnection::drainEvents()
{
    if (m_connection == nullptr)
        return;
    // What is queued already (xcb queues events while it waits for replies), then one read
    // of the socket and what it brought: reading again until the socket runs dry would cost
    // a system call more per drain and only pick up events sent meanwhile. xcb reads at most
    // 4 KiB (128 events) at a time, so a read that filled that is followed by another.
    constexpr int kEventsPerRead = 4096 / 32;
    auto takeQueued = [this] {
        int count = 0;
        while (xcb_generic_event_t* event = xcb_poll_for_queued_event(m_connection)) {
            handleEvent(event);
            std::free(event);
            ++count;
        }
        return count;
    };
    takeQueued();
    m_lastSocketRead = std::chrono::steady_clock::now();
    for (;;) {
        // The queue is empty now, so this reads the socket.
        xcb_generic_event_t* event = xcb_poll_for_event(m_connection);
        if (event == nullptr)
            return;
        handleEvent(event);
        std::free(event);
        if (1 + takeQueued() < kEventsPerRead)
            return;
    }
}

void XConnection::drainEventsOlderThan(std::chrono::microseconds maxAge)
{
    if (m_connection == nullptr)
        return;
    if (std::chrono::steady_clock::now() - m_lastSocketRead >= maxAge) {
        drainEvents();
        return;
    }
    while (xcb_generic_event_t* event = xcb_poll_for_queued_event(m_connection)) {
        handleEvent(event);
        std::free(event);
    }
}

void XConnection::handleEvent(const xcb_generic_event_t* event)
{
    const std::uint8_t type = event->response_type & 0x7f;
    if (type == 0) {
        const auto* error = reinterpret_cast<const xcb_generic_error_t*>(event);
        if (error->error_code == XCB_WINDOW) {
            // A window we asked about is gone: stop vouching for it.
            m_watched.erase(error->resource_id);
            ++m_serial;
            if (error->resource_id == m_wmCheckWindow)
                forgetWmCheckWindow();
        }
        return;
    }
    switch (type) {
    case XCB_PROPERTY_NOTIFY: {
        const auto* notify = reinterpret_cast<const xcb_property_notify_event_t*>(event);
        m_lastServerTime = notify->time;
        m_lastServerTimeAt = std::chrono::steady_clock::now();
        if (notify->window == m_root) {
            if (notify->atom == atom(Atom::NET_CLIENT_LIST))
                m_clientListChangedAt = ++m_serial;
            else if (notify->atom == atom(Atom::NET_ACTIVE_WINDOW) ||
                     notify->atom == atom(Atom::NET_CLIENT_LIST_STACKING))
                m_rootStateChangedAt = ++m_serial;
            else if (notify->atom == atom(Atom::NET_SUPPORTED) || notify->atom == atom(Atom::NET_SUPPORTING_WM_CHECK))
                forgetWmCheckWindow();
            if (notify->atom == atom(Atom::NET_SUPPORTED))
                m_wmSupportsClose.reset();
        } else if (notify->window == m_wmCheckWindow) {
            forgetWmCheckWindow();
        }
        if (const auto it = m_watched.find(notify->window); it != m_watched.end()) {
            auto& changes = it->second.changes;
            const auto entry = std::find_if(changes.begin(), changes.end(),
                                            [&](const auto& change) { return change.first == notify->atom; });
            if (entry != changes.end())
                entry->second = ++m_serial;
            else
                changes.emplace_back(notify->atom, ++m_serial);
            it->second.lastChange = m_serial;
        }
        break;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto* notify = reinterpret_cast<const xcb_destroy_notify_event_t*>(event);
        if (m_watched.erase(notify->window) != 0)
            ++m_serial;
        if (notify->window == m_wmCheckWindow)
            forgetWmCheckWindow();
        break;
    }
    default: break; // mapping, moves, resizes and the rest change no property we read
    }
}

bool XConnection::propertyChangedSince(xcb_window_t window, xcb_atom_t property, std::uint64_t serial) const
{
    const auto it = m_watched.find(window);
    if (it == m_watched.end() || it->second.since > serial)
        return true;
    for (const auto& [atom, changedAt] : it->second.changes)
        if (atom == property)
            return changedAt > serial;
    return false;
}

bool XConnection::anyPropertyChangedSince(xcb_window_t window, std::uint64_t serial) const
{
    const auto it = m_watched.find(window);
    return it == m_watched.end() || it->second.since > serial || it->second.lastChange > serial;
}

void XConnection::watchWindow(xcb_window_t window)
{
    if (!isConnected() || m_watched.count(window) != 0)
        return;
    // Our own event mask on another client's window: it changes nothing for that client.
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &mask);
    m_watched.emplace(window, Watch{++m_serial, 0, {}});
}

void XConnection::watchWmCheckWindow(xcb_window_t window)
{
    if (!isConnected() || window == XCB_NONE || window == m_wmCheckWindow)
        return;
    // The same mask as a client window's watch: the two may well be one window.
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &mask);
    m_wmCheckWindow = window;
    m_wmCheckChangedAt = ++m_serial;
}

void XConnection::forgetWmCheckWindow()
{
    m_wmCheckWindow = XCB_NONE;
    m_wmCheckChangedAt = ++m_serial;
}

void XConnection::forgetWindowsExcept(const std::vector<xcb_window_t>& listed)
{
    if (m_watched.size() <= listed.size())
        return;
    std::unordered_map<xcb_window_t, Watch> kept;
    for (const xcb_window_t window : listed)
        if (const auto it = m_watched.find(window); it != m_watched.end())
            kept.emplace(it->first, std::move(it->second));
    m_watched.swap(kept);
}

xcb_timestamp_t XConnection::recentServerTime(std::chrono::milliseconds maxAge)
{
    drainEvents();
    if (m_lastServerTime != XCB_CURRENT_TIME && std::chrono::steady_clock::now() - m_lastServerTimeAt <= maxAge)
        return m_lastServerTime;
    return serverTime();
}

bool XConnection::sync()
{
    if (!isConnected())
        return false;
    xcb_generic_error_t* error = nullptr;
    xcb_get_input_focus_reply_t* reply =
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), &error);
    countRoundTrip();
    const bool ok = reply != nullptr;
    std::free(reply);
    std::free(error);
    return ok && isConnected();
}

xcb_timestamp_t XConnection::serverTime()
{
    if (!isConnected() || m_helper == 0)
        return XCB_CURRENT_TIME;
    drainEvents();
    const xcb_atom_t property = atom(Atom::STOWLY_TIMESTAMP);
    xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, m_helper, property, XCB_ATOM_STRING, 8, 0, nullptr);
    if (!sync())
        return XCB_CURRENT_TIME;
    // The reply came after the event, so the event is queued by now.
    xcb_timestamp_t time = XCB_CURRENT_TIME;
    while (xcb_generic_event_t* event = xcb_poll_for_queued_event(m_connection)) {
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
            auto* notify = reinterpret_cast<xcb_property_notify_event_t*>(event);
            if (notify->window == m_helper && notify->atom == property)
                time = notify->time;
        }
        handleEvent(event);
        std::free(event);
    }
    return time;
}

void XConnection::sendToRoot(xcb_window_t window, Atom type, std::array<std::uint32_t, 5> data)
{
    if (!isConnected())
        return;
    // xcb_send_event copies exactly 32 bytes from the event pointer.
    xcb_client_message_event_t event;
    std::memset(&event, 0, sizeof event);
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(type);
    for (std::size_t i = 0; i < data.size(); ++i)
        event.data.data32[i] = data[i];
    xcb_send_event(m_connection, 0, m_root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

} // namespace stowly::x11
