// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "AccessibilityPermissionChecker.h"

#include "platform/Accessibility.h"

namespace stowly {

bool AccessibilityPermissionChecker::isTrusted(AccessibilityTrust& trust, bool prompt)
{
    return trust.isProcessTrusted(prompt);
}

} // namespace stowly
