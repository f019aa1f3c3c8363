#pragma once

#include "KWinWorkspace.h"
#include "PlasmaWindowManagement.h"
#include "platform/Accessibility.h"

namespace stowly::kwin {

// Accessibility elements over KWin's windows: an application is a pid, a window is a KWin
// uuid read with the app's window list.
class KWinAccessibility : public Accessibility {
public:
    KWinAccessibility(KWinWorkspace& workspace, PlasmaWindowManagement& windows)
        : m_workspace(workspace), m_windows(windows) {}

    AXElementRef createApplication(std::int32_t processIdentifier) override;
    AXError copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value) override;
    AXError setAttributeValue(const AXElementRef& element, const std::string& attribute,
                              const AXValue& value) override;
    AXError performAction(const AXElementRef& element, const std::string& action) override;

private:
    KWinWorkspace& m_workspace;
    PlasmaWindowManagement& m_windows;
};

// Trusted means: KWin offered us org_kde_plasma_window_management and the connection lives.
// KWin decides that once per connection from our desktop entry; there is nothing to prompt.
class KWinAccessibilityTrust : public AccessibilityTrust {
public:
    explicit KWinAccessibilityTrust(PlasmaWindowManagement& windows) : m_windows(windows) {}
    bool isProcessTrusted(bool prompt) override;

private:
    PlasmaWindowManagement& m_windows;
};

} // namespace stowly::kwin
