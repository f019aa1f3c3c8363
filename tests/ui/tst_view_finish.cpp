// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The views' finish: continuous corners on plates, tiles and app icons, and a font family
// whose medium and semibold are faces of their own.
#include "AppIconCache.h"
#include "AppIconImageProvider.h"
#include "ContinuousCorners.h"
#include "Theme.h"
#include "UiFixture.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QPainter>
#include <QTest>

#include <memory>

using namespace stowly;
using stowly::testing::UiFixture;

namespace {

// A point measured from the top-left corner of `rect`, along its top edge and down.
QPointF fromTopLeft(const QRectF& rect, qreal along, qreal down)
{
    return rect.topLeft() + QPointF(along, down);
}

QImage filled(const QPainterPath& path, QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, Qt::black);
    return image;
}

} // namespace

class ViewFinishTest : public QObject {
    Q_OBJECT

private slots:
    void cornersBendEarlierAndFlatterThanACircularArc()
    {
        const QRectF rect(0, 0, 400, 400);
        const qreal radius = 100;
        const QPainterPath smooth = continuousRoundedRect(rect, radius);
        QPainterPath circular;
        circular.addRoundedRect(rect, radius, radius);
        QCOMPARE(smooth.boundingRect(), rect);

        // Where a circular arc starts (one radius from the corner) the edge has already
        // begun to bend away, and it runs straight again only 1.528 radii out.
        const QPointF atOneRadius = fromTopLeft(rect, radius, 0.6);
        QVERIFY(circular.contains(atOneRadius));
        QVERIFY(!smooth.contains(atOneRadius));
        QVERIFY(smooth.contains(fromTopLeft(rect, kContinuousCornerExtent * radius + 1, 0.05)));
        // Further in, it stays outside the circle too.
        QVERIFY(circular.contains(fromTopLeft(rect, 60, 9)));
        QVERIFY(!smooth.contains(fromTopLeft(rect, 60, 9)));
        // On the diagonal it comes as close to the corner as the arc does (0.29 of 0.293 radii).
        QVERIFY(!smooth.contains(fromTopLeft(rect, 28.5, 28.5)));
        QVERIFY(smooth.contains(fromTopLeft(rect, 29.5, 29.5)));

        // The four corners are mirror images of each other.
        for (qreal x = 0.5; x < 400; x += 7) {
            for (qreal y = 0.5; y < 120; y += 3) {
                const bool inside = smooth.contains(QPointF(x, y));
                QCOMPARE(smooth.contains(QPointF(400 - x, y)), inside);
                QCOMPARE(smooth.contains(QPointF(x, 400 - y)), inside);
                QCOMPARE(smooth.contains(QPointF(y, x)), inside);
            }
        }
    }

    void aRadiusTooLargeForTheRectangleShrinksUntilTheCornersMeet()
    {
        const QRectF rect(10, 20, 90, 30);
        const QPainterPath path = continuousRoundedRect(rect, 500);
        QCOMPARE(path.boundingRect(), rect);
        // The short sides keep a point where the corners meet; the long ones a straight run.
        QVERIFY(path.contains(QPointF(10.5, 35)));
        QVERIFY(path.contains(QPointF(55, 20.2)));
        QVERIFY(!path.contains(QPointF(10.5, 21)));

        QCOMPARE(continuousRoundedRect(rect, 0).boundingRect(), rect);
        QVERIFY(continuousRoundedRect(rect, 0).contains(QPointF(10.1, 20.1)));
        QVERIFY(continuousRoundedRect(QRectF(), 5).isEmpty());
    }

