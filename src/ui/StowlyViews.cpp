#include "StowlyViews.h"

#include "AppIconImageProvider.h"
#include "HeapRelease.h"
#include "PanelViewModel.h"
#include "RunningAppsListModel.h"
#include "SceneGraphBackend.h"
#include "SettingsViewModel.h"
#include "SymbolImageProvider.h"
#include "Theme.h"
#include "ViewTexts.h"

#include <algorithm>

#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QQuickView>

namespace stowly {

StowlyViews::StowlyViews(AppModel& model, NotifyingPreferenceStore& preferences, QObject* parent)
    : QObject(parent)
{
    // One style everywhere, so that the views look the same on every desktop; it must be
    // chosen before the first Controls type loads.
    if (QQuickStyle::name().isEmpty())
        QQuickStyle::setStyle(QStringLiteral("Fusion"));
    chooseSceneGraphBackend();

    m_icons = std::make_shared<AppIconCache>();
    m_theme = new Theme(this);
    m_panel = new PanelViewModel(model, preferences, this);
    m_openApps = new RunningAppsListModel(model, m_icons, this);
    m_settings = new SettingsViewModel(model, preferences, this);
}

QQmlEngine& StowlyViews::engine()
{
    if (m_engine)
        return *m_engine;
    m_engine = new QQmlEngine(this);
    m_engine->addImageProvider(QStringLiteral("appicon"), new AppIconImageProvider(m_icons));
    m_engine->addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);

    QQmlContext* context = m_engine->rootContext();
    context->setContextProperty(QStringLiteral("panel"), m_panel);
    context->setContextProperty(QStringLiteral("openApps"), m_openApps);
    context->setContextProperty(QStringLiteral("settings"), m_settings);
    context->setContextProperty(QStringLiteral("theme"), m_theme);
    context->setContextProperty(QStringLiteral("texts"), ViewTexts::asMap());
    return *m_engine;
}

StowlyViews::~StowlyViews()
{
    // The engine goes before the objects its context names.
    delete m_engine;
}

QUrl StowlyViews::viewUrl(const QString& fileName)
{
    return QUrl(QStringLiteral("qrc:/Stowly/") + fileName);
}

QUrl StowlyViews::panelUrl()
{
    return viewUrl(QStringLiteral("MenuBarContentView.qml"));
}

QUrl StowlyViews::settingsUrl()
{
    return viewUrl(QStringLiteral("SettingsView.qml"));
}

QQuickView* StowlyViews::createPanelView(QWindow* parent)
{
    auto* view = new QQuickView(&engine(), parent);
    view->setResizeMode(QQuickView::SizeViewToRootObject);
    view->setColor(m_theme->windowBackground);
    view->setTitle(ViewTexts::productName);   // what assistive technology calls the panel
    view->setSource(panelUrl());
    return track(view);
}

QQuickView* StowlyViews::track(QQuickView* view)
{
    m_views.erase(std::remove_if(m_views.begin(), m_views.end(), [](const QPointer<QQuickView>& v) { return v.isNull(); }),
                  m_views.end());
    m_views.emplace_back(view);
    return view;
}

void StowlyViews::setPanelShown(bool shown)
{
    m_panel->setActive(shown);
    m_openApps->setActive(shown);
}

void StowlyViews::releasePanelResources()
{
    m_openApps->release();
    if (m_engine) {
        const bool inUse = std::any_of(m_views.begin(), m_views.end(), [](const QPointer<QQuickView>& v) { return !v.isNull(); });
        if (inUse) {
            m_engine->collectGarbage();
            m_engine->trimComponentCache();
        } else {
            // The script heap, the compiled views and the style's components go with it;
            // the next view makes a new one.
            delete m_engine;
            m_engine = nullptr;
            m_views.clear();
        }
    }
    returnFreedHeapToSystem();
}

QQuickView* StowlyViews::createSettingsView(QWindow* parent)
{
    auto* view = new QQuickView(&engine(), parent);
    view->setResizeMode(QQuickView::SizeViewToRootObject);
    view->setColor(m_theme->windowBackground);
    view->setTitle(ViewTexts::settingsWindowTitle);
    view->setSource(settingsUrl());
    return track(view);
}

} // namespace stowly
