// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Stowly: a tray utility that clears the desktop of other apps' windows.
#include "AppModel.h"
#include "CommandLine.h"
#include "HeapRelease.h"
#include "NotifyingPreferenceStore.h"
#include "PanelWindow.h"
#include "StatusIcon.h"
#include "StowlyViews.h"
#include "TrayController.h"

#include <QApplication>

#include <cstdio>

#if defined(Q_OS_MACOS)
#include "MacPlatform.h"
#include "MacShell.h"
using PlatformServices = stowly::macos::MacPlatform;
#else
#include "LinuxSession.h"
#include "SingleInstance.h"
using PlatformServices = stowly::LinuxSession;
#endif

namespace {

constexpr auto kDesktopFileName = "app.stowly.Stowly";

void nameApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("Stowly"));
    QCoreApplication::setOrganizationName(QStringLiteral("Stowly"));
    QCoreApplication::setApplicationVersion(QStringLiteral(STOWLY_VERSION));
}

QStringList argumentsOf(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    return arguments;
}

// A command from the command line acts once, without the tray and without a window.
int runOnce(int argc, char* argv[], const stowly::CommandRequest& request)
{
#if !defined(Q_OS_MACOS)
    stowly::LinuxSession::prepareEnvironment();
#endif
    QCoreApplication application(argc, argv);
    nameApplication();
    PlatformServices services;
#if !defined(Q_OS_MACOS)
    if (!services.reachesWindowSystem()) {
        std::fputs("stowly: cannot reach the X display or the Wayland compositor; is DISPLAY or WAYLAND_DISPLAY set?\n",
                   stderr);
        return stowly::exitNothingDone;
    }
#endif
    stowly::AppModel model(services.platform());
    return stowly::runCommand(request, model);
}

int runTray(int argc, char* argv[])
{
    stowly::keepHeapCompact();
#if !defined(Q_OS_MACOS)
    stowly::LinuxSession::prepareEnvironment();
#endif
    // Widgets only for the tray icon; the panel and the settings window are Qt Quick.
    QApplication application(argc, argv);
    nameApplication();
    QGuiApplication::setDesktopFileName(QString::fromLatin1(kDesktopFileName));
    QApplication::setWindowIcon(stowly::StatusIcon::icon());
    // Closing the panel or the settings window never ends the program; Quit does.
    QApplication::setQuitOnLastWindowClosed(false);
#if defined(Q_OS_MACOS)
    // No Dock icon and no menu bar of its own: the menu-bar item is the whole presence.
    stowly::macos::useAccessoryActivationPolicy();
#else
    stowly::SingleInstance instance;
    QString startDetail;
    const stowly::SingleInstance::Start start = instance.claim(&startDetail);
    if (!startDetail.isEmpty())
        std::fprintf(stderr, "stowly: %s\n", qPrintable(startDetail));
    if (start == stowly::SingleInstance::Start::handedOver) {
        std::fputs("Stowly is already running; its panel is open.\n", stdout);
        return stowly::exitSuccess;
    }
    if (start == stowly::SingleInstance::Start::notAnswering)
        return stowly::exitNothingDone;
#endif

    PlatformServices services;
    stowly::Platform& backend = services.platform();
    // Every preference write goes through one store that tells the views.
    stowly::NotifyingPreferenceStore preferences(backend.preferences);
    stowly::Platform platform{backend.workspace,  backend.accessibility, backend.trust, backend.processTable,
                              backend.loginItems, backend.urlOpener,     preferences,   backend.accessSettings};

    stowly::AppModel model(platform);
    stowly::StowlyViews views(model, preferences);
    stowly::TrayController tray(views);
#if defined(Q_OS_MACOS)
    tray.setActivateBeforeSettings(&stowly::macos::activateForSettingsWindow);
#else
    QObject::connect(&instance, &stowly::SingleInstance::activationRequested, &tray, [&tray] {
        if (!tray.panelWindow().isVisible())
            tray.togglePanel();
    });
#endif
    tray.showTrayIcon();
    return application.exec();
}

} // namespace

int main(int argc, char* argv[])
{
    const stowly::ParseResult parsed = stowly::parseCommandLine(argumentsOf(argc, argv));
    if (!parsed.request) {
        std::fprintf(stderr, "stowly: %s\n", qPrintable(parsed.error));
        return stowly::exitBadUsage;
    }
    switch (parsed.request->kind) {
    case stowly::CommandRequest::Kind::runTray: return runTray(argc, argv);
    case stowly::CommandRequest::Kind::help:
        std::fputs(qPrintable(stowly::usageText()), stdout);
        return stowly::exitSuccess;
    case stowly::CommandRequest::Kind::version:
        std::fputs(qPrintable(stowly::versionText()), stdout);
        return stowly::exitSuccess;
    default: return runOnce(argc, argv, *parsed.request);
    }
}
