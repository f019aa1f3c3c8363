// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <cstddef>

namespace stowly::ViewTexts {

// Every text the views show that does not come from the model or the action catalogue.
// The QML reads these through the singleton `Texts` (TextCatalogue) under the same names.
inline const QString productName = QStringLiteral("Stowly");
inline const QString accessWarning = QStringLiteral("Accessibility access required. Grant it in Settings.");
inline const QString noOpenApps = QStringLiteral("No regular apps are currently open.");
inline const QString settings = QStringLiteral("Settings");
inline const QString refresh = QStringLiteral("Refresh");
inline const QString quit = QStringLiteral("Quit");
inline const QString openApp = QStringLiteral("Open");
inline const QString closeApp = QStringLiteral("Close App");
inline const QString forceQuitApp = QStringLiteral("Force Quit");

inline const QString settingsWindowTitle = QStringLiteral("Stowly Settings");
inline const QString primaryAction = QStringLiteral("Primary action");
inline const QString appliedFromMenuBar = QStringLiteral("Applied from the menu bar");
inline const QString actionsIntro = QStringLiteral("Choose which actions are available in the menu and pick a default. "
                                                   "Your selections save automatically.");
inline const QString defaultActionPicker = QStringLiteral("Default action");
inline const QString startup = QStringLiteral("Startup");
inline const QString launchAtStartupTitle = QStringLiteral("Launch Stowly at startup");
inline const QString launchAtStartupSubtitle = QStringLiteral("Open Stowly automatically when you sign in to macOS.");
inline const QString mainShortcutTitle = QStringLiteral("Use selected action as main shortcut");
inline const QString mainShortcutSubtitle =
    QStringLiteral("The top menu action always follows the preference chosen above.");
inline const QString accessibility = QStringLiteral("Accessibility");
inline const QString accessGranted = QStringLiteral("Access granted");
inline const QString accessRequired = QStringLiteral("Access required");
inline const QString accessLimited = QStringLiteral("Access limited");
inline const QString accessGrantedDetail = QStringLiteral("Stowly can manage windows across all apps.");
inline const QString accessRequiredDetail =
    QStringLiteral("Stowly needs Accessibility access to minimize or close windows in other apps.");
inline const QString grantAccess = QStringLiteral("Grant Accessibility Access");
inline const QString openSystemSettings = QStringLiteral("Open System Settings");

// Texts assembled from pieces.
QString openAppsHeading(std::size_t count);                                // "Open Apps (3)"
QString appStatusLine(const QString& status, const QString& formattedRAM); // "Open • RAM: 1 MB"
QString defaultActionSummaryTitle(const QString& actionTitle);             // "Default: Hide All Apps"
QString rowMenuName(const QString& appName);                               // "Actions for Notes"
QString openAccessSettings(const QString& settingsName);                   // "Open System Settings"

} // namespace stowly::ViewTexts
