// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "KWinPlatform.h"

#include "HiddenWindowRecord.h"
#include "KWinAccessibility.h"
#include "KWinWorkspace.h"
#include "PlasmaSystemSettings.h"
#include "PlasmaWindowManagement.h"
#include "SessionServices.h"

namespace stowly::kwin {

struct KWinPlatform::Services {
    explicit Services(PlasmaWindowManagement& windows)
        : workspace(windows, shared.roster, shared.desktopEntries, hidden), accessibility(workspace, windows),
          trust(windows)
    {
    }

    linuxdesktop::SessionServices shared;
    HiddenWindowRecord hidden;
    KWinWorkspace workspace;
    KWinAccessibility accessibility;
    KWinAccessibilityTrust trust;
    PlasmaSystemSettings accessSettings;
};

KWinPlatform::KWinPlatform(const std::string& socketName)
    : m_windows(std::make_unique<PlasmaWindowManagement>(socketName)),
      m_services(std::make_unique<Services>(*m_windows))
{
    Services& s = *m_services;
    m_platform =
        std::make_unique<Platform>(s.shared.platformWith(s.workspace, s.accessibility, s.trust, s.accessSettings));
}

KWinPlatform::~KWinPlatform() = default;

} // namespace stowly::kwin
