// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "AppIconCache.h"

#include <QObject>
#include <QPointer>
#include <QUrl>

#include <vector>

class QQmlEngine;
class QQuickView;
class QWindow;

namespace stowly {

class AppModel;
class NotifyingPreferenceStore;
class PanelViewModel;
class RunningAppsListModel;
class SettingsViewModel;

// The QML engine and the view models: the panel view gets `panel` and `openApps`, the
// settings view `settings`, as required properties; `Theme` and `Texts` are the module's
// singletons; and the two image providers. Makes the panel's and the settings window's
// views; knows nothing about trays or window placement.
class StowlyViews : public QObject {
    Q_OBJECT

public:
    StowlyViews(AppModel& model, NotifyingPreferenceStore& preferences, QObject* parent = nullptr);
    ~StowlyViews() override;

    static QUrl panelUrl();    // qrc:/Stowly/MenuBarContentView.qml
    static QUrl settingsUrl(); // qrc:/Stowly/SettingsView.qml
    static QUrl viewUrl(const QString& fileName);

    // Made with the first view: a tray icon that was never clicked runs no script engine.
    QQmlEngine& engine();
    PanelViewModel& panel() { return *m_panel; }
    RunningAppsListModel& openApps() { return *m_openApps; }
    SettingsViewModel& settings() { return *m_settings; }

    // A view showing the panel / the settings content, sized to it.
    QQuickView* createPanelView(QWindow* parent = nullptr);
    QQuickView* createSettingsView(QWindow* parent = nullptr);

    // While the panel is closed its view models stay quiet (no signals, no icon decoding)
    // though the model goes on refreshing; showing it brings them up to date at once.
    void setPanelShown(bool shown);
    // After the panel's view was destroyed: drops its rows and decoded icons, the script
    // engine with its compiled components when no other view uses it (else its garbage),
    // and gives freed heap back.
    void releasePanelResources();

private:
    QQuickView* track(QQuickView* view);

    QQmlEngine* m_engine = nullptr;
    std::vector<QPointer<QQuickView>> m_views; // every view made on the engine
    AppIconCacheRef m_icons;
    PanelViewModel* m_panel;
    RunningAppsListModel* m_openApps;
    SettingsViewModel* m_settings;
};

} // namespace stowly
