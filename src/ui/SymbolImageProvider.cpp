// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SymbolImageProvider.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QUrlQuery>

namespace stowly {

SymbolImageProvider::SymbolImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QString SymbolImageProvider::resourcePath(const QString& name)
{
    return QStringLiteral(":/Stowly/icons/") + name + QStringLiteral(".svg");
}

QImage SymbolImageProvider::render(const QString& name, const QSize& pixelSize, const QColor& color)
{
    QSvgRenderer renderer(resourcePath(name));
    if (!renderer.isValid() || pixelSize.isEmpty())
        return {};
    QImage image(pixelSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(pixelSize)));
    painter.end();

    // The glyphs are drawn in black with white details (a check on a filled circle):
    // black becomes the colour, white stays white, edges blend between the two.
    image = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = line[x];
            const int lightness = qGray(pixel);
            const auto blend = [lightness](int channel) { return channel + (255 - channel) * lightness / 255; };
            const int alpha = qAlpha(pixel) * color.alpha() / 255;
            line[x] = qRgba(blend(color.red()), blend(color.green()), blend(color.blue()), alpha);
        }
    }
    return image;
}

QImage SymbolImageProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    const int queryStart = id.indexOf(QLatin1Char('?'));
    const QString name = id.left(queryStart);
    QColor color(Qt::black);
    if (queryStart >= 0) {
        const QUrlQuery query(id.mid(queryStart + 1));
        const QString hex = query.queryItemValue(QStringLiteral("color"));
        if (!hex.isEmpty())
            color = QColor::fromRgba(hex.toUInt(nullptr, 16));
    }
    const QSize pixelSize = requestedSize.isValid() && !requestedSize.isEmpty() ? requestedSize : QSize(24, 24);
    QImage image = render(name, pixelSize, color);
    if (size)
        *size = image.size();
    return image;
}

} // namespace stowly
