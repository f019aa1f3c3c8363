#include "KWinPlatform.h"

#include "DesktopEntries.h"
#include "DesktopUrlOpener.h"
#include "HiddenWindowRecord.h"
#include "KWinAccessibility.h"
#include "KWinWorkspace.h"
#include "PlasmaSystemSettings.h"
#include "PlasmaWindowManagement.h"
#include "ProcFs.h"
#include "SettingsPreferenceStore.h"
#include "XdgAutostart.h"

namespace stowly::kwin {

struct KWinPlatform::Services {
    explicit Services(PlasmaWindowManagement& windows)
        : processTable(procCache), workspace(windows, procCache, desktopEntries, hidden),
          accessibility(workspace, windows), trust(windows)
    {
        processTable.onPassStart = [this] { workspace.beginProcessPass(); };
    }

    x11::ProcStatusCache procCache;
    x11::DesktopEntries desktopEntries;
    HiddenWindowRecord hidden;
    x11::LinuxProcessTable processTable;
    KWinWorkspace workspace;
    KWinAccessibility accessibility;
    KWinAccessibilityTrust trust;
    x11::XdgAutostart loginItems;
    x11::DesktopUrlOpener urlOpener;
    x11::SettingsPreferenceStore preferences;
    PlasmaSystemSettings accessSettings;
};

KWinPlatform::KWinPlatform(const std::string& socketName)
    : m_windows(std::make_unique<PlasmaWindowManagement>(socketName)),
      m_services(std::make_unique<Services>(*m_windows))
{
    Services& s = *m_services;
    m_platform = std::make_unique<Platform>(Platform{s.workspace, s.accessibility, s.trust, s.processTable,
                                                     s.loginItems, s.urlOpener, s.preferences,
                                                     s.accessSettings});
}

KWinPlatform::~KWinPlatform() = default;

} // namespace stowly::kwin
