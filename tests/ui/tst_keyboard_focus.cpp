// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The views driven from the keyboard alone, and the colour and layout finish that goes with it:
// focus order, Space / Enter / menu key, Escape, disabled tiles, badge tint, overlay scroll bar,
// the scrolling settings window and the contrast of the coloured texts.
#include "PanelViewModel.h"
#include "Theme.h"
#include "UiFixture.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPalette>
#include <QQmlProperty>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace stowly;
using stowly::testing::UiFixture;

namespace {

// WCAG 2 relative luminance of an opaque colour.
double luminance(const QColor& c)
{
    const auto channel = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) + 0.0722 * channel(c.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

// `over` laid with its own alpha on the opaque `under`.
QColor composite(const QColor& over, const QColor& under)
{
    const double a = over.alphaF();
    return QColor::fromRgbF(float(over.redF() * a + under.redF() * (1 - a)),
                            float(over.greenF() * a + under.greenF() * (1 - a)),
                            float(over.blueF() * a + under.blueF() * (1 - a)));
}

QQuickItem* focused(QQuickView& view)
{
    return view.activeFocusItem();
}

QString focusName(QQuickView& view)
{
    QQuickItem* item = focused(view);
    return item ? item->objectName() : QStringLiteral("<none>");
}

void activate(QQuickView& view)
{
    view.requestActivate();
    QVERIFY(QTest::qWaitForWindowActive(&view));
}

} // namespace

class KeyboardFocusTest : public QObject {
    Q_OBJECT

private slots:
    void panelOpensOnTheDefaultTile()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.addApp(101, "Notes");
        ui.setPreference("defaultAction", "closeWindows");
        ui.start();
        QQuickView& view = ui.panel();
        activate(view);
        QTRY_COMPARE(focusName(view), QStringLiteral("actionTile_closeWindows"));
        QQuickItem* ring = ui.findIn(focused(view), QStringLiteral("tileBackground"));
        QCOMPARE(QQmlProperty::read(ring, QStringLiteral("border.width")).toInt(), 2);
        QCOMPARE(QQmlProperty::read(ring, QStringLiteral("border.color")).value<QColor>(), ColorScheme::light().accent);
        QQuickItem* other = ui.find(view, QStringLiteral("actionTile_hide"));
        QCOMPARE(QQmlProperty::read(ui.findIn(other, QStringLiteral("tileBackground")), QStringLiteral("border.width"))
                     .toInt(),
                 0);
    }

    void tabWalksTilesRowMenusAndFooterInReadingOrder()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.addApp(101, "Notes");
        ui.addApp(102, "Mail");
        ui.start();
        QQuickView& view = ui.panel();
        activate(view);
        QTRY_COMPARE(focusName(view), QStringLiteral("actionTile_minimize"));

