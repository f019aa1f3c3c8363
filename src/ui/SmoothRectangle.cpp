// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SmoothRectangle.h"

#include "ContinuousCorners.h"

#include <QPainter>

namespace stowly {

void SmoothRectangleBorder::setWidth(qreal width)
{
    m_width = width;
    emit widthChanged();
}

void SmoothRectangleBorder::setColor(const QColor& color)
{
    m_color = color;
    emit colorChanged();
}

SmoothRectangle::SmoothRectangle(QQuickItem* parent)
    : QQuickPaintedItem(parent), m_border(new SmoothRectangleBorder(this))
{
    setAntialiasing(true);
    connect(m_border, &SmoothRectangleBorder::widthChanged, this, [this] { update(); });
    connect(m_border, &SmoothRectangleBorder::colorChanged, this, [this] { update(); });
}

void SmoothRectangle::setColor(const QColor& color)
{
    if (m_color != color) {
        m_color = color;
        update();
    }
    emit colorChanged();
}

void SmoothRectangle::setRadius(qreal radius)
{
    if (m_radius != radius) {
        m_radius = radius;
        update();
    }
    emit radiusChanged();
}

void SmoothRectangle::paint(QPainter* painter)
{
    const QRectF bounds(0, 0, width(), height());
    if (bounds.isEmpty())
        return;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    if (m_color.alpha() > 0) {
        painter->setBrush(m_color);
        painter->drawPath(continuousRoundedRect(bounds, m_radius));
    }
    const qreal line = m_border->width();
    if (line > 0 && m_border->color().alpha() > 0) {
        // The line lies inside the edge, as a Rectangle's border does: its middle runs half a
        // line in, along the same shape with a radius smaller by that half line.
        const qreal half = line / 2;
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(m_border->color(), line));
        painter->drawPath(continuousRoundedRect(bounds.adjusted(half, half, -half, -half), m_radius - half));
    }
}

} // namespace stowly
