#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QRect>

class QQuickView;

namespace stowly {

// The panel as a frameless tool window under the tray icon: kept out of the taskbar,
// sized by its content, closed as soon as it loses focus.
class PanelWindow : public QObject {
    Q_OBJECT

public:
    // Takes the view over; it must show the panel content.
    explicit PanelWindow(QQuickView* view, QObject* parent = nullptr);
    ~PanelWindow() override;

    QQuickView& view() { return *m_view; }
    bool isVisible() const;

    // Opens the panel next to `anchor` (the tray icon, in global coordinates), or closes
    // it when it is open. A click on the icon that itself took the focus away from the
    // open panel only closes it.
    void toggle(const QRect& anchor);
    void show(const QRect& anchor);
    void hide();

    // Where a panel of `size` goes for an icon at `anchor` on `screen`: centred under the
    // icon, or above it when the icon sits in the lower half, always inside the screen.
    static QPoint placement(const QSize& size, const QRect& anchor, const QRect& screen);

private:
    void place();
    void onActiveChanged();

    QQuickView* m_view;
    QRect m_anchor;
    QElapsedTimer m_sinceFocusLoss;
};

} // namespace stowly
