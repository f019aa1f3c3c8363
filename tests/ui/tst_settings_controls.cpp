// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// ActionOptionCard, CheckboxRow and CheckboxIndicator on their own.
#include "Theme.h"
#include "UiFixture.h"

#include <QQmlComponent>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

using namespace stowly;
using stowly::testing::UiFixture;

class SettingsControlsTest : public QObject {
    Q_OBJECT

private:
    // One control in a window of its own.
    struct Hosted {
        std::unique_ptr<QQuickView> window;
        QQuickItem* item = nullptr;
    };

    Hosted host(UiFixture& ui, const char* file, const QVariantMap& properties, qreal width)
    {
        Hosted hosted;
        hosted.window = std::make_unique<QQuickView>(&ui.views().engine(), nullptr);
        hosted.window->resize(int(width) + 20, 400);
        QQmlComponent component(&ui.views().engine(), StowlyViews::viewUrl(QLatin1String(file)));
        QObject* object = component.createWithInitialProperties(properties);
        if (!object)
            qWarning() << component.errorString();
        hosted.item = qobject_cast<QQuickItem*>(object);
        if (hosted.item) {
            hosted.item->setParent(hosted.window->contentItem());
            hosted.item->setParentItem(hosted.window->contentItem());
            hosted.item->setWidth(width);
        }
        hosted.window->show();
        if (!QTest::qWaitForWindowExposed(hosted.window.get()))
            qWarning("control window was never exposed");
        UiFixture::settle();
        return hosted;
    }

    static QVariantMap option(const QString& summary = QStringLiteral("Clear the desktop while keeping apps running."))
    {
        return {{QStringLiteral("rawValue"), QStringLiteral("minimize")},
                {QStringLiteral("shortTitle"), QStringLiteral("Minimize")},
                {QStringLiteral("cardSummary"), summary},
                {QStringLiteral("systemImage"), QStringLiteral("macwindow.badge.minus")}};
    }
    static QColor colorOf(QQuickItem* root, const char* name, const char* property = "color")
    {
        return UiFixture::findIn(root, QLatin1String(name))->property(property).value<QColor>();
    }
    static bool sameColor(const QColor& a, const QColor& b, qreal alpha)
    {
        return a.rgb() == b.rgb() && qAbs(a.alphaF() - alpha) < 0.01;
    }

private slots:
    void selectedCardLook()
    {
        UiFixture ui;
        ui.start();
        Hosted card = host(ui, "ActionOptionCard.qml", {{"option", option()}, {"isSelected", true}}, 170);
        QVERIFY(card.item);
        QQuickItem* background = card.item->property("background").value<QQuickItem*>();
        QVERIFY(sameColor(background->property("color").value<QColor>(), ColorScheme::light().accent, 0.06));
        QCOMPARE(background->property("radius").toReal(), 18.0);
        QObject* border = background->property("border").value<QObject*>();
        QCOMPARE(border->property("width").toReal(), 2.0);
        QCOMPARE(border->property("color").value<QColor>(), ColorScheme::light().accent);
        QVERIFY(sameColor(colorOf(card.item, "cardIconTile"), ColorScheme::light().accent, 0.14));
        QCOMPARE(UiFixture::findIn(card.item, QStringLiteral("cardIconTile"))->width(), 52.0);
        QCOMPARE(colorOf(card.item, "cardSymbol", "tint"), ColorScheme::light().accent);
        QCOMPARE(colorOf(card.item, "checkboxBox"), ColorScheme::light().accent);
        QVERIFY(UiFixture::findIn(card.item, QStringLiteral("checkboxMark"))->isVisible());
        QVERIFY(card.item->height() >= 180);
    }

    void cardMetrics()
    {
        UiFixture ui;
        ui.start();
        Hosted card = host(ui, "ActionOptionCard.qml", {{"option", option()}, {"isSelected", true}}, 170);
        const Theme theme;
        QQuickItem* tile = UiFixture::findIn(card.item, QStringLiteral("cardIconTile"));
        QQuickItem* title = UiFixture::findIn(card.item, QStringLiteral("cardTitle"));
        QQuickItem* summary = UiFixture::findIn(card.item, QStringLiteral("cardSummary"));
        QQuickItem* check = UiFixture::findIn(card.item, QStringLiteral("checkboxIndicator"));
        const auto at = [&card](QQuickItem* item) { return item->mapToItem(card.item, QPointF(0, 0)); };
        QCOMPARE(at(tile), QPointF(18, 18));
        QCOMPARE(tile->height(), 52.0);
        QCOMPARE(tile->property("radius").toReal(), 12.0);
        // The check box at the trailing edge, on the icon tile's centre line.
        QCOMPARE(at(check).x() + check->width(), 170.0 - 18);
        QCOMPARE(at(check).y() + check->height() / 2, 18 + 26.0);
        QCOMPARE(at(title), QPointF(18, 18 + 52 + 14));
        QCOMPARE(at(summary).y(), at(title).y() + title->height() + 14);
        QCOMPARE(summary->width(), 170.0 - 36);
        QCOMPARE(title->property("font").value<QFont>().pixelSize(), theme.headlineSize);
        QCOMPARE(title->property("font").value<QFont>().weight(), QFont::DemiBold);
        QCOMPARE(summary->property("font").value<QFont>().pixelSize(), theme.subheadlineSize);
        QCOMPARE(summary->property("color").value<QColor>(), ColorScheme::light().secondary);
        QCOMPARE(summary->property("horizontalAlignment").toInt(), int(Qt::AlignLeft));
    }

