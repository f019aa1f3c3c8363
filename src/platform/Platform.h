// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "AccessSettings.h"
#include "Accessibility.h"
#include "LoginItemService.h"
#include "PreferenceStore.h"
#include "ProcessTable.h"
#include "UrlOpener.h"
#include "Workspace.h"

namespace stowly {

// Every platform service the logic uses, owned by whoever built them
// (a backend in the program, fakes in tests). All must outlive their users.
struct Platform {
    Workspace& workspace;
    Accessibility& accessibility;
    AccessibilityTrust& trust;
    ProcessTable& processTable;
    LoginItemService& loginItems;
    UrlOpener& urlOpener;
    PreferenceStore& preferences;
    AccessSettings& accessSettings;
};

} // namespace stowly
