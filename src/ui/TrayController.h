// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>

#include <functional>

class QQuickView;
class QSystemTrayIcon;

namespace stowly {

class PanelWindow;
class StatusNotifierItem;
class StowlyViews;

// The program's presence on the desktop: the tray icon, the panel it opens and the
// settings window the panel opens. Quitting is the panel's Quit (Ctrl+Q).
class TrayController : public QObject {
    Q_OBJECT

public:
    explicit TrayController(StowlyViews& views, QObject* parent = nullptr);
    ~TrayController() override;

    void showTrayIcon();
    void togglePanel();
    // Opens or closes the panel under a point the tray host gave (the click position).
    void togglePanelAt(QPoint position);
    // Opens the settings window, or brings it forward and focuses it when it is open.
    void openSettings();

    PanelWindow& panelWindow() { return *m_panel; }

    // Where the platform asks it (macOS: an accessory app must activate itself before its
    // window can take focus from the app in front), run before the settings window shows.
    void setActivateBeforeSettings(std::function<void()> activate) { m_activateBeforeSettings = std::move(activate); }

private:
    // The tray icon's rectangle, or a small one at the pointer when the tray gives none.
    QRect trayAnchor() const;

    StowlyViews& m_views;
    QSystemTrayIcon* m_tray;
    // Used instead of m_tray where a StatusNotifierItem host listens: it keeps the click position.
    StatusNotifierItem* m_item = nullptr;
    PanelWindow* m_panel;
    QQuickView* m_settings = nullptr;
    std::function<void()> m_activateBeforeSettings;
};

} // namespace stowly
