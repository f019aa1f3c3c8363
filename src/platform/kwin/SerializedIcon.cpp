// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SerializedIcon.h"

#include <QBuffer>
#include <QDataStream>
#include <QImage>
#include <QImageReader>
#include <QSize>
#include <QString>

#include <cstdlib>
#include <memory>

namespace stowly::kwin {

namespace {

// Larger images are scaled down: a list row shows a few dozen pixels.
constexpr int kLargestKept = 256;
// An icon with more entries than this is not one a window would carry.
constexpr qint32 kMostEntries = 64;

// QIcon::Normal and QIcon::Off, as the stream writes them.
constexpr quint32 kNormalMode = 0;
constexpr quint32 kOffState = 1;

// How far an image's size is from the wanted one; the larger image wins a tie.
long distance(const QImage& image, int wantedSize)
{
    const int side = std::max(image.width(), image.height());
    return 2L * std::labs(long(side) - wantedSize) - (side >= wantedSize ? 1 : 0);
}

AppIconRef toAppIcon(QImage image)
{
    if (image.width() > kLargestKept || image.height() > kLargestKept)
        image = image.scaled(kLargestKept, kLargestKept, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    image = image.convertToFormat(QImage::Format_ARGB32);
    auto icon = std::make_shared<AppIcon>();
    icon->width = image.width();
    icon->height = image.height();
    icon->argb.reserve(std::size_t(icon->width) * std::size_t(icon->height));
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(image.constScanLine(y));
        icon->argb.insert(icon->argb.end(), row, row + image.width());
    }
    return icon;
}

} // namespace

AppIconRef decodeSerializedIcon(const QByteArray& bytes, int wantedSize)
{
    QBuffer buffer;
    buffer.setData(bytes);
    if (!buffer.open(QIODevice::ReadOnly))
        return nullptr;
    QDataStream in(&buffer);
    in.setVersion(QDataStream::Qt_5_15);

    QString engine;
    in >> engine;
    if (in.status() != QDataStream::Ok || engine != QStringLiteral("QPixmapIconEngine"))
        return nullptr;
    qint32 count = 0;
    in >> count;
    if (in.status() != QDataStream::Ok || count <= 0 || count > kMostEntries)
        return nullptr;

    QImage best;
    bool bestIsNormalOff = false;
    for (qint32 i = 0; i < count; ++i) {
        // Each entry: a null flag and, when set, a PNG image read straight off the stream;
        // then the file name, the size, the mode and the state it was added for.
        qint32 present = 0;
        in >> present;
        QImage image;
        if (present != 0) {
            QImageReader reader(&buffer, "png");
            image = reader.read();
            if (image.isNull())
                return best.isNull() ? nullptr : toAppIcon(best); // the rest cannot be found
        }
        QString fileName;
        QSize size;
        quint32 mode = 0;
        quint32 state = 0;
        in >> fileName >> size >> mode >> state;
        if (in.status() != QDataStream::Ok)
            break;
        if (image.isNull() || image.width() <= 0 || image.height() <= 0)
            continue;
        const bool normalOff = mode == kNormalMode && state == kOffState;
        if (best.isNull() || (normalOff && !bestIsNormalOff) ||
            (normalOff == bestIsNormalOff && distance(image, wantedSize) < distance(best, wantedSize))) {
            best = image;
            bestIsNormalOff = normalOff;
        }
    }
    return best.isNull() ? nullptr : toAppIcon(best);
}

} // namespace stowly::kwin