    void rowMetrics()
    {
        UiFixture ui;
        ui.start();
        Hosted row = host(ui, "CheckboxRow.qml", {{"title", "Title"}, {"subtitle", "Subtitle"}, {"isOn", true}}, 400);
        const Theme theme;
        QQuickItem* check = UiFixture::findIn(row.item, QStringLiteral("checkboxIndicator"));
        QQuickItem* title = UiFixture::findIn(row.item, QStringLiteral("checkboxRowTitle"));
        QQuickItem* subtitle = UiFixture::findIn(row.item, QStringLiteral("checkboxRowSubtitle"));
        const auto at = [&row](QQuickItem* item) { return item->mapToItem(row.item, QPointF(0, 0)); };
        // 16 inside; the check box and the title both at the top, 14 apart; lines 4 apart.
        QCOMPARE(at(check), QPointF(16, 16));
        QCOMPARE(at(title), QPointF(16 + 24 + 14, 16));
        QCOMPARE(at(subtitle).y(), 16 + title->height() + 4);
        QCOMPARE(at(title).x() + title->width(), 400.0 - 16);
        QCOMPARE(row.item->height(), 16 + title->height() + 4 + subtitle->height() + 16);
        QQuickItem* background = row.item->property("background").value<QQuickItem*>();
        QCOMPARE(background->property("radius").toReal(), 16.0);
        QCOMPARE(background->property("color").value<QColor>(), ColorScheme::light().controlBackground);
        QCOMPARE(title->property("font").value<QFont>().pixelSize(), theme.headlineSize);
        QCOMPARE(subtitle->property("font").value<QFont>().pixelSize(), theme.subheadlineSize);
        QCOMPARE(subtitle->property("color").value<QColor>(), ColorScheme::light().secondary);
    }

    void unselectedCardLook()
    {
        UiFixture ui;
        ui.start();
        Hosted card = host(ui, "ActionOptionCard.qml", {{"option", option()}, {"isSelected", false}}, 170);
        QQuickItem* background = card.item->property("background").value<QQuickItem*>();
        QCOMPARE(background->property("color").value<QColor>(), ColorScheme::light().controlBackground);
        QObject* border = background->property("border").value<QObject*>();
        QCOMPARE(border->property("width").toReal(), 1.0);
        QCOMPARE(border->property("color").value<QColor>(), ColorScheme::light().separator);
        QCOMPARE(colorOf(card.item, "cardIconTile"), ColorScheme::light().control);
        QCOMPARE(colorOf(card.item, "cardSymbol", "tint"), ColorScheme::light().secondary);
        QCOMPARE(colorOf(card.item, "checkboxBox"), ColorScheme::light().windowBackground);
        QVERIFY(!UiFixture::findIn(card.item, QStringLiteral("checkboxMark"))->isVisible());
    }

    void clickingACardSelectsOnceAndLeavesItsLook()
    {
        UiFixture ui;
        ui.start();
        Hosted card = host(ui, "ActionOptionCard.qml", {{"option", option()}, {"isSelected", false}}, 170);
        QSignalSpy select(card.item, SIGNAL(select()));
        UiFixture::click(*card.window, card.item, QPointF(20, card.item->height() - 10));
        QCOMPARE(select.count(), 1);
        QVERIFY(!card.item->property("isSelected").toBool());
        QCOMPARE(colorOf(card.item, "checkboxBox"), ColorScheme::light().windowBackground);
    }

    void aLongCardSummaryWrapsAndTheCardGrows()
    {
        UiFixture ui;
        ui.start();
        const QString longSummary = QStringLiteral("A summary that goes on and on, ").repeated(8);
        Hosted card = host(ui, "ActionOptionCard.qml", {{"option", option(longSummary)}, {"isSelected", true}}, 170);
        QQuickItem* summary = UiFixture::findIn(card.item, QStringLiteral("cardSummary"));
        QVERIFY(summary->property("lineCount").toInt() > 3);
        QVERIFY(!summary->property("truncated").toBool());
        QVERIFY(summary->width() <= card.item->width() - 36);
        QVERIFY(card.item->height() > 180);
    }

    void aDisabledRowIgnoresClicksAndIsDimmed()
    {
        UiFixture ui;
        ui.start();
        Hosted row = host(ui, "CheckboxRow.qml",
                          {{"title", "Title"}, {"subtitle", "Subtitle"}, {"isOn", false}, {"isEnabled", false}}, 400);
        QSignalSpy toggled(row.item, SIGNAL(toggleRequested(bool)));
        UiFixture::click(*row.window, row.item);
        QCOMPARE(toggled.count(), 0);
        QCOMPARE(row.item->opacity(), 0.72);
        QCOMPARE(colorOf(row.item, "checkboxRowTitle"), ColorScheme::light().secondary);
        QVERIFY(!UiFixture::findIn(row.item, QStringLiteral("checkboxMark"))->isVisible());
        row.item->setProperty("isOn", true);
        QVERIFY(UiFixture::findIn(row.item, QStringLiteral("checkboxMark"))->isVisible());
    }

