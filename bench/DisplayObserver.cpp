// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "DisplayObserver.h"

#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <strings.h>

namespace stowly::bench {

namespace {

using Clock = std::chrono::steady_clock;

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeDeleter>;

bool classMatches(const char* value, int length, const std::string& wanted)
{
    // WM_CLASS is "instance\0class\0"; either part may match.
    int start = 0;
    while (start < length) {
        const int partLength = static_cast<int>(strnlen(value + start, static_cast<std::size_t>(length - start)));
        if (static_cast<std::size_t>(partLength) == wanted.size() &&
            strncasecmp(value + start, wanted.c_str(), wanted.size()) == 0)
            return true;
        start += partLength + 1;
    }
    return false;
}

} // namespace

DisplayObserver::DisplayObserver()
{
    int screen = 0;
    m_connection = xcb_connect(nullptr, &screen);
    if (xcb_connection_has_error(m_connection) != 0) {
        xcb_disconnect(m_connection);
        throw std::runtime_error("cannot connect to the X display");
    }
    auto it = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (int i = 0; i < screen && it.rem > 0; ++i)
        xcb_screen_next(&it);
    m_root = it.data->root;
    m_clientList = intern("_NET_CLIENT_LIST");
    m_state = intern("_NET_WM_STATE");
    m_hidden = intern("_NET_WM_STATE_HIDDEN");
    m_activeWindow = intern("_NET_ACTIVE_WINDOW");
    const std::uint32_t rootMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &rootMask);
    xcb_flush(m_connection);
}

DisplayObserver::~DisplayObserver()
{
    // One round trip first, so that nothing just sent is lost with the connection.
    free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    xcb_disconnect(m_connection);
}

xcb_atom_t DisplayObserver::intern(const char* name)
{
    Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : XCB_NONE;
}

std::vector<xcb_window_t> DisplayObserver::clientList()
{
    Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, m_root, m_clientList, XCB_ATOM_WINDOW, 0, 1u << 16), nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
    const int count = xcb_get_property_value_length(reply.get()) / 4;
    return {first, first + count};
}

std::vector<xcb_window_t> DisplayObserver::clientsOfClass(const std::string& className)
{
    const auto clients = clientList();
    std::vector<xcb_get_property_cookie_t> cookies;
    cookies.reserve(clients.size());
    for (xcb_window_t window : clients)
        cookies.push_back(xcb_get_property(m_connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 256));
    std::vector<xcb_window_t> matching;
    for (std::size_t i = 0; i < clients.size(); ++i) {
        xcb_generic_error_t* error = nullptr;
        Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookies[i], &error));
        std::free(error);
        if (!reply || reply->format != 8)
            continue;
        if (classMatches(static_cast<const char*>(xcb_get_property_value(reply.get())),
                         xcb_get_property_value_length(reply.get()), className))
            matching.push_back(clients[i]);
    }
    return matching;
}

std::vector<bool> DisplayObserver::hiddenFlags(const std::vector<xcb_window_t>& windows)
{
    std::vector<xcb_get_property_cookie_t> cookies;
    cookies.reserve(windows.size());
    for (xcb_window_t window : windows)
        cookies.push_back(xcb_get_property(m_connection, 0, window, m_state, XCB_ATOM_ATOM, 0, 64));
    std::vector<bool> flags(windows.size(), false);
    for (std::size_t i = 0; i < windows.size(); ++i) {
        xcb_generic_error_t* error = nullptr;
        Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookies[i], &error));
        std::free(error);
        if (!reply || reply->format != 32)
            continue;
        const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
        const int count = xcb_get_property_value_length(reply.get()) / 4;
        flags[i] = std::find(atoms, atoms + count, m_hidden) != atoms + count;
    }
    return flags;
}

int DisplayObserver::countHidden(const std::vector<xcb_window_t>& windows)
{
    const auto flags = hiddenFlags(windows);
    return static_cast<int>(std::count(flags.begin(), flags.end(), true));
}

void DisplayObserver::watch(const std::vector<xcb_window_t>& windows)
{
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    for (xcb_window_t window : windows)
        xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(m_connection);
}

void DisplayObserver::drain()
{
    while (xcb_generic_event_t* event = xcb_poll_for_event(m_connection))
        std::free(event);
}

template <typename Pending>
bool DisplayObserver::waitUntil(Pending pendingCount, std::chrono::milliseconds timeout)
{
    const auto deadline = Clock::now() + timeout;
    for (;;) {
        drain();
        if (pendingCount() == 0)
            return true;
        if (Clock::now() > deadline || xcb_connection_has_error(m_connection) != 0)
            return false;
        // Sleep until the server tells us something changed; 2 ms at most, in case a
        // change came without an event we selected.
        pollfd fd{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        poll(&fd, 1, 2);
    }
}

bool DisplayObserver::waitAllHidden(const std::vector<xcb_window_t>& windows, std::chrono::milliseconds timeout)
{
    return waitUntil(
        [&] {
            const auto flags = hiddenFlags(windows);
            return std::count(flags.begin(), flags.end(), false);
        },
        timeout);
}

bool DisplayObserver::waitNoneHidden(const std::vector<xcb_window_t>& windows, std::chrono::milliseconds timeout)
{
    return waitUntil(
        [&] {
            const auto flags = hiddenFlags(windows);
            return std::count(flags.begin(), flags.end(), true);
        },
        timeout);
}

bool DisplayObserver::waitAllGone(const std::vector<xcb_window_t>& windows, std::chrono::milliseconds timeout)
{
    return waitUntil(
        [&] {
            const auto listed = clientList();
            return std::count_if(windows.begin(), windows.end(), [&](xcb_window_t window) {
                return std::find(listed.begin(), listed.end(), window) != listed.end();
            });
        },
        timeout);
}

bool DisplayObserver::waitClientsOfClass(const std::string& className, std::size_t count,
                                         std::chrono::milliseconds timeout)
{
    return waitUntil(
        [&] {
            const auto clients = clientsOfClass(className);
            return clients.size() >= count ? std::size_t(0) : count - clients.size();
        },
        timeout);
}

bool DisplayObserver::restore(const std::vector<xcb_window_t>& windows, std::chrono::milliseconds timeout)
{
    for (xcb_window_t window : windows) {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = m_activeWindow;
        event.data.data32[0] = 2; // source indication: a pager
        event.data.data32[1] = XCB_CURRENT_TIME;
        xcb_send_event(m_connection, 0, m_root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
    }
    xcb_flush(m_connection);
    return waitNoneHidden(windows, timeout);
}

} // namespace stowly::bench
