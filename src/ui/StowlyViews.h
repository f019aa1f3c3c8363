#pragma once

#include "AppIconCache.h"

#include <QObject>
#include <QUrl>

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

    static QUrl panelUrl();      // qrc:/Stowly/MenuBarContentView.qml
    static QUrl settingsUrl();   // qrc:/Stowly/SettingsView.qml
    static QUrl viewUrl(const QString& fileName);

    QQmlEngine& engine() { return *m_engine; }
    PanelViewModel& panel() { return *m_panel; }
    RunningAppsListModel& openApps() { return *m_openApps; }
    SettingsViewModel& settings() { return *m_settings; }

    // A view showing the panel / the settings content, sized to it.
    QQuickView* createPanelView(QWindow* parent = nullptr);
    QQuickView* createSettingsView(QWindow* parent = nullptr);

private:
    QQmlEngine* m_engine;
    PanelViewModel* m_panel;
    RunningAppsListModel* m_openApps;
    SettingsViewModel* m_settings;
};

} // namespace stowly
