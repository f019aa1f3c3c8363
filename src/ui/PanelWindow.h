// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <chrono>
#include <functional>

class QQuickView;

namespace stowly {

// The panel as a frameless tool window under the tray icon: kept out of the taskbar,
// sized by its content, closed as soon as it loses focus. The view exists only around
// the times the panel is shown: it is made when the panel opens and destroyed a few
// seconds after it closed, so that a tray icon waiting all day holds no scene.
class PanelWindow : public QObject {
    Q_OBJECT

public:
    // Makes a view showing the panel content; called again after every release.
    using ViewFactory = std::function<QQuickView*()>;
    explicit PanelWindow(ViewFactory makeView, QObject* parent = nullptr);
    ~PanelWindow() override;

    // The view, made now when there is none.
    QQuickView& view();
    bool hasView() const { return m_view != nullptr; }
    bool isVisible() const;

    // Opens the panel next to `anchor` (the tray icon, in global coordinates), or closes
    // it when it is open. A click on the icon that itself took the focus away from the
    // open panel only closes it.
    void toggle(const QRect& anchor);
    void show(const QRect& anchor);
    void hide();

    // How long a closed panel keeps its view, so that opening it again soon is quick.
    static constexpr std::chrono::milliseconds kDefaultReleaseDelay{4000};
    void setReleaseDelay(std::chrono::milliseconds delay) { m_releaseTimer.setInterval(delay); }

    // Where a panel of `size` goes for an icon at `anchor` on `screen`: centred under the
    // icon, or above it when the icon sits in the lower half, always inside the screen.
    static QPoint placement(const QSize& size, const QRect& anchor, const QRect& screen);

signals:
    // The panel is about to show; what it reads should be current.
    void aboutToShow();
    // The panel closed.
    void hidden();
    // The closed panel's view was destroyed; what only it used may go too.
    void released();

private:
    void place();
    void onActiveChanged();
    void onFrameSwapped();
    void releaseView();

    ViewFactory m_makeView;
    QQuickView* m_view = nullptr;
    QRect m_anchor;
    QElapsedTimer m_sinceFocusLoss;
    QTimer m_releaseTimer;
    // From the click that opened the panel to the first frame it showed.
    QElapsedTimer m_sinceOpenRequest;
    bool m_awaitingFirstFrame = false;
    bool m_viewWasMade = false;
    int m_opens = 0;
};

} // namespace stowly