    void appIconsAreClippedToTheContinuousShapeWhenDecoded()
    {
        auto cache = std::make_shared<AppIconCache>();
        auto icon = std::make_shared<AppIcon>();
        icon->width = 48;
        icon->height = 48;
        icon->argb.assign(48 * 48, 0xffd02020u);
        cache->update({{7, icon}});
        AppIconImageProvider provider(cache);
        QSize size;
        const QString id = cache->url(7).mid(QStringLiteral("image://appicon/").size());
        const QImage clipped = provider.requestImage(id, &size, QSize(48, 48)).convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(size, QSize(48, 48));

        // Its coverage is the continuous shape's (radius 6 of 24), not a circular one's.
        const QRectF bounds(0, 0, 48, 48);
        const QImage smooth = filled(continuousRoundedRect(bounds, 12), size);
        QPainterPath arc;
        arc.addRoundedRect(bounds, 12, 12);
        const QImage circular = filled(arc, size);
        int largestFromSmooth = 0;
        int largestFromCircular = 0;
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 48; ++x) {
                const int alpha = qAlpha(clipped.pixel(x, y));
                largestFromSmooth = std::max(largestFromSmooth, std::abs(alpha - qAlpha(smooth.pixel(x, y))));
                largestFromCircular = std::max(largestFromCircular, std::abs(alpha - qAlpha(circular.pixel(x, y))));
            }
        }
        QVERIFY2(largestFromSmooth <= 8, qPrintable(QString::number(largestFromSmooth)));
        QVERIFY2(largestFromCircular >= 40, qPrintable(QString::number(largestFromCircular)));
        QCOMPARE(qAlpha(clipped.pixel(0, 0)), 0);
        QCOMPARE(clipped.pixel(24, 24), qRgb(0xd0, 0x20, 0x20));
    }

    void platesTilesAndBoxesDrawContinuousCorners()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& panel = ui.panel();
        for (const char* name : {"tileBackground", "tileSymbolBadge", "buttonBackground"}) {
            QQuickItem* item = ui.find(panel, QLatin1String(name));
            QVERIFY2(item, name);
            QVERIFY2(QByteArray(item->metaObject()->className()).startsWith("stowly::SmoothRectangle"), name);
        }
        QQuickView& settings = ui.settings();
        for (const char* name :
             {"cardBackground", "cardIconTile", "checkboxBox", "summaryBox", "accessStatusBox", "comboBoxBackground"}) {
            QQuickItem* item = ui.find(settings, QLatin1String(name));
            QVERIFY2(item, name);
            QVERIFY2(QByteArray(item->metaObject()->className()).startsWith("stowly::SmoothRectangle"), name);
        }

        // What the tile's plate paints: nothing in the very corner, its colour inside.
        QQuickItem* plate = ui.find(panel, QStringLiteral("tileBackground"));
        const QImage frame = panel.grabWindow();
        const QPointF corner = plate->mapToScene(QPointF(0, 0));
        // (Inside, clear of the symbol badge and the title in the middle.)
        const QColor inside = frame.pixelColor((corner + QPointF(4, plate->height() / 2)).toPoint());
        const QColor window = panel.rootObject()->property("color").value<QColor>();
        QCOMPARE(frame.pixelColor((corner + QPointF(1, 1)).toPoint()), window);
        QCOMPARE(inside, ColorScheme::light().controlBackground);
    }

    void theFamilyHasMediumAndSemiboldFacesOfItsOwn()
    {
        // Inter is installed by scripts/setup; DejaVu, the usual fallback, has only Book and
        // Bold, so it fails the same check.
        QVERIFY(Theme::hasDistinctWeights(QStringLiteral("Inter")));
        QVERIFY(QFontDatabase::hasFamily(QStringLiteral("DejaVu Sans")));
        QVERIFY(!Theme::hasDistinctWeights(QStringLiteral("DejaVu Sans")));
        QCOMPARE(Theme::chooseFontFamily({QStringLiteral("No Such Family"), QStringLiteral("Inter")}),
                 QStringLiteral("Inter"));
        QCOMPARE(Theme::chooseFontFamily({QStringLiteral("No Such Family"), QStringLiteral("DejaVu Sans")}),
                 QGuiApplication::font().family());

        // The views use it, and each weight they ask for finds a face of that weight.
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& panel = ui.panel();
        const struct {
            const char* item;
            const char* face;
        } expected[] = {
            {"titleText", "Semi Bold"},
            {"rowBadgeText", "Medium"},
            {"resultText", "Regular"},
            {"rowName", "Regular"},
        };
        for (const auto& want : expected) {
            QQuickItem* item = ui.find(panel, QLatin1String(want.item));
            QVERIFY2(item, want.item);
            const QFont font = item->property("font").value<QFont>();
            QCOMPARE(font.family(), QStringLiteral("Inter"));
            QCOMPARE(QFontInfo(font).styleName(), QLatin1String(want.face));
        }
        const QFont heading = ui.find(ui.settings(), QStringLiteral("startupHeading"))->property("font").value<QFont>();
        QCOMPARE(heading.family(), QStringLiteral("Inter"));
    }
};

QTEST_MAIN(ViewFinishTest)
#include "tst_view_finish.moc"
