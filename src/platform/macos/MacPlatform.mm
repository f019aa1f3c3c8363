// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The platform headers come first: see MacAccessibility.mm.
#include "MacPlatform.h"

#include "MacAccessSettings.h"
#include "MacAccessibility.h"
#include "MacLoginItemService.h"
#include "MacPreferenceStore.h"
#include "MacProcessTable.h"
#include "MacUrlOpener.h"
#include "MacWorkspace.h"

namespace stowly::macos {

struct MacPlatform::Services {
    MacWorkspace workspace;
    MacAccessibility accessibility;
    MacAccessibilityTrust trust;
    MacProcessTable processTable;
    MacLoginItemService loginItems;
    MacUrlOpener urlOpener;
    MacPreferenceStore preferences;
    MacAccessSettings accessSettings{urlOpener};
};

MacPlatform::MacPlatform()
    : m_services(std::make_unique<Services>()), m_platform{m_services->workspace,   m_services->accessibility,
                                                           m_services->trust,       m_services->processTable,
                                                           m_services->loginItems,  m_services->urlOpener,
                                                           m_services->preferences, m_services->accessSettings}
{
}

MacPlatform::~MacPlatform() = default;

} // namespace stowly::macos
