// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "DefaultAction.h"

namespace stowly {

// The panel's rule: the two window actions need accessibility access, the two app
// actions need at least one listed app. Each ignores the other condition on purpose.
bool isActionDisabled(DefaultAction action, bool hasAccessibilityPermission, bool hasRunningApps);

} // namespace stowly
