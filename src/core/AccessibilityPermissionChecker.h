// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

namespace stowly {

class AccessibilityTrust;

// Asks the platform afresh on every call; a silent query unless prompt is true.
struct AccessibilityPermissionChecker {
    static bool isTrusted(AccessibilityTrust& trust, bool prompt);
};

} // namespace stowly
