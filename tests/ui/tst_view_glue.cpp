// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The C++ glue: preference notifications, the panel's placement, the tray image and the
// symbol glyphs.
#include "NotifyingPreferenceStore.h"
#include "PanelWindow.h"
#include "StatusIcon.h"
#include "SymbolImageProvider.h"
#include "ViewTexts.h"

#include "FakePlatform.h"

#include <QSignalSpy>
#include <QTest>

using namespace stowly;

class ViewGlueTest : public QObject {
    Q_OBJECT

private slots:
    void everyWriteIsAnnouncedByKey()
    {
        fakes::FakePreferenceStore backing;
        NotifyingPreferenceStore store(backing);
        QSignalSpy any(&store, &NotifyingPreferenceStore::valueChanged);
        QSignalSpy enabled(&store, &NotifyingPreferenceStore::enabledActionsChanged);
        QSignalSpy defaults(&store, &NotifyingPreferenceStore::defaultActionChanged);
        store.setString("enabledActions", "hide");
        store.setString("enabledActions", "hide"); // unchanged values are announced too
        store.setString("defaultAction", "hide");
        store.setString("other", "x");
        QCOMPARE(any.count(), 4);
        QCOMPARE(enabled.count(), 2);
        QCOMPARE(defaults.count(), 1);
        QCOMPARE(backing.values.at("enabledActions"), std::string("hide"));
        QCOMPARE(store.string("defaultAction"), std::optional<std::string>("hide"));
        QCOMPARE(store.string("absent"), std::nullopt);
    }

    void panelGoesUnderATopIconAndStaysOnScreen()
    {
        const QRect screen(0, 0, 1280, 800);
        QCOMPARE(PanelWindow::placement(QSize(340, 600), QRect(600, 4, 22, 22), screen), QPoint(440, 30));
        // Near the right edge it is pushed back onto the screen.
        QCOMPARE(PanelWindow::placement(QSize(340, 600), QRect(1250, 4, 22, 22), screen), QPoint(940, 30));
        // An icon at the bottom gets the panel above it.
        QCOMPARE(PanelWindow::placement(QSize(340, 600), QRect(1250, 774, 22, 22), screen), QPoint(940, 170));
    }

    void trayImageIsTheIconInsideAOnePointMargin()
    {
        for (int scale : {1, 2}) {
            const QImage image = StatusIcon::render(scale);
            QCOMPARE(image.size(), QSize(18 * scale, 18 * scale));
            for (int i = 0; i < 18 * scale; ++i) {
                QCOMPARE(qAlpha(image.pixel(i, 0)), 0);
                QCOMPARE(qAlpha(image.pixel(0, i)), 0);
                QCOMPARE(qAlpha(image.pixel(i, 18 * scale - 1)), 0);
            }
            QCOMPARE(qAlpha(image.pixel(9 * scale, 9 * scale)), 255);
        }
        QCOMPARE(StatusIcon::icon().availableSizes().size(), 2);
    }

    void everySymbolTheViewsUseRendersInItsColour_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : {"macwindow.badge.minus", "eye.slash", "xmark.square", "bolt.fill",
                                 "exclamationmark.triangle.fill", "ellipsis.circle", "app.dashed", "menubar.rectangle",
                                 "checkmark.circle.fill", "checkmark.shield.fill", "checkmark"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void everySymbolTheViewsUseRendersInItsColour()
    {
        QFETCH(QString, name);
        const QColor tint(0x00, 0x7a, 0xff);
        for (int pixels : {16, 32}) {
            const QImage image = SymbolImageProvider::render(name, QSize(pixels, pixels), tint);
            QVERIFY2(!image.isNull(), qPrintable(name));
            int tinted = 0;
            for (int y = 0; y < pixels; ++y) {
                for (int x = 0; x < pixels; ++x) {
                    const QRgb pixel = image.pixel(x, y);
                    if (qAlpha(pixel) > 128 && qRgb(qRed(pixel), qGreen(pixel), qBlue(pixel)) == tint.rgb())
                        ++tinted;
                }
            }
            QVERIFY2(tinted >= pixels / 4, qPrintable(name));
        }
        SymbolImageProvider provider;
        QSize size;
        const QImage viaUrl = provider.requestImage(name + QStringLiteral("?color=ff007aff"), &size, QSize(20, 20));
        QCOMPARE(size, QSize(20, 20));
        QVERIFY(!viaUrl.isNull());
    }

    void composedTexts()
    {
        QCOMPARE(ViewTexts::openAppsHeading(12345), QStringLiteral("Open Apps (12345)"));
        QCOMPARE(ViewTexts::appStatusLine(QStringLiteral("Active"), QStringLiteral("1.5 MB")),
                 QStringLiteral("Active \u2022 RAM: 1.5 MB"));
        QCOMPARE(ViewTexts::defaultActionSummaryTitle(QStringLiteral("Hide All Apps")),
                 QStringLiteral("Default: Hide All Apps"));
    }
};

QTEST_MAIN(ViewGlueTest)
#include "tst_view_glue.moc"
