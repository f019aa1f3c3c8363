// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace stowly {

class AppModel;
class NotifyingPreferenceStore;

// What the panel shows besides the app rows: the enabled actions in catalogue order with
// their disabled rule, the open-apps heading, and the panel's commands.
class PanelViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes the one panel model.")
    // One entry per enabled action, catalogue order: {rawValue, title, systemImage}.
    // Changes only when the enabled-actions preference is written.
    Q_PROPERTY(QVariantList actions READ actions NOTIFY actionsChanged FINAL)
    // min(number of actions, 2); 0 when no action is enabled.
    Q_PROPERTY(int columnCount READ columnCount NOTIFY actionsChanged FINAL)
    // rawValue -> whether that action's tile is disabled.
    Q_PROPERTY(QVariantMap disabledActions READ disabledActions NOTIFY availabilityChanged FINAL)
    Q_PROPERTY(QString resultMessage READ resultMessage NOTIFY resultMessageChanged FINAL)
    Q_PROPERTY(bool showsAccessWarning READ showsAccessWarning NOTIFY availabilityChanged FINAL)
    Q_PROPERTY(QString openAppsHeading READ openAppsHeading NOTIFY availabilityChanged FINAL)
    Q_PROPERTY(bool hasOpenApps READ hasOpenApps NOTIFY availabilityChanged FINAL)

public:
    PanelViewModel(AppModel& model, NotifyingPreferenceStore& preferences, QObject* parent = nullptr);

    QVariantList actions() const;
    int columnCount() const;
    QVariantMap disabledActions() const;
    QString resultMessage() const;
    bool showsAccessWarning() const;
    QString openAppsHeading() const;
    bool hasOpenApps() const;

    // Runs the bulk action named by its raw value: exactly one model command.
    Q_INVOKABLE void performAction(const QString& rawValue);
    // Re-checks access, then re-reads the open apps.
    Q_INVOKABLE void refresh();
    Q_INVOKABLE void openSettings();
    Q_INVOKABLE void quit();
    // Asks for the panel to close (Escape).
    Q_INVOKABLE void dismiss();
    // The raw value of the action the preferences name as default; its tile takes the
    // keyboard focus when the panel opens.
    Q_INVOKABLE QString defaultActionRawValue() const;

    // While inactive (the panel is closed) no change signal goes out; becoming active
    // sends each of them once, so that a shown view reads everything afresh.
    void setActive(bool active);
    bool isActive() const { return m_active; }

signals:
    void actionsChanged();
    void availabilityChanged();
    void resultMessageChanged();
    void settingsRequested();
    void quitRequested();
    void dismissRequested();

private:
    AppModel& m_model;
    NotifyingPreferenceStore& m_preferences;
    bool m_active = true;
};

} // namespace stowly
