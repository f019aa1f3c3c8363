// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "PanelWindow.h"

#include "TaskbarHints.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QQuickView>
#include <QScreen>

namespace stowly {

// "stowly.panel.debug=true" in QT_LOGGING_RULES prints how long each opening took.
Q_LOGGING_CATEGORY(lcPanel, "stowly.panel", QtWarningMsg)

namespace {
// A tray click arrives just after the focus loss it caused; this tells them apart.
constexpr qint64 kFocusLossClickWindowMs = 300;
constexpr int kGapToIcon = 4;
} // namespace

PanelWindow::PanelWindow(ViewFactory makeView, QObject* parent) : QObject(parent), m_makeView(std::move(makeView))
{
    m_releaseTimer.setSingleShot(true);
    m_releaseTimer.setInterval(kDefaultReleaseDelay);
    connect(&m_releaseTimer, &QTimer::timeout, this, &PanelWindow::releaseView);
}

PanelWindow::~PanelWindow()
{
    delete m_view;
}

QQuickView& PanelWindow::view()
{
    if (m_view)
        return *m_view;
    m_view = m_makeView();
    m_viewWasMade = true;
    m_view->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    connect(m_view, &QWindow::activeChanged, this, &PanelWindow::onActiveChanged);
    connect(m_view, &QQuickWindow::frameSwapped, this, &PanelWindow::onFrameSwapped);
    // The panel grows and shrinks with its content; keep it attached to the icon.
    connect(m_view, &QWindow::heightChanged, this, [this] {
        if (m_view->isVisible())
            place();
    });
    return *m_view;
}

bool PanelWindow::isVisible() const
{
    return m_view && m_view->isVisible();
}

void PanelWindow::toggle(const QRect& anchor)
{
    if (isVisible()) {
        hide();
        return;
    }
    if (m_sinceFocusLoss.isValid() && m_sinceFocusLoss.elapsed() < kFocusLossClickWindowMs)
        return;
    show(anchor);
}

void PanelWindow::show(const QRect& anchor)
{
    m_sinceOpenRequest.start();
    m_awaitingFirstFrame = true;
    m_viewWasMade = false;
    m_releaseTimer.stop();
    emit aboutToShow();
    QQuickView& shown = view();
    m_anchor = anchor;
    place();
    TaskbarHints::skipTaskbarAndPager(shown);
    shown.show();
    shown.raise();
    shown.requestActivate();
}

void PanelWindow::hide()
{
    if (!isVisible())
        return;
    m_view->hide();
    m_awaitingFirstFrame = false;
    m_releaseTimer.start();
    qCDebug(lcPanel, "panel closed");
    emit hidden();
}

void PanelWindow::releaseView()
{
    if (!m_view || m_view->isVisible())
        return;
    // Reached from our own timer only, never from one of the view's signals.
    delete m_view;
    m_view = nullptr;
    qCDebug(lcPanel, "panel view released");
    emit released();
}

void PanelWindow::place()
{
    QScreen* screen = QGuiApplication::screenAt(m_anchor.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen || !m_view)
        return;
    m_view->setPosition(placement(m_view->size(), m_anchor, screen->geometry()));
}

QPoint PanelWindow::placement(const QSize& size, const QRect& anchor, const QRect& screen)
{
    int x = anchor.center().x() - size.width() / 2;
    x = std::max(screen.left(), std::min(x, screen.right() + 1 - size.width()));
    const bool iconInLowerHalf = anchor.center().y() > screen.center().y();
    int y = iconInLowerHalf ? anchor.top() - kGapToIcon - size.height() : anchor.bottom() + 1 + kGapToIcon;
    y = std::max(screen.top(), std::min(y, screen.bottom() + 1 - size.height()));
    return {x, y};
}

void PanelWindow::onActiveChanged()
{
    if (m_view && !m_view->isActive() && m_view->isVisible()) {
        m_sinceFocusLoss.start();
        hide();
    }
}

void PanelWindow::onFrameSwapped()
{
    if (!m_awaitingFirstFrame)
        return;
    m_awaitingFirstFrame = false;
    ++m_opens;
    qCDebug(lcPanel, "panel open %d: first frame %.2f ms after the request (%s)", m_opens,
            double(m_sinceOpenRequest.nsecsElapsed()) / 1e6, m_viewWasMade ? "view made" : "view kept");
}

} // namespace stowly
