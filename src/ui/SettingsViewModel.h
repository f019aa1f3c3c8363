// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace stowly {

class AppModel;
class NotifyingPreferenceStore;

// What the settings window shows and does: the action cards, the default-action picker
// and its summary, launch at login and the accessibility section. The rules themselves
// are ActionSettings'; this only presents them.
class SettingsViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes the one settings model.")
    // One card per action, catalogue order: {rawValue, shortTitle, cardSummary, systemImage}.
    Q_PROPERTY(QVariantList cards READ cards CONSTANT FINAL)
    // rawValue -> whether the action is enabled (its card shows as selected).
    Q_PROPERTY(QVariantMap selection READ selection NOTIFY selectionChanged FINAL)
    // The picker's items (short titles, by raw value) and the index of its selection.
    Q_PROPERTY(QStringList pickerItems READ pickerItems NOTIFY pickerChanged FINAL)
    Q_PROPERTY(int pickerIndex READ pickerIndex NOTIFY pickerChanged FINAL)
    Q_PROPERTY(QString summaryTitle READ summaryTitle NOTIFY summaryChanged FINAL)
    Q_PROPERTY(QString summaryText READ summaryText NOTIFY summaryChanged FINAL)
    Q_PROPERTY(bool launchesAtLogin READ launchesAtLogin NOTIFY launchesAtLoginChanged FINAL)
    Q_PROPERTY(bool accessGranted READ accessGranted NOTIFY accessChanged FINAL)
    // Granted, and every app's windows within reach: the section shows no warning.
    Q_PROPERTY(bool accessComplete READ accessComplete NOTIFY accessChanged FINAL)
    Q_PROPERTY(QString accessTitle READ accessTitle NOTIFY accessChanged FINAL)
    Q_PROPERTY(QString accessDetail READ accessDetail NOTIFY accessChanged FINAL)
    Q_PROPERTY(QString accessSymbol READ accessSymbol NOTIFY accessChanged FINAL)
    // The button that opens where access is granted: shown only while access is missing
    // and the platform has something to open, named after what it opens.
    Q_PROPERTY(bool canOpenAccessSettings READ canOpenAccessSettings NOTIFY accessChanged FINAL)
    Q_PROPERTY(QString openAccessSettingsTitle READ openAccessSettingsTitle NOTIFY accessChanged FINAL)

public:
    SettingsViewModel(AppModel& model, NotifyingPreferenceStore& preferences, QObject* parent = nullptr);

    QVariantList cards() const;
    QVariantMap selection() const;
    QStringList pickerItems() const;
    int pickerIndex() const;
    QString summaryTitle() const;
    QString summaryText() const;
    bool launchesAtLogin() const;
    bool accessGranted() const;
    bool accessComplete() const;
    QString accessTitle() const;
    QString accessDetail() const;
    QString accessSymbol() const;
    bool canOpenAccessSettings() const;
    QString openAccessSettingsTitle() const;

    // A card click; isSelected is what the card showed when it was clicked.
    Q_INVOKABLE void toggleAction(const QString& rawValue, bool isSelected);
    Q_INVOKABLE void choosePickerItem(int index);
    Q_INVOKABLE void setLaunchAtLogin(bool enabled);
    Q_INVOKABLE void requestAccessibilityPermission();
    Q_INVOKABLE void openAccessibilitySettings();
    // Ctrl+Q in the settings window, as in the panel.
    Q_INVOKABLE void quit();

signals:
    void selectionChanged();
    void pickerChanged();
    void summaryChanged();
    void launchesAtLoginChanged();
    void accessChanged();
    void quitRequested();

private:
    AppModel& m_model;
    NotifyingPreferenceStore& m_preferences;
};

} // namespace stowly
