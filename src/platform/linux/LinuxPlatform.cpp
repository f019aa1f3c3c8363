#include "LinuxPlatform.h"

#include "DesktopEntries.h"
#include "DesktopUrlOpener.h"
#include "LinuxAccessibility.h"
#include "LinuxWorkspace.h"
#include "ProcFs.h"
#include "SettingsPreferenceStore.h"
#include "WindowManagerSettings.h"
#include "XConnection.h"
#include "XdgAutostart.h"

namespace stowly::x11 {

struct LinuxPlatform::Services {
    explicit Services(XConnection& x)
        : processTable(procCache), workspace(x, procCache, desktopEntries), accessibility(x), trust(x), accessSettings(x)
    {
        // The lookups of one pass over the process table share one window snapshot.
        processTable.onPassStart = [this] { workspace.beginProcessPass(); };
    }

    ProcStatusCache procCache;
    DesktopEntries desktopEntries;
    LinuxProcessTable processTable;
    LinuxWorkspace workspace;
    LinuxAccessibility accessibility;
    LinuxAccessibilityTrust trust;
    XdgAutostart loginItems;
    DesktopUrlOpener urlOpener;
    SettingsPreferenceStore preferences;
    WindowManagerSettings accessSettings;
};

LinuxPlatform::LinuxPlatform(const std::string& display)
    : m_connection(std::make_unique<XConnection>(display)),
      m_services(std::make_unique<Services>(*m_connection))
{
    Services& s = *m_services;
    m_platform = std::make_unique<Platform>(Platform{s.workspace, s.accessibility, s.trust, s.processTable,
                                                     s.loginItems, s.urlOpener, s.preferences,
                                                     s.accessSettings});
}

LinuxPlatform::~LinuxPlatform() = default;

} // namespace stowly::x11
