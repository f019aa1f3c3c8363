// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: code that is not Objective-C++ may include this header.

#include "platform/Accessibility.h"

namespace stowly::macos {

// The Accessibility API (HIServices): application elements, attribute values and
// actions, with Core Foundation values turned into AXValue and back.
class MacAccessibility final : public Accessibility {
public:
    AXElementRef createApplication(std::int32_t processIdentifier) override;
    AXError copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value) override;
    AXError setAttributeValue(const AXElementRef& element, const std::string& attribute, const AXValue& value) override;
    AXError performAction(const AXElementRef& element, const std::string& action) override;
};

// AXIsProcessTrustedWithOptions.
class MacAccessibilityTrust final : public AccessibilityTrust {
public:
    bool isProcessTrusted(bool prompt) override;
};

} // namespace stowly::macos
