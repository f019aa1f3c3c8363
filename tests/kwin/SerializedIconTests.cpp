// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The serialized QIcon KWin writes for get_icon, built here entry by entry as QDataStream
// lays it out (engine key, count, then per image: present flag, PNG, file name, size, mode,
// state), and bytes that are not one.
#include "SerializedIcon.h"

#include <QBuffer>
#include <QDataStream>
#include <QImage>
#include <QImageWriter>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using stowly::kwin::decodeSerializedIcon;

namespace {

struct Entry {
    int side;
    QRgb colour;
    quint32 mode = 0;  // Normal
    quint32 state = 1; // Off
};

QByteArray serializedIcon(const std::vector<Entry>& entries, const QString& engine = "QPixmapIconEngine")
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QDataStream out(&buffer);
    out.setVersion(QDataStream::Qt_5_15);
    out << engine << qint32(entries.size());
    for (const Entry& entry : entries) {
        QImage image(entry.side, entry.side, QImage::Format_ARGB32);
        image.fill(entry.colour);
        out << qint32(1);
        QImageWriter(&buffer, "png").write(image);
        out << QString() << QSize(entry.side, entry.side) << entry.mode << entry.state;
    }
    return buffer.data();
}

TEST(SerializedIcon, PicksTheNormalImageNearestTheWantedSize)
{
    const QByteArray bytes = serializedIcon({{16, 0xff0000ffu}, {48, 0xff00ff00u}, {128, 0xffff0000u}});
    const auto icon = decodeSerializedIcon(bytes, 48);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->width, 48);
    EXPECT_EQ(icon->height, 48);
    EXPECT_EQ(icon->argb.at(0), 0xff00ff00u);
    EXPECT_EQ(icon->argb.size(), 48u * 48u);

    const auto small = decodeSerializedIcon(bytes, 20);
    ASSERT_TRUE(small);
    EXPECT_EQ(small->width, 16);
}

TEST(SerializedIcon, ANormalOffImageWinsOverACloserDisabledOne)
{
    const auto icon = decodeSerializedIcon(serializedIcon({{48, 0xff123456u, 1, 1}, {32, 0xff654321u}}), 48);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->argb.at(0), 0xff654321u);
}

TEST(SerializedIcon, HugeImagesAreScaledDown)
{
    const auto icon = decodeSerializedIcon(serializedIcon({{1024, 0xff336699u}}), 48);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->width, 256);
    EXPECT_EQ(icon->height, 256);
}

TEST(SerializedIcon, WhatIsNoImageIconGivesNothing)
{
    EXPECT_FALSE(decodeSerializedIcon(QByteArray(), 48));
    EXPECT_FALSE(decodeSerializedIcon(QByteArray("\x00\x01garbage", 9), 48));
    EXPECT_FALSE(decodeSerializedIcon(serializedIcon({{48, 0xff00ff00u}}, "QIconLoaderEngine"), 48));
    EXPECT_FALSE(decodeSerializedIcon(serializedIcon({}), 48));
    // Cut anywhere: never more than what was whole, never a crash.
    const QByteArray whole = serializedIcon({{48, 0xff00ff00u}, {64, 0xff0000ffu}});
    for (qsizetype cut = 0; cut < whole.size(); cut += 7)
        decodeSerializedIcon(whole.left(cut), 48);
    const auto firstOnly = decodeSerializedIcon(whole.left(whole.size() - 40), 64);
    ASSERT_TRUE(firstOnly);
    EXPECT_EQ(firstOnly->width, 48);
}

} // namespace
