// Stowly: a tray utility that clears the desktop of other apps' windows.
#include "AppModel.h"
#include "NotifyingPreferenceStore.h"
#include "StatusIcon.h"
#include "StowlyViews.h"
#include "TrayController.h"

#include <QApplication>

#if defined(Q_OS_MACOS)
#include "MacPlatform.h"
#include "MacShell.h"
using PlatformServices = stowly::macos::MacPlatform;
#else
#include "LinuxSession.h"
using PlatformServices = stowly::LinuxSession;
#endif

int main(int argc, char* argv[])
{
#if !defined(Q_OS_MACOS)
    stowly::LinuxSession::prepareEnvironment();
#endif
    // Widgets only for the tray icon; the panel and the settings window are Qt Quick.
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Stowly"));
    QApplication::setOrganizationName(QStringLiteral("Stowly"));
    QApplication::setWindowIcon(stowly::StatusIcon::icon());
    // Closing the panel or the settings window never ends the program; Quit does.
    QApplication::setQuitOnLastWindowClosed(false);
#if defined(Q_OS_MACOS)
    // No Dock icon and no menu bar of its own: the menu-bar item is the whole presence.
    stowly::macos::useAccessoryActivationPolicy();
#endif

    PlatformServices services;
    stowly::Platform& backend = services.platform();
    // Every preference write goes through one store that tells the views.
    stowly::NotifyingPreferenceStore preferences(backend.preferences);
    stowly::Platform platform{backend.workspace, backend.accessibility, backend.trust, backend.processTable,
                              backend.loginItems,  backend.urlOpener,     preferences,
                              backend.accessSettings};

    stowly::AppModel model(platform);
    stowly::StowlyViews views(model, preferences);
    stowly::TrayController tray(views);
#if defined(Q_OS_MACOS)
    tray.setActivateBeforeSettings(&stowly::macos::activateForSettingsWindow);
#endif
    tray.showTrayIcon();
    return application.exec();
}
