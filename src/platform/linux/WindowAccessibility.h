// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Accessibility.h"

#include <optional>
#include <string>

namespace stowly::linuxdesktop {

// The accessibility elements every Linux window system gives the same shape: an application
// is a pid, whose "AXWindows" are its windows; a window has a role, subrole, minimized flag,
// title and (when it can be asked to close) a close button that "AXPress" presses. This
// checks the arguments and answers the fixed parts; a backend says what its windows are and
// carries out the requests.
class WindowAccessibility : public Accessibility {
public:
    AXElementRef createApplication(std::int32_t processIdentifier) final;
    AXError copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value) final;
    AXError setAttributeValue(const AXElementRef& element, const std::string& attribute, const AXValue& value) final;
    AXError performAction(const AXElementRef& element, const std::string& action) final;

    // What a backend's window and close-button elements derive from.
    struct Window : AXElement {};
    struct CloseButton : AXElement {};

protected:
    // Whether the window system answers at all; asked before any attribute is read.
    virtual AXError reachable() { return kAXErrorSuccess; }
    // The app's windows, as Window elements.
    virtual AXError windowsOf(std::int32_t pid, AXElementList& windows) = 0;
    // Whether an element read earlier still means something (a window that vanished does not).
    virtual AXError usable(const Window&) { return kAXErrorSuccess; }
    virtual AXError usable(const CloseButton&) { return kAXErrorSuccess; }

    virtual std::string subroleOf(const Window& window) = 0;
    virtual bool isMinimized(const Window& window) = 0;
    virtual std::optional<std::string> titleOf(const Window& window) = 0;
    // Null when the window cannot be asked to close.
    virtual AXElementRef closeButtonOf(const Window& window) = 0;

    // Setting "AXMinimized": minimize, or restore and activate.
    virtual AXError setMinimized(const Window& window, bool minimized) = 0;
    // "AXPress" on the close button: the polite close request.
    virtual AXError press(const CloseButton& button) = 0;
};

} // namespace stowly::linuxdesktop
