// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace stowly {

// The line along a SmoothRectangle's edge (`border.width`, `border.color`, as a Rectangle's).
class SmoothRectangleBorder : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(qreal width READ width WRITE setWidth NOTIFY widthChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)

public:
    using QObject::QObject;
    qreal width() const { return m_width; }
    void setWidth(qreal width);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);

signals:
    void widthChanged();
    void colorChanged();

private:
    qreal m_width = 0;
    QColor m_color = Qt::black;
};

// A filled rectangle with continuous corners (ContinuousCorners.h) and an optional border
// laid inside its edge, for the views' plates, tiles and boxes; it takes a Rectangle's
// place property for property. Painted into a texture once, and again only when a
// property or the size changes, which suits the software scene graph the views use.
class SmoothRectangle : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged FINAL)
    Q_PROPERTY(stowly::SmoothRectangleBorder* border READ border CONSTANT FINAL)

public:
    explicit SmoothRectangle(QQuickItem* parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    qreal radius() const { return m_radius; }
    void setRadius(qreal radius);
    SmoothRectangleBorder* border() const { return m_border; }

    void paint(QPainter* painter) override;

signals:
    void colorChanged();
    void radiusChanged();

private:
    QColor m_color = Qt::white;
    qreal m_radius = 0;
    SmoothRectangleBorder* m_border;
};

} // namespace stowly
