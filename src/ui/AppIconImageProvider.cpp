// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "AppIconImageProvider.h"

#include "ContinuousCorners.h"

#include <QPainter>

namespace stowly {

AppIconImageProvider::AppIconImageProvider(AppIconCacheRef cache)
    : QQuickImageProvider(QQuickImageProvider::Image), m_cache(std::move(cache))
{
}

QImage AppIconImageProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    const QImage source = m_cache->image(id);
    if (source.isNull())
        return {};
    const QSize target = requestedSize.isValid() && !requestedSize.isEmpty() ? requestedSize : source.size();

    QImage result(target, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    // Clipped here, once per decoded size, rather than by a mask item on every frame.
    const qreal radius = 6.0 / 24.0 * qMin(target.width(), target.height());
    painter.setClipPath(continuousRoundedRect(QRectF(QPointF(0, 0), QSizeF(target)), radius));
    painter.drawImage(QRectF(QPointF(0, 0), QSizeF(target)),
                      source.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.end();
    if (size)
        *size = target;
    return result;
}

} // namespace stowly
