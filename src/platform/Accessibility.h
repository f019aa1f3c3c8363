// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace stowly {

// AXError values, with the platform's own numbers.
using AXError = std::int32_t;
inline constexpr AXError kAXErrorSuccess = 0;
inline constexpr AXError kAXErrorFailure = -25200;
inline constexpr AXError kAXErrorIllegalArgument = -25201;
inline constexpr AXError kAXErrorInvalidUIElement = -25202;
inline constexpr AXError kAXErrorCannotComplete = -25204;
inline constexpr AXError kAXErrorAttributeUnsupported = -25205;
inline constexpr AXError kAXErrorActionUnsupported = -25206;
inline constexpr AXError kAXErrorNoValue = -25212;
inline constexpr AXError kAXErrorAPIDisabled = -25211;

// Attribute, value and action names used by the logic.
inline constexpr const char* kAXWindowsAttribute = "AXWindows";
inline constexpr const char* kAXRoleAttribute = "AXRole";
inline constexpr const char* kAXSubroleAttribute = "AXSubrole";
inline constexpr const char* kAXMinimizedAttribute = "AXMinimized";
inline constexpr const char* kAXCloseButtonAttribute = "AXCloseButton";
inline constexpr const char* kAXWindowRole = "AXWindow";
inline constexpr const char* kAXStandardWindowSubrole = "AXStandardWindow";
inline constexpr const char* kAXDialogSubrole = "AXDialog";
inline constexpr const char* kAXSystemDialogSubrole = "AXSystemDialog";
inline constexpr const char* kAXFloatingWindowSubrole = "AXFloatingWindow";
inline constexpr const char* kAXPressAction = "AXPress";

// An accessibility element (AXUIElementRef). Backends derive from it; the logic
// only passes handles back to the Accessibility interface that made them.
class AXElement {
public:
    virtual ~AXElement() = default;
};
using AXElementRef = std::shared_ptr<AXElement>;

// A copied attribute value, typed as Core Foundation would type it.
struct AXAbsent {}; // success with no value
struct AXNumber {
    double value = 0;
}; // CFNumber
struct AXOther {
    std::string typeName;
}; // any other CF type
using AXElementList = std::vector<AXElementRef>;
using AXValue = std::variant<AXAbsent, std::string, bool, AXNumber, AXElementRef, AXElementList, AXOther>;

// AXUIElementCreateApplication / CopyAttributeValue / SetAttributeValue / PerformAction.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    virtual AXElementRef createApplication(std::int32_t processIdentifier) = 0;
    // On success `value` holds what the platform gave (AXAbsent for no value).
    virtual AXError copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value) = 0;
    virtual AXError setAttributeValue(const AXElementRef& element, const std::string& attribute,
                                      const AXValue& value) = 0;
    virtual AXError performAction(const AXElementRef& element, const std::string& action) = 0;

    // A walk over many windows brackets its changes and actions with these, so that a
    // backend may hold the requests back and send them together when the walk ends. Every
    // begin is followed by one end, also when the walk stops early; what was accepted
    // before that is sent. By default each request goes out as it is made.
    virtual void beginRequestBatch() {}
    virtual void endRequestBatch() {}
};

// AXIsProcessTrustedWithOptions with the single "AXTrustedCheckOptionPrompt" entry.
class AccessibilityTrust {
public:
    virtual ~AccessibilityTrust() = default;
    virtual bool isProcessTrusted(bool prompt) = 0;
};

} // namespace stowly
