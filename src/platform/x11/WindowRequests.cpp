// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "WindowRequests.h"

#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace stowly::x11 {

namespace {

constexpr std::uint32_t kSourcePager = 2; // EWMH source indication of a pager/taskbar

struct Existence {
    AXError error = kAXErrorSuccess;
    bool wmSupportsClose = false;
};

// One round trip: does the window still exist, and (optionally) what the WM supports.
Existence checkWindow(XConnection& x, xcb_window_t window, bool wantSupported)
{
    Existence result;
    if (!x.ensureConnected()) {
        result.error = kAXErrorCannotComplete;
        return result;
    }
    x.drainEvents();
    xcb_connection_t* c = x.get();
    const auto attributes = xcb_get_window_attributes_unchecked(c, window);
    xcb_get_property_cookie_t supported{};
    if (wantSupported)
        supported = xcb_get_property_unchecked(c, 0, x.root(), x.atom(Atom::NET_SUPPORTED), XCB_ATOM_ATOM, 0, 4096);
    xcb_generic_error_t* error = nullptr;
    xcb_get_window_attributes_reply_t* reply = xcb_get_window_attributes_reply(c, attributes, &error);
    if (reply == nullptr)
        result.error = x.isConnected() ? kAXErrorInvalidUIElement : kAXErrorCannotComplete;
    std::free(reply);
    std::free(error);
    if (wantSupported) {
        error = nullptr;
        xcb_get_property_reply_t* property = xcb_get_property_reply(c, supported, &error);
        if (property != nullptr && property->format == 32 && property->type == XCB_ATOM_ATOM) {
            const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(property));
            const int count = xcb_get_property_value_length(property) / 4;
            result.wmSupportsClose = std::find(atoms, atoms + count, x.atom(Atom::NET_CLOSE_WINDOW)) != atoms + count;
        }
        std::free(property);
        std::free(error);
    }
    x.countRoundTrip();
    return result;
}

// A flushed SendEvent can still be lost if the connection closes right after; the round
// trip also lets the window manager see the request before we read its effects.
AXError finish(XConnection& x)
{
    return x.sync() ? kAXErrorSuccess : kAXErrorCannotComplete;
}

// Without a round trip: a window we watch exists as far as the server has told us (its
// destruction would have ended the watch), so a request to it needs no check of its own.
// The server handles our requests in order, so whatever we read next already sees this
// request delivered; the connection's own end does a round trip before it closes.
// A batched request waits only for the rest of the walk that made it (its caller flushes
// when the walk ends), never for a timer or for whoever still holds the walk's apps: held
// that long, the iconify requests for a client that opens and closes windows quickly made
// openbox keep one of them in _NET_CLIENT_LIST after it was destroyed, as the later a
// request arrives, the likelier its window is being withdrawn as the window manager
// handles it.
AXError finishWithoutWaiting(XConnection& x, Delivery delivery)
{
    if (delivery == Delivery::now)
        xcb_flush(x.get());
    return x.isConnected() ? kAXErrorSuccess : kAXErrorCannotComplete;
}

bool knownToExist(XConnection& x, xcb_window_t window)
{
    if (!x.isConnected())
        return false;
    x.drainEventsOlderThan(kWalkStepFreshness);
    return x.isWatched(window);
}

} // namespace

AXError requestIconify(XConnection& x, xcb_window_t window, Delivery delivery)
{
    if (knownToExist(x, window)) {
        x.sendToRoot(window, Atom::WM_CHANGE_STATE, {XCB_ICCCM_WM_STATE_ICONIC, 0, 0, 0, 0});
        return finishWithoutWaiting(x, delivery);
    }
    const Existence existence = checkWindow(x, window, false);
    if (existence.error != kAXErrorSuccess)
        return existence.error;
    x.sendToRoot(window, Atom::WM_CHANGE_STATE, {XCB_ICCCM_WM_STATE_ICONIC, 0, 0, 0, 0});
    return finish(x);
}

AXError requestClose(XConnection& x, xcb_window_t window, Delivery delivery)
{
    const bool watched = knownToExist(x, window) && x.wmSupportsClose().has_value();
    bool wmSupportsClose = false;
    if (watched) {
        wmSupportsClose = *x.wmSupportsClose();
    } else {
        const Existence existence = checkWindow(x, window, true);
        if (existence.error != kAXErrorSuccess)
            return existence.error;
        wmSupportsClose = existence.wmSupportsClose;
        x.setWmSupportsClose(wmSupportsClose);
    }
    // A close asked for within the same second as the last event we saw may carry that
    // event's server time, as a user action of that moment would.
    const xcb_timestamp_t time = x.recentServerTime(std::chrono::seconds(1));
    if (wmSupportsClose) {
        x.sendToRoot(window, Atom::NET_CLOSE_WINDOW, {time, kSourcePager, 0, 0, 0});
    } else {
        xcb_client_message_event_t event;
        std::memset(&event, 0, sizeof event);
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = x.atom(Atom::WM_PROTOCOLS);
        event.data.data32[0] = x.atom(Atom::WM_DELETE_WINDOW);
        event.data.data32[1] = time;
        xcb_send_event(x.get(), 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    }
    return watched ? finishWithoutWaiting(x, delivery) : finish(x);
}

AXError requestActivate(XConnection& x, const std::vector<xcb_window_t>& windows)
{
    if (!x.ensureConnected())
        return kAXErrorCannotComplete;
    if (windows.empty())
        return kAXErrorSuccess;
    const xcb_timestamp_t time = x.serverTime();
    for (const xcb_window_t window : windows)
        x.sendToRoot(window, Atom::NET_ACTIVE_WINDOW, {kSourcePager, time, 0, 0, 0});
    return finish(x);
}

void setHiddenMark(XConnection& x, const std::vector<xcb_window_t>& windows, bool hidden)
{
    if (!x.isConnected())
        return;
    const xcb_atom_t mark = x.atom(Atom::STOWLY_HIDDEN);
    for (const xcb_window_t window : windows) {
        if (hidden) {
            const std::uint32_t one = 1;
            xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, window, mark, XCB_ATOM_CARDINAL, 32, 1, &one);
        } else {
            xcb_delete_property(x.get(), window, mark);
        }
    }
    xcb_flush(x.get());
}

} // namespace stowly::x11
