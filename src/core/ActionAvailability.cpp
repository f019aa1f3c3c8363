// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ActionAvailability.h"

namespace stowly {

bool isActionDisabled(DefaultAction action, bool hasAccessibilityPermission, bool hasRunningApps)
{
    switch (action.value()) {
    case DefaultAction::minimize:
    case DefaultAction::closeWindows: return !hasAccessibilityPermission;
    case DefaultAction::hide:
    case DefaultAction::forceQuit: return !hasRunningApps;
    }
    return true;
}

} // namespace stowly
