// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "X11Accessibility.h"

#include "WindowRequests.h"
#include "WindowTypes.h"

#include <algorithm>
#include <cstdlib>

namespace stowly::x11 {

namespace {

struct ApplicationElement : AXElement {
    explicit ApplicationElement(std::int32_t pid) : pid(pid) {}
    std::int32_t pid;
};

struct WindowElement : AXElement {
    WindowElement(std::shared_ptr<const ClientWindow> info, std::uint64_t generation)
        : info(std::move(info)), generation(generation)
    {
    }
    // As read together with the window list; shares the snapshot it belongs to rather
    // than copying the window's strings for every element of a walk.
    std::shared_ptr<const ClientWindow> info;
    std::uint64_t generation; // of the connection the id belongs to
};

struct CloseButtonElement : AXElement {
    CloseButtonElement(xcb_window_t window, std::uint64_t generation) : window(window), generation(generation) {}
    xcb_window_t window;
    std::uint64_t generation;
};

std::string subroleOf(const XConnection& x, const ClientWindow& w)
{
    const xcb_atom_t type = effectiveWindowType(x, w);
    if (type == x.atom(Atom::NET_WM_WINDOW_TYPE_DIALOG) || (type == XCB_NONE && w.transient))
        return kAXDialogSubrole;
    if (type == XCB_NONE || type == x.atom(Atom::NET_WM_WINDOW_TYPE_NORMAL))
        return kAXStandardWindowSubrole;
    if (type == x.atom(Atom::NET_WM_WINDOW_TYPE_UTILITY) || type == x.atom(Atom::NET_WM_WINDOW_TYPE_TOOLBAR) ||
        type == x.atom(Atom::NET_WM_WINDOW_TYPE_MENU) || type == x.atom(Atom::NET_WM_WINDOW_TYPE_SPLASH))
        return kAXFloatingWindowSubrole;
    return "AXUnknown";
}

// A window id is only meaningful on the connection that produced it.
AXError usable(XConnection& x, std::uint64_t generation)
{
    if (!x.ensureConnected())
        return kAXErrorCannotComplete;
    return x.generation() == generation ? kAXErrorSuccess : kAXErrorInvalidUIElement;
}

} // namespace

AXElementRef X11Accessibility::createApplication(std::int32_t processIdentifier)
{
    return std::make_shared<ApplicationElement>(processIdentifier);
}

AXError X11Accessibility::copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value)
{
    value = AXAbsent{};
    if (!element)
        return kAXErrorIllegalArgument;

    if (const auto* app = dynamic_cast<const ApplicationElement*>(element.get())) {
        if (attribute == kAXRoleAttribute) {
            value = std::string("AXApplication");
            return kAXErrorSuccess;
        }
        if (attribute != kAXWindowsAttribute)
            return kAXErrorAttributeUnsupported;
        const auto snapshot = windowSnapshotFor(m_x, app->pid);
        if (!snapshot->connected)
            return kAXErrorCannotComplete;
        AXElementList windows;
        for (const ClientWindow& w : snapshot->windows)
            if (!w.vanished && w.pid == app->pid)
                windows.push_back(std::make_shared<WindowElement>(std::shared_ptr<const ClientWindow>(snapshot, &w),
                                                                  snapshot->generation));
        value = std::move(windows);
        return kAXErrorSuccess;
    }

    if (const auto* window = dynamic_cast<const WindowElement*>(element.get())) {
        if (const AXError error = usable(m_x, window->generation); error != kAXErrorSuccess)
            return error;
        const ClientWindow& w = *window->info;
        if (w.vanished)
            return kAXErrorInvalidUIElement;
        if (attribute == kAXRoleAttribute) {
            value = std::string(kAXWindowRole);
        } else if (attribute == kAXSubroleAttribute) {
            value = subroleOf(m_x, w);
        } else if (attribute == kAXMinimizedAttribute) {
            value = w.isMinimized(m_x);
        } else if (attribute == kAXCloseButtonAttribute) {
            // Without WM_DELETE_WINDOW the only way to close is to kill the client.
            if (!w.supportsDelete)
                return kAXErrorAttributeUnsupported;
            value = AXElementRef(std::make_shared<CloseButtonElement>(w.id, window->generation));
        } else if (attribute == "AXTitle") {
            if (w.title)
                value = *w.title;
        } else {
            return kAXErrorAttributeUnsupported;
        }
        return kAXErrorSuccess;
    }

    if (const auto* button = dynamic_cast<const CloseButtonElement*>(element.get())) {
        if (const AXError error = usable(m_x, button->generation); error != kAXErrorSuccess)
            return error;
        if (attribute == kAXRoleAttribute) {
            value = std::string("AXButton");
            return kAXErrorSuccess;
        }
        return kAXErrorAttributeUnsupported;
    }
    return kAXErrorIllegalArgument;
}

AXError X11Accessibility::setAttributeValue(const AXElementRef& element, const std::string& attribute,
                                            const AXValue& value)
{
    const auto* window = dynamic_cast<const WindowElement*>(element.get());
    if (window == nullptr)
        return element ? kAXErrorAttributeUnsupported : kAXErrorIllegalArgument;
    if (attribute != kAXMinimizedAttribute)
        return kAXErrorAttributeUnsupported;
    const bool* minimized = std::get_if<bool>(&value);
    if (minimized == nullptr)
        return kAXErrorIllegalArgument;
    if (const AXError error = usable(m_x, window->generation); error != kAXErrorSuccess)
        return error;
    if (*minimized)
        return requestIconify(m_x, window->info->id);
    return requestActivate(m_x, {window->info->id});
}

AXError X11Accessibility::performAction(const AXElementRef& element, const std::string& action)
{
    const auto* button = dynamic_cast<const CloseButtonElement*>(element.get());
    if (button == nullptr)
        return element ? kAXErrorActionUnsupported : kAXErrorIllegalArgument;
    if (action != kAXPressAction)
        return kAXErrorActionUnsupported;
    if (const AXError error = usable(m_x, button->generation); error != kAXErrorSuccess)
        return error;
    return requestClose(m_x, button->window);
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
