// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "KWinAccessibility.h"

#include "WaylandConnection.h"

#include <algorithm>
#include <cstdio>

namespace stowly::kwin {

namespace {

struct ApplicationElement : AXElement {
    explicit ApplicationElement(std::int32_t pid) : pid(pid) {}
    std::int32_t pid;
};

struct WindowElement : AXElement {
    explicit WindowElement(PlasmaWindowInfo info) : info(std::move(info)) {}
    PlasmaWindowInfo info; // as read with the app's window list
};

struct CloseButtonElement : AXElement {
    explicit CloseButtonElement(std::string uuid) : uuid(std::move(uuid)) {}
    std::string uuid;
};

} // namespace

AXElementRef KWinAccessibility::createApplication(std::int32_t processIdentifier)
{
    return std::make_shared<ApplicationElement>(processIdentifier);
}

AXError KWinAccessibility::copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value)
{
    value = AXAbsent{};
    if (!element)
        return kAXErrorIllegalArgument;
    if (!m_windows.isGranted())
        return kAXErrorCannotComplete;

    if (const auto* app = dynamic_cast<const ApplicationElement*>(element.get())) {
        if (attribute == kAXRoleAttribute) {
            value = std::string("AXApplication");
            return kAXErrorSuccess;
        }
        if (attribute != kAXWindowsAttribute)
            return kAXErrorAttributeUnsupported;
        AXElementList windows;
        for (PlasmaWindowInfo& window : m_workspace.windowsOf(app->pid))
            windows.push_back(std::make_shared<WindowElement>(std::move(window)));
        value = std::move(windows);
        return kAXErrorSuccess;
    }

    if (const auto* window = dynamic_cast<const WindowElement*>(element.get())) {
        const PlasmaWindowInfo& w = window->info;
        if (attribute == kAXRoleAttribute) {
            value = std::string(kAXWindowRole);
        } else if (attribute == kAXSubroleAttribute) {
            // KWin says which windows have a transient parent; those are the dialogs.
            value = std::string(w.isTransient() ? kAXDialogSubrole : kAXStandardWindowSubrole);
        } else if (attribute == kAXMinimizedAttribute) {
            value = w.has(WindowState::minimized);
        } else if (attribute == kAXCloseButtonAttribute) {
            if (!w.has(WindowState::closeable))
                return kAXErrorAttributeUnsupported;
            value = AXElementRef(std::make_shared<CloseButtonElement>(w.uuid));
        } else if (attribute == "AXTitle") {
            value = w.title;
        } else {
            return kAXErrorAttributeUnsupported;
        }
        return kAXErrorSuccess;
    }

    if (dynamic_cast<const CloseButtonElement*>(element.get()) != nullptr) {
        if (attribute == kAXRoleAttribute) {
            value = std::string("AXButton");
            return kAXErrorSuccess;
        }
        return kAXErrorAttributeUnsupported;
    }
    return kAXErrorIllegalArgument;
}

AXError KWinAccessibility::setAttributeValue(const AXElementRef& element, const std::string& attribute,
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
    if (!m_windows.isGranted())
        return kAXErrorCannotComplete;
    const bool sent =
        *minimized ? m_windows.setMinimized(window->info.uuid, true) : m_windows.activate(window->info.uuid);
    // Not in the list any more: the window closed since it was read.
    return sent ? kAXErrorSuccess : kAXErrorInvalidUIElement;
}

AXError KWinAccessibility::performAction(const AXElementRef& element, const std::string& action)
{
    const auto* button = dynamic_cast<const CloseButtonElement*>(element.get());
    if (button == nullptr)
        return element ? kAXErrorActionUnsupported : kAXErrorIllegalArgument;
    if (action != kAXPressAction)
        return kAXErrorActionUnsupported;
    if (!m_windows.isGranted())
        return kAXErrorCannotComplete;
    return m_windows.close(button->uuid) ? kAXErrorSuccess : kAXErrorInvalidUIElement;
}

bool KWinAccessibilityTrust::isProcessTrusted(bool prompt)
{
    if (m_windows.isGranted())
        return true;
    const Clock::time_point now = Clock::now();
    if (prompt && !m_grant.isWritten()) {
        if (const auto error = m_grant.write())
            std::fprintf(stderr, "stowly: cannot write %s: %s\n", m_grant.entryPath().c_str(), error->c_str());
        else
            m_grantWrittenAt = now;
    }
    // KWin reads its desktop entries again at most every 1.5 s after a change.
    const bool grantReadable = m_grantWrittenAt && now - *m_grantWrittenAt >= std::chrono::milliseconds(1600);
    const bool compositorGone = !m_windows.connection().isConnected();
    if ((grantReadable || compositorGone) && now - m_lastReconnect >= std::chrono::seconds(2)) {
        m_lastReconnect = now;
        m_windows.reconnect();
        // Granted, or KWin did not take the entry (another program's path?): stop asking.
        if (m_windows.isGranted() || (m_grantWrittenAt && now - *m_grantWrittenAt > std::chrono::seconds(12)))
            m_grantWrittenAt.reset();
    }
    return m_windows.isGranted();
}

} // namespace stowly::kwin
