// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "StatusIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace stowly::StatusIcon {

QImage render(int scale)
{
    QImage image(18 * scale, 18 * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(QStringLiteral(":/Stowly/icons/stowly.svg"));
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    renderer.render(&painter, QRectF(1.0 * scale, 1.0 * scale, 16.0 * scale, 16.0 * scale));
    painter.end();
    return image;
}

QIcon icon()
{
    QIcon result;
    for (int scale : {1, 2})
        result.addPixmap(QPixmap::fromImage(render(scale)));
    return result;
}

} // namespace stowly::StatusIcon
