#include "PanelWindow.h"

#include "TaskbarHints.h"

#include <QGuiApplication>
#include <QQuickView>
#include <QScreen>

namespace stowly {

namespace {
// A tray click arrives just after the focus loss it caused; this tells them apart.
constexpr qint64 kFocusLossClickWindowMs = 300;
constexpr int kGapToIcon = 4;
} // namespace

PanelWindow::PanelWindow(QQuickView* view, QObject* parent)
    : QObject(parent)
    , m_view(view)
{
    m_view->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    connect(m_view, &QWindow::activeChanged, this, &PanelWindow::onActiveChanged);
    // The panel grows and shrinks with its content; keep it attached to the icon.
    connect(m_view, &QWindow::heightChanged, this, [this] {
        if (m_view->isVisible())
            place();
    });
}

PanelWindow::~PanelWindow()
{
    delete m_view;
}

bool PanelWindow::isVisible() const
{
    return m_view->isVisible();
}

void PanelWindow::toggle(const QRect& anchor)
{
    if (m_view->isVisible()) {
        hide();
        return;
    }
    if (m_sinceFocusLoss.isValid() && m_sinceFocusLoss.elapsed() < kFocusLossClickWindowMs)
        return;
    show(anchor);
}

void PanelWindow::show(const QRect& anchor)
{
    m_anchor = anchor;
    place();
    TaskbarHints::skipTaskbarAndPager(*m_view);
    m_view->show();
    m_view->raise();
    m_view->requestActivate();
}

void PanelWindow::hide()
{
    m_view->hide();
}

void PanelWindow::place()
{
    QScreen* screen = QGuiApplication::screenAt(m_anchor.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
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
    if (!m_view->isActive() && m_view->isVisible()) {
        m_sinceFocusLoss.start();
        m_view->hide();
    }
}

} // namespace stowly
