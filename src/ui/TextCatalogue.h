// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "ViewTexts.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace stowly {

// The fixed texts of ViewTexts as the QML singleton `Texts`, so that a misspelt name is a
// compile-time error of the views rather than an empty label.
class TextCatalogue : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Texts)
    QML_SINGLETON
    Q_PROPERTY(QString productName MEMBER productName CONSTANT FINAL)
    Q_PROPERTY(QString accessWarning MEMBER accessWarning CONSTANT FINAL)
    Q_PROPERTY(QString noOpenApps MEMBER noOpenApps CONSTANT FINAL)
    Q_PROPERTY(QString settings MEMBER settings CONSTANT FINAL)
    Q_PROPERTY(QString refresh MEMBER refresh CONSTANT FINAL)
    Q_PROPERTY(QString quit MEMBER quit CONSTANT FINAL)
    Q_PROPERTY(QString openApp MEMBER openApp CONSTANT FINAL)
    Q_PROPERTY(QString closeApp MEMBER closeApp CONSTANT FINAL)
    Q_PROPERTY(QString forceQuitApp MEMBER forceQuitApp CONSTANT FINAL)
    Q_PROPERTY(QString settingsWindowTitle MEMBER settingsWindowTitle CONSTANT FINAL)
    Q_PROPERTY(QString primaryAction MEMBER primaryAction CONSTANT FINAL)
    Q_PROPERTY(QString appliedFromMenuBar MEMBER appliedFromMenuBar CONSTANT FINAL)
    Q_PROPERTY(QString actionsIntro MEMBER actionsIntro CONSTANT FINAL)
    Q_PROPERTY(QString defaultActionPicker MEMBER defaultActionPicker CONSTANT FINAL)
    Q_PROPERTY(QString startup MEMBER startup CONSTANT FINAL)
    Q_PROPERTY(QString launchAtStartupTitle MEMBER launchAtStartupTitle CONSTANT FINAL)
    Q_PROPERTY(QString launchAtStartupSubtitle MEMBER launchAtStartupSubtitle CONSTANT FINAL)
    Q_PROPERTY(QString mainShortcutTitle MEMBER mainShortcutTitle CONSTANT FINAL)
    Q_PROPERTY(QString mainShortcutSubtitle MEMBER mainShortcutSubtitle CONSTANT FINAL)
    Q_PROPERTY(QString accessibility MEMBER accessibility CONSTANT FINAL)
    Q_PROPERTY(QString grantAccess MEMBER grantAccess CONSTANT FINAL)
    Q_PROPERTY(QString openSystemSettings MEMBER openSystemSettings CONSTANT FINAL)

public:
    using QObject::QObject;

    QString productName = ViewTexts::productName;
    QString accessWarning = ViewTexts::accessWarning;
    QString noOpenApps = ViewTexts::noOpenApps;
    QString settings = ViewTexts::settings;
    QString refresh = ViewTexts::refresh;
    QString quit = ViewTexts::quit;
    QString openApp = ViewTexts::openApp;
    QString closeApp = ViewTexts::closeApp;
    QString forceQuitApp = ViewTexts::forceQuitApp;
    QString settingsWindowTitle = ViewTexts::settingsWindowTitle;
    QString primaryAction = ViewTexts::primaryAction;
    QString appliedFromMenuBar = ViewTexts::appliedFromMenuBar;
    QString actionsIntro = ViewTexts::actionsIntro;
    QString defaultActionPicker = ViewTexts::defaultActionPicker;
    QString startup = ViewTexts::startup;
    QString launchAtStartupTitle = ViewTexts::launchAtStartupTitle;
    QString launchAtStartupSubtitle = ViewTexts::launchAtStartupSubtitle;
    QString mainShortcutTitle = ViewTexts::mainShortcutTitle;
    QString mainShortcutSubtitle = ViewTexts::mainShortcutSubtitle;
    QString accessibility = ViewTexts::accessibility;
    QString grantAccess = ViewTexts::grantAccess;
    QString openSystemSettings = ViewTexts::openSystemSettings;
};

} // namespace stowly
