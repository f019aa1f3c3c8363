// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "X11Accessibility.h"

#include "WindowTypes.h"

#include <algorithm>
#include <cstdlib>

namespace stowly::x11 {

namespace {

struct X11Window : linuxdesktop::WindowAccessibility::Window {
    X11Window(std::shared_ptr<const ClientWindow> info, std::uint64_t generation)
        : info(std::move(info)), generation(generation)
    {
    }
    // As read together with the window list; shares the snapshot it belongs to rather
    // than copying the window's strings for every element of a walk.
    std::shared_ptr<const ClientWindow> info;
    std::uint64_t generation; // of the connection the id belongs to
};

struct X11CloseButton : linuxdesktop::WindowAccessibility::CloseButton {
    X11CloseButton(xcb_window_t window, std::uint64_t generation) : window(window), generation(generation) {}
    xcb_window_t window;
    std::uint64_t generation;
};

// Every Window and CloseButton this backend hands out is one of its own.
const X11Window& own(const linuxdesktop::WindowAccessibility::Window& window)
{
    return static_cast<const X11Window&>(window);
}
const X11CloseButton& own(const linuxdesktop::WindowAccessibility::CloseButton& button)
{
    return static_cast<const X11CloseButton&>(button);
}

// A window id is only meaningful on the connection that produced it.
AXError usableOn(XConnection& x, std::uint64_t generation)
{
    if (!x.ensureConnected())
        return kAXErrorCannotComplete;
    return x.generation() == generation ? kAXErrorSuccess : kAXErrorInvalidUIElement;
}

} // namespace

AXError X11Accessibility::windowsOf(std::int32_t pid, AXElementList& windows)
{
    const auto snapshot = windowSnapshotFor(m_x, pid);
    if (!snapshot->connected)
        return kAXErrorCannotComplete;
    for (const ClientWindow& w : snapshot->windows)
        if (!w.vanished && w.pid == pid)
            windows.push_back(
                std::make_shared<X11Window>(std::shared_ptr<const ClientWindow>(snapshot, &w), snapshot->generation));
    return kAXErrorSuccess;
}

void X11Accessibility::beginRequestBatch()
{
    ++m_batchDepth;
}

void X11Accessibility::endRequestBatch()
{
    if (m_batchDepth == 0 || --m_batchDepth > 0)
        return;
    // Writes nothing when every request already went out with a round trip.
    if (m_x.isConnected())
        xcb_flush(m_x.get());
}

AXError X11Accessibility::usable(const Window& window)
{
    if (const AXError error = usableOn(m_x, own(window).generation); error != kAXErrorSuccess)
        return error;
    return own(window).info->vanished ? kAXErrorInvalidUIElement : kAXErrorSuccess;
}

AXError X11Accessibility::usable(const CloseButton& button)
{
    return usableOn(m_x, own(button).generation);
}

std::string X11Accessibility::subroleOf(const Window& window)
{
    const ClientWindow& w = *own(window).info;
    const xcb_atom_t type = effectiveWindowType(m_x, w);
    if (type == m_x.atom(Atom::NET_WM_WINDOW_TYPE_DIALOG) || (type == XCB_NONE && w.transient))
        return kAXDialogSubrole;
    if (type == XCB_NONE || type == m_x.atom(Atom::NET_WM_WINDOW_TYPE_NORMAL))
        return kAXStandardWindowSubrole;
    if (type == m_x.atom(Atom::NET_WM_WINDOW_TYPE_UTILITY) || type == m_x.atom(Atom::NET_WM_WINDOW_TYPE_TOOLBAR) ||
        type == m_x.atom(Atom::NET_WM_WINDOW_TYPE_MENU) || type == m_x.atom(Atom::NET_WM_WINDOW_TYPE_SPLASH))
        return kAXFloatingWindowSubrole;
    return "AXUnknown";
}

bool X11Accessibility::isMinimized(const Window& window)
{
    return own(window).info->isMinimized(m_x);
}

std::optional<std::string> X11Accessibility::titleOf(const Window& window)
{
    return own(window).info->title;
}

AXElementRef X11Accessibility::closeButtonOf(const Window& window)
{
    // Without WM_DELETE_WINDOW the only way to close is to kill the client.
    const X11Window& w = own(window);
    return w.info->supportsDelete ? std::make_shared<X11CloseButton>(w.info->id, w.generation) : nullptr;
}

AXError X11Accessibility::setMinimized(const Window& window, bool minimized)
{
    if (const AXError error = usableOn(m_x, own(window).generation); error != kAXErrorSuccess)
        return error;
    if (minimized)
        return requestIconify(m_x, own(window).info->id, delivery());
    return requestActivate(m_x, {own(window).info->id});
}

AXError X11Accessibility::press(const CloseButton& button)
{
    if (const AXError error = usable(button); error != kAXErrorSuccess)
        return error;
    return requestClose(m_x, own(button).window, delivery());
}

bool X11AccessibilityTrust::isProcessTrusted(bool prompt)
{
    (void)prompt; // X11 has no access prompt: asking is the same query
    if (!m_x.ensureConnected()) {
        m_trustedSince.reset();
        return false;
    }
    m_x.drainEvents();
    if (m_trustedSince && m_trustedGeneration == m_x.generation() && !m_x.wmCheckChangedSince(*m_trustedSince))
        return true;
    m_trustedSince.reset();
    if (!askServer())
        return false;
    // The watch was sent before the check window's property was read, so any change
    // after that read arrives as an event and ends the kept answer.
    m_trustedSince = m_x.eventSerial();
    m_trustedGeneration = m_x.generation();
    return true;
}

bool X11AccessibilityTrust::askServer()
{
    xcb_connection_t* c = m_x.get();
    const auto checkCookie =
        xcb_get_property_unchecked(c, 0, m_x.root(), m_x.atom(Atom::NET_SUPPORTING_WM_CHECK), XCB_ATOM_WINDOW, 0, 1);
    const auto supportedCookie =
        xcb_get_property_unchecked(c, 0, m_x.root(), m_x.atom(Atom::NET_SUPPORTED), XCB_ATOM_ATOM, 0, 4096);
    xcb_window_t check = XCB_NONE;
    bool listsClients = false;
    xcb_generic_error_t* error = nullptr;
    if (auto* reply = xcb_get_property_reply(c, checkCookie, &error)) {
        if (reply->type == XCB_ATOM_WINDOW && reply->format == 32 && xcb_get_property_value_length(reply) >= 4)
            check = *static_cast<const xcb_window_t*>(xcb_get_property_value(reply));
        std::free(reply);
    }
    std::free(error);
    error = nullptr;
    if (auto* reply = xcb_get_property_reply(c, supportedCookie, &error)) {
        if (reply->type == XCB_ATOM_ATOM && reply->format == 32) {
            const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply));
            const int count = xcb_get_property_value_length(reply) / 4;
            listsClients = std::find(atoms, atoms + count, m_x.atom(Atom::NET_CLIENT_LIST)) != atoms + count;
        }
        std::free(reply);
    }
    std::free(error);
    m_x.countRoundTrip();
    if (check == XCB_NONE || !listsClients)
        return false;
    // EWMH: the check window must point at itself, or it is a leftover of a dead WM.
    m_x.watchWmCheckWindow(check);
    error = nullptr;
    bool valid = false;
    const auto childCookie =
        xcb_get_property_unchecked(c, 0, check, m_x.atom(Atom::NET_SUPPORTING_WM_CHECK), XCB_ATOM_WINDOW, 0, 1);
    if (auto* reply = xcb_get_property_reply(c, childCookie, &error)) {
        valid = reply->type == XCB_ATOM_WINDOW && reply->format == 32 && xcb_get_property_value_length(reply) >= 4 &&
                *static_cast<const xcb_window_t*>(xcb_get_property_value(reply)) == check;
        std::free(reply);
    }
    std::free(error);
    m_x.countRoundTrip();
    return valid && m_x.isConnected();
}

} // namespace stowly::x11