        const QStringList order = {
            "actionTile_minimize",  "actionTile_hide", "actionTile_closeWindows",
            "actionTile_forceQuit", "rowMenuButton",   "rowMenuButton",
            "settingsButton",       "refreshButton",   "quitButton",
        };
        QList<QQuickItem*> seen{focused(view)};
        for (int i = 1; i < order.size(); ++i) {
            QTest::keyClick(&view, Qt::Key_Tab);
            QCOMPARE(focusName(view), order[i]);
            seen.append(focused(view));
        }
        // The two row menus are the two rows' own, top row first.
        QVERIFY(seen[4] != seen[5]);
        QVERIFY(seen[4]->mapToScene(QPointF(0, 0)).y() < seen[5]->mapToScene(QPointF(0, 0)).y());
        for (int i = order.size() - 2; i >= 0; --i) {
            QTest::keyClick(&view, Qt::Key_Tab, Qt::ShiftModifier);
            QCOMPARE(focused(view), seen[i]);
        }
    }

    void disabledTileTakesNoFocusAndIgnoresSpaceAndEnter()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false; // minimize and close windows need access
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        activate(view);
        QQuickItem* minimize = ui.find(view, QStringLiteral("actionTile_minimize"));
        QVERIFY(!minimize->isEnabled());
        QVERIFY(!minimize->activeFocusOnTab());
        QCOMPARE(minimize->property("focusPolicy").toInt(), int(Qt::NoFocus));
        // The keyboard starts on the first tile that can act.
        QTRY_COMPARE(focusName(view), QStringLiteral("actionTile_hide"));
        for (int i = 0; i < 12; ++i) {
            QTest::keyClick(&view, Qt::Key_Tab);
            QVERIFY(focused(view) != minimize);
            QVERIFY(focusName(view) != QStringLiteral("actionTile_closeWindows"));
        }

        // It cannot be given the focus, and keys sent to it straight do nothing.
        minimize->forceActiveFocus();
        QVERIFY(!minimize->hasActiveFocus());
        const QString before = ui.model().lastResultMessage();
        for (Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
            QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
            QCoreApplication::sendEvent(minimize, &press);
            QCoreApplication::sendEvent(minimize, &release);
        }
        UiFixture::settle();
        QCOMPARE(ui.model().lastResultMessage(), before);
        QVERIFY(ui.fake.accessibility.log.empty());
    }

    void spaceAndEnterRunTheFocusedTile()
    {
        for (Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            UiFixture ui;
            ui.fake.trust.trusted = true;
            auto notes = ui.addApp(101, "Notes");
            ui.setPreference("defaultAction", "hide");
            ui.start();
            QQuickView& view = ui.panel();
            activate(view);
            QTRY_COMPARE(focusName(view), QStringLiteral("actionTile_hide"));
            QTest::keyClick(&view, key);
            QCOMPARE(notes->hideCalls, 1);
            QVERIFY(!ui.model().lastResultMessage().isEmpty());
        }
    }

    void rowMenuOpensFromTheKeyboardAndArrowsChoose()
    {
        for (Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Menu}) {
            UiFixture ui;
            ui.fake.trust.trusted = true;
            auto notes = ui.addApp(101, "Notes");
            ui.start();
            QQuickView& view = ui.panel();
            activate(view);
            QQuickItem* menuButton = ui.find(view, QStringLiteral("rowMenuButton"));
            menuButton->forceActiveFocus(Qt::TabFocusReason);
            QTest::keyClick(&view, key);
            QObject* menu = menuButton->findChild<QObject*>(QStringLiteral("rowMenu"));
            QVERIFY(menu);
            QTRY_VERIFY(menu->property("opened").toBool());
            // Down moves from "Open" to "Close App"; Up comes back; Enter chooses "Open".
            QCOMPARE(menu->property("currentIndex").toInt(), 0);
            QTest::keyClick(&view, Qt::Key_Down);
            QCOMPARE(menu->property("currentIndex").toInt(), 1);
            QTest::keyClick(&view, Qt::Key_Up);
            QCOMPARE(menu->property("currentIndex").toInt(), 0);
            QTest::keyClick(&view, Qt::Key_Return);
            QTRY_VERIFY(!menu->property("visible").toBool());
            QCOMPARE(notes->activateCalls.size(), std::size_t(1));
            QCOMPARE(notes->terminateCalls, 0);
        }
    }

    void escapeClosesAnOpenMenuFirstThenThePanel()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        activate(view);
        QSignalSpy dismissed(&ui.views().panel(), &PanelViewModel::dismissRequested);
        QQuickItem* menuButton = ui.find(view, QStringLiteral("rowMenuButton"));
        menuButton->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&view, Qt::Key_Return);
        QObject* menu = menuButton->findChild<QObject*>(QStringLiteral("rowMenu"));
        QTRY_VERIFY(menu->property("opened").toBool());
        QTest::keyClick(&view, Qt::Key_Escape);
        QTRY_VERIFY(!menu->property("visible").toBool());
        QCOMPARE(dismissed.count(), 0);
        QTest::keyClick(&view, Qt::Key_Escape);
        QCOMPARE(dismissed.count(), 1);
    }

    void aRowMenuButtonKeepsTheFocusWhileTheRowsReorder()
    {
        // The list reorders its rows on a tick when memory figures change. The focus must
        // stay on the menu button the user tabbed to, through the reorder and through a
        // menu opened and closed on it, so that Enter then opens that app's menu.
        UiFixture ui;
        ui.fake.trust.trusted = true;
        auto first = ui.addApp(101, "First", 30u << 20);
        auto second = ui.addApp(102, "Second", 20u << 20);
        ui.addApp(103, "Third", 10u << 20);
        ui.start();
        QQuickView& view = ui.panel();
        activate(view);
        QTRY_COMPARE(focusName(view), QStringLiteral("actionTile_minimize"));
        for (int i = 0; i < 12 && focusName(view) != QStringLiteral("rowMenuButton"); ++i)
            QTest::keyClick(&view, Qt::Key_Tab);
        QCOMPARE(focusName(view), QStringLiteral("rowMenuButton"));
        const auto focusedMenu = [&view] {
            QQuickItem* item = focused(view);
            return item ? item->property("text").toString() : QString();
        };
        QCOMPARE(focusedMenu(), QStringLiteral("Actions for First"));

        // Second grows past First: the rows swap places.
        ui.fake.processTable.processes[102].footprint = 40u << 20;
        ui.model().refreshRunningApps();
        ui.settle();
        QCOMPARE(ui.find(view, QStringLiteral("appRow_0"))->property("name").toString(), QStringLiteral("Second"));
        QCOMPARE(focusName(view), QStringLiteral("rowMenuButton"));
        QCOMPARE(focusedMenu(), QStringLiteral("Actions for First"));

        // A menu opened and closed from the keyboard hands the focus back to its button,
        // also when the rows move while it is open.
        QObject* menu = focused(view)->findChild<QObject*>(QStringLiteral("rowMenu"));
        QVERIFY(menu);
        QTest::keyClick(&view, Qt::Key_Return);
        QTRY_VERIFY(menu->property("opened").toBool());
        ui.fake.processTable.processes[101].footprint = 50u << 20;
        ui.model().refreshRunningApps();
        ui.settle();
        QTest::keyClick(&view, Qt::Key_Escape);
        QTRY_VERIFY(!menu->property("visible").toBool());
        QTRY_COMPARE(focusedMenu(), QStringLiteral("Actions for First"));
        QTest::keyClick(&view, Qt::Key_Return);
        QTRY_VERIFY(menu->property("opened").toBool());
        QTest::keyClick(&view, Qt::Key_Return);
        QTRY_VERIFY(!menu->property("visible").toBool());
        QCOMPARE(first->activateCalls.size(), std::size_t(1));
        QCOMPARE(second->activateCalls.size(), std::size_t(0));
    }

    void badgeTintScalesTheStatusColoursOwnAlpha()
    {
        UiFixture ui;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* badge = ui.find(view, QStringLiteral("rowBadge"));
        const QColor fill = badge->property("color").value<QColor>();
        QCOMPARE(fill.rgb(), ColorScheme::light().secondary.rgb());
        QVERIFY(ColorScheme::light().secondary.alphaF() < 0.9);
        QVERIFY(qAbs(fill.alphaF() - ColorScheme::light().secondary.alphaF() * 0.14) < 0.01);
    }

    void scrollBarLiesOverTheRows()
    {
        UiFixture ui;
        for (int pid = 200; pid < 230; ++pid)
            ui.addApp(pid, "App " + std::to_string(pid));
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* list = ui.find(view, QStringLiteral("appList"));
        QQuickItem* bar = ui.find(view, QStringLiteral("appListScrollBar"));
        QVERIFY(list->property("contentHeight").toReal() > list->height());
        QVERIFY(bar->isVisible());
        QVERIFY(bar->width() > 0);
        QQuickItem* content = list->property("contentItem").value<QQuickItem*>();
        QQuickItem* first = ui.findIn(content, QStringLiteral("appRow_0"));
        QCOMPARE(first->width(), list->width());
        QCOMPARE(first->width(), 312.0);
    }

    void tabIntoARowBelowTheFoldScrollsItIntoView()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        for (int pid = 300; pid < 312; ++pid)
            ui.addApp(pid, "App " + std::to_string(pid));
        ui.start();
        QQuickView& view = ui.panel();
        activate(view);
        QTRY_COMPARE(focusName(view), QStringLiteral("actionTile_minimize"));
        QQuickItem* list = ui.find(view, QStringLiteral("appList"));
        QCOMPARE(list->property("contentY").toReal(), 0.0);

        // Walk the row menus; each focused one must lie whole inside the list's 220 points.
        int rowsSeen = 0;
        qreal deepest = 0;
        for (int i = 0; i < 60 && focusName(view) != QStringLiteral("settingsButton"); ++i) {
            QTest::keyClick(&view, Qt::Key_Tab);
            QQuickItem* item = focused(view);
            if (!item || item->objectName() != QStringLiteral("rowMenuButton"))
                continue;
            ++rowsSeen;
            ui.settle();
            const qreal top = item->mapToItem(list, QPointF(0, 0)).y();
            QVERIFY2(
                top >= 0 && top + item->height() <= list->height(),
                qPrintable(
                    QStringLiteral("row %1 menu at %2 in a %3-point list").arg(rowsSeen).arg(top).arg(list->height())));
            deepest = std::max(deepest, list->property("contentY").toReal());
        }
        QCOMPARE(rowsSeen, 12);
        QVERIFY(deepest > 0);
    }

    void settingsWindowScrollsWithAHintAndFollowsTheFocus()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        activate(view);
        auto* scroller = qobject_cast<QQuickItem*>(ui.find(view, QStringLiteral("settingsScroller")));
        QVERIFY(scroller);
        QCOMPARE(view.height(), 560);
        QVERIFY(scroller->property("contentHeight").toReal() > scroller->height());
        QQuickItem* hint = ui.find(view, QStringLiteral("moreBelowHint"));
        QQuickItem* bar = ui.find(view, QStringLiteral("settingsScrollBar"));
        QVERIFY(hint->isVisible());
        QVERIFY(bar->isVisible());
        QCOMPARE(scroller->property("contentY").toReal(), 0.0);

        // Tab to the last control: the view scrolls it into sight and the hint goes.
        QQuickItem* last = ui.find(view, QStringLiteral("grantAccessButton"));
        QVERIFY(last->isVisible());
        for (int i = 0; i < 20 && view.activeFocusItem() != last; ++i)
            QTest::keyClick(&view, Qt::Key_Tab);
        QCOMPARE(view.activeFocusItem(), last);
        QTRY_VERIFY(scroller->property("contentY").toReal() > 0);
        const qreal bottom = last->mapToItem(scroller, QPointF(0, last->height())).y();
        QVERIFY(bottom <= scroller->height());
        QTRY_VERIFY(scroller->property("atYEnd").toBool() == !hint->isVisible());

        QTest::keyClick(&view, Qt::Key_Escape);
        QTRY_VERIFY(!view.isVisible());
    }

    void pickerOpensFromTheKeyboardAndArrowsChoose()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        activate(view);
        QQuickItem* picker = ui.find(view, QStringLiteral("defaultActionPicker"));
        for (int i = 0; i < 12 && view.activeFocusItem() != picker; ++i)
            QTest::keyClick(&view, Qt::Key_Tab);
        QCOMPARE(view.activeFocusItem(), picker);
        QCOMPARE(
            QQmlProperty::read(ui.findIn(picker, QStringLiteral("comboBoxBackground")), QStringLiteral("border.color"))
                .value<QColor>(),
            ColorScheme::light().accent);
        // Items: Close Windows, Force Quit, Hide, Minimize; Minimize is current.
        QObject* popup = picker->property("popup").value<QObject*>();
        QTest::keyClick(&view, Qt::Key_Return);
        QTRY_VERIFY(popup->property("opened").toBool());
        QCOMPARE(picker->property("highlightedIndex").toInt(), 3);
        QTest::keyClick(&view, Qt::Key_Up);
        QTest::keyClick(&view, Qt::Key_Up);
        QCOMPARE(picker->property("highlightedIndex").toInt(), 1);
        QTest::keyClick(&view, Qt::Key_Return);
        QTRY_VERIFY(!popup->property("visible").toBool());
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("forceQuit"));
        QCOMPARE(picker->property("currentText").toString(), QStringLiteral("Force Quit"));
        // Space opens it too; Escape closes the list and leaves the window open.
        QTest::keyClick(&view, Qt::Key_Space);
        QTRY_VERIFY(popup->property("opened").toBool());
        QTest::keyClick(&view, Qt::Key_Escape);
        QTRY_VERIFY(!popup->property("visible").toBool());
        QVERIFY(view.isVisible());
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("forceQuit"));
    }

    void colouredTextsReachFourAndAHalfToOne()
    {
        // Both schemes: primary and secondary text, and orange and green on their own and on
        // their badge tint, against the window and the controls.
        for (const ColorScheme* scheme : {&ColorScheme::light(), &ColorScheme::dark()}) {
            const QColor backgrounds[] = {scheme->windowBackground, scheme->controlBackground};
            for (const QColor& under : backgrounds) {
                for (const QColor& text : {scheme->primary, scheme->secondary}) {
                    QVERIFY2(contrast(composite(text, under), under) >= 4.5,
                             qPrintable(text.name(QColor::HexArgb) + " on " + under.name()));
                }
                for (const QColor& text : {scheme->orange, scheme->green}) {
                    QVERIFY2(contrast(text, under) >= 4.5, qPrintable(text.name() + " on " + under.name()));
                    // On the badge: the text over its own 0.14 tint.
                    QColor tint = text;
                    tint.setAlphaF(float(text.alphaF() * 0.14));
                    const QColor badge = composite(tint, under);
                    QVERIFY2(contrast(text, badge) >= 4.5, qPrintable(text.name() + " on its badge"));
                }
                // Secondary is the "Open" badge's colour: translucent text over its own tint.
                QColor tint = scheme->secondary;
                tint.setAlphaF(float(scheme->secondary.alphaF() * 0.14));
                const QColor badge = composite(tint, under);
                QVERIFY2(contrast(composite(scheme->secondary, badge), badge) >= 4.5,
                         qPrintable(scheme->secondary.name(QColor::HexArgb) + " on its badge over " + under.name()));
            }
        }
        // White text on the accent fills (the prominent button, a highlighted menu entry).
        for (const ColorScheme* scheme : {&ColorScheme::light(), &ColorScheme::dark()})
            QVERIFY2(contrast(scheme->white, scheme->accentFill) >= 4.5, qPrintable(scheme->accentFill.name()));
        // The formula itself: black on white is 21:1, a colour on itself 1:1.
        QVERIFY(qAbs(contrast(Qt::black, Qt::white) - 21.0) < 0.01);
        QVERIFY(qAbs(contrast(ColorScheme::light().orange, ColorScheme::light().orange) - 1.0) < 1e-9);
    }

    void everyStatusTextReachesFourAndAHalfToOneOnItsBadge()
    {
        // Read from the live panel, in both schemes: each badge's text over its tint laid on
        // the panel's background, the status line beside it, and the orange access warning.
        const QPalette before = QGuiApplication::palette();
        for (const bool dark : {false, true}) {
            UiFixture::useDesktopScheme(dark);
            UiFixture ui;
            QQuickView& view = ui.startPanelOfThreeAppsWithoutAccess();
            const QColor panel = view.rootObject()->property("color").value<QColor>();
            QCOMPARE(panel, dark ? ColorScheme::dark().windowBackground : ColorScheme::light().windowBackground);
            QStringList seen;
            for (int i = 0; i < 3; ++i) {
                QQuickItem* row = ui.find(view, QStringLiteral("appRow_%1").arg(i));
                QVERIFY(row);
                QQuickItem* badgeText = ui.findIn(row, QStringLiteral("rowBadgeText"));
                const QString status = badgeText->property("text").toString();
                seen.append(status);
                const QColor text = badgeText->property("color").value<QColor>();
                const QColor tint =
                    composite(ui.findIn(row, QStringLiteral("rowBadge"))->property("color").value<QColor>(), panel);
                const double onBadge = contrast(composite(text, tint), tint);
                QVERIFY2(onBadge >= 4.5, qPrintable(QStringLiteral("%1 badge %2:1 (%3)")
                                                        .arg(status)
                                                        .arg(onBadge, 0, 'f', 2)
                                                        .arg(dark ? "dark" : "light")));
                const QColor line = ui.findIn(row, QStringLiteral("rowStatusLine"))->property("color").value<QColor>();
                QVERIFY2(contrast(composite(line, panel), panel) >= 4.5, qPrintable(status + " status line"));
            }
            seen.sort();
            QCOMPARE(seen, (QStringList{QStringLiteral("Active"), QStringLiteral("Hidden"), QStringLiteral("Open")}));
            const QColor warning =
                ui.find(view, QStringLiteral("accessWarningText"))->property("color").value<QColor>();
            QVERIFY2(contrast(composite(warning, panel), panel) >= 4.5, "the access warning");
        }
        QGuiApplication::setPalette(before);
    }

    void darkDesktopPaletteGivesTheDarkScheme()
    {
        QPalette dark;
        dark.setColor(QPalette::Window, QColor(0x2a, 0x2a, 0x2a));
        dark.setColor(QPalette::WindowText, QColor(0xee, 0xee, 0xee));
        QPalette light;
        light.setColor(QPalette::Window, QColor(0xef, 0xef, 0xef));
        light.setColor(QPalette::WindowText, QColor(0x10, 0x10, 0x10));
        QVERIFY(ColorScheme::prefersDark(dark));
        QVERIFY(!ColorScheme::prefersDark(light));

        // The views follow a change of the desktop's palette while they are open.
        UiFixture ui;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        const QPalette before = QGuiApplication::palette();
        QGuiApplication::setPalette(light);
        ui.settle();
        QQuickItem* root = view.rootObject();
        QCOMPARE(root->property("color").value<QColor>(), ColorScheme::light().windowBackground);
        QGuiApplication::setPalette(dark);
        ui.settle();
        QCOMPARE(root->property("color").value<QColor>(), ColorScheme::dark().windowBackground);
        QCOMPARE(ui.find(view, QStringLiteral("titleText"))->property("color").value<QColor>(),
                 ColorScheme::dark().primary);
        QGuiApplication::setPalette(before);
        ui.settle();
    }
};

QTEST_MAIN(KeyboardFocusTest)
#include "tst_keyboard_focus.moc"