    void anEnabledRowAsksForTheFlippedValue()
    {
        UiFixture ui;
        ui.start();
        Hosted row = host(ui, "CheckboxRow.qml", {{"title", "Title"}, {"subtitle", "Subtitle"}, {"isOn", true}}, 400);
        QCOMPARE(row.item->opacity(), 1.0);
        QCOMPARE(colorOf(row.item, "checkboxRowTitle"), ColorScheme::light().primary);
        QSignalSpy toggled(row.item, SIGNAL(toggleRequested(bool)));
        UiFixture::click(*row.window, row.item);
        QCOMPARE(toggled.count(), 1);
        QCOMPARE(toggled.front().front().toBool(), false);
        // Nobody stores the value: like a constant binding, the row keeps showing it.
        QVERIFY(row.item->property("isOn").toBool());
        QVERIFY(UiFixture::findIn(row.item, QStringLiteral("checkboxMark"))->isVisible());
    }

    void aLongSubtitleWrapsAndTheRowGrows()
    {
        UiFixture ui;
        ui.start();
        Hosted shortRow = host(ui, "CheckboxRow.qml", {{"title", "Title"}, {"subtitle", "Short"}}, 400);
        Hosted longRow =
            host(ui, "CheckboxRow.qml",
                 {{"title", "Title"}, {"subtitle", QStringLiteral("Words that wrap. ").repeated(20)}}, 400);
        QQuickItem* subtitle = UiFixture::findIn(longRow.item, QStringLiteral("checkboxRowSubtitle"));
        QVERIFY(subtitle->property("lineCount").toInt() > 2);
        QVERIFY(!subtitle->property("truncated").toBool());
        QVERIFY(longRow.item->height() > shortRow.item->height());
    }

    void indicatorShape()
    {
        UiFixture ui;
        ui.start();
        Hosted indicator = host(ui, "CheckboxIndicator.qml", {{"isSelected", true}}, 24);
        QQuickItem* box = UiFixture::findIn(indicator.item, QStringLiteral("checkboxBox"));
        QCOMPARE(box->width(), 24.0);
        QCOMPARE(box->height(), 24.0);
        QCOMPARE(box->property("radius").toReal(), 7.0);
        QCOMPARE(box->property("color").value<QColor>(), ColorScheme::light().accent);
        // The 1.5 outline is centred on the square's edge: its box reaches 0.75 outside.
        QQuickItem* stroke = UiFixture::findIn(indicator.item, QStringLiteral("checkboxStroke"));
        QVERIFY(stroke);
        QCOMPARE(stroke->x(), -0.75);
        QCOMPARE(stroke->y(), -0.75);
        QCOMPARE(stroke->width(), 25.5);
        QCOMPARE(stroke->height(), 25.5);
        QCOMPARE(stroke->property("radius").toReal(), 7.75);
        QObject* border = stroke->property("border").value<QObject*>();
        QCOMPARE(border->property("width").toReal(), 1.5);
        QCOMPARE(border->property("color").value<QColor>(), ColorScheme::light().accent);
        QCOMPARE(colorOf(indicator.item, "checkboxMark", "tint"), ColorScheme::light().white);
        QCOMPARE(UiFixture::findIn(indicator.item, QStringLiteral("checkboxMark"))->property("name").toString(),
                 QStringLiteral("checkmark"));
        // The white mark spans about 11 of the 24 points, centred.
        const QImage image = indicator.window->grabWindow();
        const QRect square = indicator.item->mapRectToScene(QRectF(0, 0, 24, 24)).toRect();
        int left = square.right(), right = square.left();
        // Inside the filled square, clear of its rounded corners and outline.
        for (int y = square.top() + 5; y <= square.bottom() - 5; ++y) {
            for (int x = square.left() + 2; x <= square.right() - 2; ++x) {
                if (image.pixelColor(x, y).lightness() > 230) {
                    left = std::min(left, x);
                    right = std::max(right, x);
                }
            }
        }
        QVERIFY2(right - left + 1 >= 10 && right - left + 1 <= 13, qPrintable(QString::number(right - left + 1)));
        QVERIFY(qAbs((left + right) / 2.0 - square.center().x()) <= 1.5);

        indicator.item->setProperty("isSelected", false);
        QCOMPARE(border->property("color").value<QColor>(), ColorScheme::light().separator);
        QCOMPARE(box->property("color").value<QColor>(), ColorScheme::light().windowBackground);
        QVERIFY(!UiFixture::findIn(indicator.item, QStringLiteral("checkboxMark"))->isVisible());
    }
};

QTEST_MAIN(SettingsControlsTest)
#include "tst_settings_controls.moc"
