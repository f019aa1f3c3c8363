// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "WindowAccessibility.h"

namespace stowly::linuxdesktop {

namespace {

struct ApplicationElement : AXElement {
    explicit ApplicationElement(std::int32_t pid) : pid(pid) {}
    std::int32_t pid;
};

} // namespace

AXElementRef WindowAccessibility::createApplication(std::int32_t processIdentifier)
{
    return std::make_shared<ApplicationElement>(processIdentifier);
}

AXError WindowAccessibility::copyAttributeValue(const AXElementRef& element, const std::string& attribute,
                                                AXValue& value)
{
    value = AXAbsent{};
    if (!element)
        return kAXErrorIllegalArgument;
    if (const AXError error = reachable(); error != kAXErrorSuccess)
        return error;

    if (const auto* app = dynamic_cast<const ApplicationElement*>(element.get())) {
        if (attribute == kAXRoleAttribute) {
            value = std::string("AXApplication");
            return kAXErrorSuccess;
        }
        if (attribute != kAXWindowsAttribute)
            return kAXErrorAttributeUnsupported;
        AXElementList windows;
        if (const AXError error = windowsOf(app->pid, windows); error != kAXErrorSuccess)
            return error;
        value = std::move(windows);
        return kAXErrorSuccess;
    }

    if (const auto* window = dynamic_cast<const Window*>(element.get())) {
        if (const AXError error = usable(*window); error != kAXErrorSuccess)
            return error;
        if (attribute == kAXRoleAttribute) {
            value = std::string(kAXWindowRole);
        } else if (attribute == kAXSubroleAttribute) {
            value = subroleOf(*window);
        } else if (attribute == kAXMinimizedAttribute) {
            value = isMinimized(*window);
        } else if (attribute == kAXCloseButtonAttribute) {
            AXElementRef button = closeButtonOf(*window);
            if (!button)
                return kAXErrorAttributeUnsupported;
            value = std::move(button);
        } else if (attribute == "AXTitle") {
            if (std::optional<std::string> title = titleOf(*window))
                value = std::move(*title);
        } else {
            return kAXErrorAttributeUnsupported;
        }
        return kAXErrorSuccess;
    }

    if (const auto* button = dynamic_cast<const CloseButton*>(element.get())) {
        if (const AXError error = usable(*button); error != kAXErrorSuccess)
            return error;
        if (attribute == kAXRoleAttribute) {
            value = std::string("AXButton");
            return kAXErrorSuccess;
        }
        return kAXErrorAttributeUnsupported;
    }
    return kAXErrorIllegalArgument;
}

AXError WindowAccessibility::setAttributeValue(const AXElementRef& element, const std::string& attribute,
                                               const AXValue& value)
{
    const auto* window = dynamic_cast<const Window*>(element.get());
    if (window == nullptr)
        return element ? kAXErrorAttributeUnsupported : kAXErrorIllegalArgument;
    if (attribute != kAXMinimizedAttribute)
        return kAXErrorAttributeUnsupported;
    const bool* minimized = std::get_if<bool>(&value);
    if (minimized == nullptr)
        return kAXErrorIllegalArgument;
    return setMinimized(*window, *minimized);
}

AXError WindowAccessibility::performAction(const AXElementRef& element, const std::string& action)
{
    const auto* button = dynamic_cast<const CloseButton*>(element.get());
    if (button == nullptr)
        return element ? kAXErrorActionUnsupported : kAXErrorIllegalArgument;
    if (action != kAXPressAction)
        return kAXErrorActionUnsupported;
    return press(*button);
}

} // namespace stowly::linuxdesktop
