// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "DesktopEntries.h"
#include "DesktopUrlOpener.h"
#include "OpenFileLimit.h"
#include "ProcFs.h"
#include "SettingsPreferenceStore.h"
#include "XdgAutostart.h"
#include "platform/Platform.h"

namespace stowly::linuxdesktop {

// The services every Linux session shares, whatever its window system: /proc, desktop
// entries, XDG autostart, QSettings and the desktop's URL handler. A backend adds the
// window system's own three and hands the whole out as one Platform.
struct SessionServices {
    // The soft limit on descriptors is raised before the budget of kept ones is drawn from it.
    SessionServices()
        : openFileLimit(openfilelimit::raise()), roster(fileBudget), procCache(fileBudget),
          processTable(roster, procCache)
    {
    }

    // The lookups of one pass over the process table share one reading of the windows.
    template <typename PassAwareWorkspace>
    Platform platformWith(PassAwareWorkspace& workspace, Accessibility& accessibility, AccessibilityTrust& trust,
                          AccessSettings& accessSettings)
    {
        processTable.onPassStart = [&workspace] { workspace.beginProcessPass(); };
        return Platform{workspace,  accessibility, trust,       processTable,
                        loginItems, urlOpener,     preferences, accessSettings};
    }

    std::uint64_t openFileLimit;
    OpenFileBudget fileBudget;
    ProcessRoster roster;
    ProcStatusCache procCache;
    DesktopEntries desktopEntries;
    LinuxProcessTable processTable;
    XdgAutostart loginItems;
    DesktopUrlOpener urlOpener;
    SettingsPreferenceStore preferences;
};

} // namespace stowly::linuxdesktop
