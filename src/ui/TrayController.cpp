// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TrayController.h"

#include "PanelViewModel.h"
#include "PanelWindow.h"
#include "SettingsViewModel.h"
#include "StatusIcon.h"
#if defined(STOWLY_UI_STATUS_NOTIFIER)
#include "StatusNotifierItem.h"
#endif
#include "StowlyViews.h"
#include "ViewTexts.h"

#include <QCoreApplication>
#include <QCursor>
#include <QQuickView>
#include <QSystemTrayIcon>

namespace stowly {

TrayController::TrayController(StowlyViews& views, QObject* parent)
    : QObject(parent), m_views(views), m_tray(new QSystemTrayIcon(StatusIcon::icon(), this)),
      m_panel(new PanelWindow([&views] { return views.createPanelView(); }, this))
{
    // The panel starts closed: its view models rest, holding no rows or icons, until it opens.
    m_views.setPanelShown(false);
    m_views.releasePanelResources();
    connect(m_panel, &PanelWindow::aboutToShow, this, [this] { m_views.setPanelShown(true); });
    connect(m_panel, &PanelWindow::hidden, this, [this] { m_views.setPanelShown(false); });
    connect(m_panel, &PanelWindow::released, &m_views, &StowlyViews::releasePanelResources);
    m_tray->setToolTip(ViewTexts::productName);
    connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
            togglePanel();
    });
    connect(&m_views.panel(), &PanelViewModel::settingsRequested, this, &TrayController::openSettings);
    connect(&m_views.panel(), &PanelViewModel::dismissRequested, m_panel, &PanelWindow::hide);
    connect(&m_views.panel(), &PanelViewModel::quitRequested, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    connect(&m_views.settings(), &SettingsViewModel::quitRequested, qApp, &QCoreApplication::quit,
            Qt::QueuedConnection);
}

TrayController::~TrayController()
{
    // The views go before the engine that made them.
    delete m_settings;
    delete m_panel;
}

void TrayController::showTrayIcon()
{
#if defined(STOWLY_UI_STATUS_NOTIFIER)
    if (StatusNotifierItem::isHostAvailable()) {
        m_item = new StatusNotifierItem(QStringLiteral("app.stowly.Stowly"), ViewTexts::productName,
                                        {StatusIcon::render(1), StatusIcon::render(2)}, this);
        connect(m_item, &StatusNotifierItem::activated, this, &TrayController::togglePanelAt);
        connect(m_item, &StatusNotifierItem::contextMenuRequested, this, &TrayController::togglePanelAt);
        if (m_item->registerItem())
            return;
        delete m_item;
        m_item = nullptr;
    }
#endif
    m_tray->show();
}

void TrayController::togglePanel()
{
    m_panel->toggle(trayAnchor());
}

void TrayController::togglePanelAt(QPoint position)
{
    m_panel->toggle(QRect(position - QPoint(9, 9), QSize(18, 18)));
}

QRect TrayController::trayAnchor() const
{
    const QRect geometry = m_tray->geometry();
    if (geometry.isValid() && !geometry.isEmpty())
        return geometry;
    return QRect(QCursor::pos() - QPoint(9, 9), QSize(18, 18));
}

void TrayController::openSettings()
{
    if (!m_settings) {
        m_settings = m_views.createSettingsView();
        m_settings->setMinimumSize(QSize(760, 560));
        m_settings->setMaximumSize(QSize(760, 560));
    }
    if (m_activateBeforeSettings)
        m_activateBeforeSettings();
    m_settings->show();
    m_settings->raise();
    m_settings->requestActivate();
}

} // namespace stowly
