// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The settings window: cards and what each click stores, the picker, the summary box,
// the startup rows and the accessibility section.
#include "SettingsViewModel.h"
#include "Theme.h"
#include "UiFixture.h"

#include <QTest>

using namespace stowly;
using stowly::testing::UiFixture;

class SettingsViewTest : public QObject {
    Q_OBJECT

private:
    static QQuickItem* card(QQuickView& view, const char* raw)
    {
        return UiFixture::find(view, QStringLiteral("actionCard_") + QLatin1String(raw));
    }
    static QStringList selectedCards(QQuickView& view)
    {
        QStringList selected;
        for (const char* raw : {"minimize", "hide", "closeWindows", "forceQuit"}) {
            if (card(view, raw)->property("isSelected").toBool())
                selected.append(QLatin1String(raw));
        }
        return selected;
    }
    static QString text(QQuickView& view, const char* name)
    {
        return UiFixture::find(view, QLatin1String(name))->property("text").toString();
    }
    static QStringList pickerItems(QQuickView& view)
    {
        return UiFixture::find(view, QStringLiteral("defaultActionPicker"))->property("model").toStringList();
    }
    static QString pickerText(QQuickView& view)
    {
        return UiFixture::find(view, QStringLiteral("defaultActionPicker"))->property("currentText").toString();
    }

private slots:
    void layoutIsFixedWithThreeSections()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        QCOMPARE(view.rootObject()->width(), 760.0);
        QCOMPARE(view.rootObject()->height(), 560.0);
        QCOMPARE(text(view, "primaryActionHeading"), QStringLiteral("Primary action"));
        QCOMPARE(text(view, "appliedFromMenuBar"), QStringLiteral("Applied from the menu bar"));
        QCOMPARE(text(view, "actionsIntro"),
                 QStringLiteral("Choose which actions are available in the menu and pick a default. "
                                "Your selections save automatically."));
        QCOMPARE(text(view, "startupHeading"), QStringLiteral("Startup"));
        QCOMPARE(text(view, "accessibilityHeading"), QStringLiteral("Accessibility"));
        QCOMPARE(ui.find(view, QStringLiteral("primaryActionHeading"))->property("font").value<QFont>().pixelSize(),
                 20);
        const QStringList titles{QStringLiteral("Minimize"), QStringLiteral("Hide"), QStringLiteral("Close Windows"),
                                 QStringLiteral("Force Quit")};
        qreal previousX = -1;
        int index = 0;
        for (const char* raw : {"minimize", "hide", "closeWindows", "forceQuit"}) {
            QQuickItem* c = card(view, raw);
            QCOMPARE(c->property("text").toString(), titles[index++]);
            const qreal x = c->mapToScene(QPointF(0, 0)).x();
            QVERIFY(x > previousX);
            previousX = x;
            QVERIFY(c->height() >= 180);
            QCOMPARE(c->width(), (704.0 - 3 * 16) / 4);
        }
    }

    void noStoredKeysSelectAllAndDefaultToMinimize()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        QCOMPARE(selectedCards(view), (QStringList{"minimize", "hide", "closeWindows", "forceQuit"}));
        QCOMPARE(pickerText(view), QStringLiteral("Minimize"));
        QCOMPARE(pickerItems(view), (QStringList{"Close Windows", "Force Quit", "Hide", "Minimize"}));
        QCOMPARE(text(view, "defaultSummaryTitle"), QStringLiteral("Default: Minimize All Windows"));
        QCOMPARE(text(view, "defaultSummaryText"), QStringLiteral("Minimizes standard windows without closing apps."));
        QVERIFY(ui.fake.preferences.values.empty()); // reading writes nothing
    }

    void switchingOffTheDefaultRepairsIt()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        ui.click(view, card(view, "minimize"));
        QCOMPARE(ui.preference("enabledActions"), std::optional<std::string>("closeWindows,forceQuit,hide"));
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("closeWindows"));
        QCOMPARE(selectedCards(view), (QStringList{"hide", "closeWindows", "forceQuit"}));
        QCOMPARE(pickerText(view), QStringLiteral("Close Windows"));
        QCOMPARE(text(view, "defaultSummaryTitle"), QStringLiteral("Default: Close All Windows"));

        // Switching it on again keeps the repaired default.
        ui.click(view, card(view, "minimize"));
        QCOMPARE(ui.preference("enabledActions"), std::optional<std::string>("closeWindows,forceQuit,hide,minimize"));
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("closeWindows"));
    }

    void theLastEnabledActionCannotBeSwitchedOff()
    {
        UiFixture ui;
        ui.setPreference("enabledActions", ",hide,");
        ui.start();
        QQuickView& view = ui.settings();
        QCOMPARE(selectedCards(view), QStringList{"hide"});
        const int writes = ui.fake.preferences.writes;
        ui.click(view, card(view, "hide"));
        QCOMPARE(ui.fake.preferences.writes, writes);
        QCOMPARE(ui.preference("enabledActions"), std::optional<std::string>(",hide,"));
        QCOMPARE(selectedCards(view), QStringList{"hide"});
    }

    void aMessyStoredListIsReadAsASetAndRewrittenClean()
    {
        UiFixture ui;
        ui.setPreference("enabledActions", "hide,hide,bogus,");
        ui.start();
        QQuickView& view = ui.settings();
        QCOMPARE(selectedCards(view), QStringList{"hide"});
        ui.click(view, card(view, "forceQuit"));
        QCOMPARE(ui.preference("enabledActions"), std::optional<std::string>("forceQuit,hide"));
    }

    void anUnknownDefaultReadsAsMinimizeAndSurvivesUnlessMinimizeGoes()
    {
        UiFixture ui;
        ui.setPreference("defaultAction", "bogus");
        ui.start();
        QQuickView& view = ui.settings();
        QCOMPARE(pickerText(view), QStringLiteral("Minimize"));
        QCOMPARE(text(view, "defaultSummaryTitle"), QStringLiteral("Default: Minimize All Windows"));
        ui.click(view, card(view, "hide"));
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("bogus"));
        ui.click(view, card(view, "minimize"));
        QCOMPARE(ui.preference("enabledActions"), std::optional<std::string>("closeWindows,forceQuit"));
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("closeWindows"));
    }

    void aDisabledDefaultShowsDifferentlyInPickerAndSummary()
    {
        UiFixture ui;
        ui.setPreference("enabledActions", "hide,closeWindows");
        ui.setPreference("defaultAction", "forceQuit");
        ui.start();
        QQuickView& view = ui.settings();
        QCOMPARE(pickerItems(view), (QStringList{"Close Windows", "Hide"}));
        QCOMPARE(pickerText(view), QStringLiteral("Close Windows"));
        QCOMPARE(text(view, "defaultSummaryTitle"), QStringLiteral("Default: Force Quit All Apps"));
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("forceQuit"));
    }

    void choosingInThePickerStoresTheDefaultOnly()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        ui.views().settings().choosePickerItem(2); // Close Windows, Force Quit, Hide, Minimize
        UiFixture::settle();
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("hide"));
        QCOMPARE(ui.preference("enabledActions"), std::nullopt);
        QCOMPARE(pickerText(view), QStringLiteral("Hide"));
        QCOMPARE(text(view, "defaultSummaryTitle"), QStringLiteral("Default: Hide All Apps"));
    }

    void accessSectionFollowsThePermission()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.start();
        QQuickView& view = ui.settings();
        QCOMPARE(text(view, "accessTitle"), QStringLiteral("Access required"));
        QCOMPARE(text(view, "accessDetail"),
                 QStringLiteral("Stowly needs Accessibility access to minimize or close windows in other apps."));
        QQuickItem* symbol = ui.find(view, QStringLiteral("accessSymbol"));
        QCOMPARE(symbol->property("name").toString(), QStringLiteral("exclamationmark.triangle.fill"));
        QCOMPARE(symbol->property("tint").value<QColor>(), ColorScheme::light().orange);
        QVERIFY(ui.find(view, QStringLiteral("accessButtons"))->isVisible());
        QCOMPARE(text(view, "grantAccessButton"), QStringLiteral("Grant Accessibility Access"));
        QCOMPARE(text(view, "openSystemSettingsButton"), QStringLiteral("Open System Settings"));

        ui.fake.trust.prompts.clear();
        ui.click(view, ui.find(view, QStringLiteral("grantAccessButton")));
        QVERIFY(!ui.fake.trust.prompts.empty());
        QCOMPARE(ui.fake.trust.prompts.front(), true);
        ui.click(view, ui.find(view, QStringLiteral("openSystemSettingsButton")));
        QCOMPARE(ui.fake.urlOpener.opened.size(), std::size_t(1));

        ui.fake.trust.trusted = true;
        ui.model().refreshPermissionStatus();
        UiFixture::settle();
        QCOMPARE(text(view, "accessTitle"), QStringLiteral("Access granted"));
        QCOMPARE(text(view, "accessDetail"), QStringLiteral("Stowly can manage windows across all apps."));
        QCOMPARE(symbol->property("name").toString(), QStringLiteral("checkmark.shield.fill"));
        QCOMPARE(symbol->property("tint").value<QColor>(), ColorScheme::light().green);
        QVERIFY(!ui.find(view, QStringLiteral("accessButtons"))->isVisible());
    }

    void grantedAccessThatCannotReachEveryWindowSaysWhichItMisses()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.fake.accessSettings.outOfReach = "Only apps running through Xwayland can be listed and acted on.";
        ui.start();
        QQuickView& view = ui.settings();
        QCOMPARE(text(view, "accessTitle"), QStringLiteral("Access limited"));
        QCOMPARE(text(view, "accessDetail"),
                 QStringLiteral("Only apps running through Xwayland can be listed and acted on."));
        QQuickItem* symbol = ui.find(view, QStringLiteral("accessSymbol"));
        QCOMPARE(symbol->property("name").toString(), QStringLiteral("exclamationmark.triangle.fill"));
        QCOMPARE(symbol->property("tint").value<QColor>(), ColorScheme::light().orange);
        // Nothing more can be granted here.
        QVERIFY(!ui.find(view, QStringLiteral("accessButtons"))->isVisible());

        // Without access, what is missing first is access itself.
        ui.fake.trust.trusted = false;
        ui.model().refreshPermissionStatus();
        UiFixture::settle();
        QCOMPARE(text(view, "accessTitle"), QStringLiteral("Access required"));
        QCOMPARE(text(view, "accessDetail"),
                 QStringLiteral("Stowly needs Accessibility access to minimize or close windows in other apps."));
    }

    void launchAtStartupRowDrivesTheModel()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* launch = ui.find(view, QStringLiteral("launchAtLoginRow"));
        QCOMPARE(launch->property("title").toString(), QStringLiteral("Launch Stowly at startup"));
        QCOMPARE(launch->property("subtitle").toString(),
                 QStringLiteral("Open Stowly automatically when you sign in to macOS."));
        QVERIFY(!launch->property("isOn").toBool());
        ui.click(view, launch);
        QCOMPARE(ui.fake.loginItems.registerCalls, 1);
        QVERIFY(launch->property("isOn").toBool());
    }

    void theShortcutRowCanNeverBeUncheckedOrClicked()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* shortcut = ui.find(view, QStringLiteral("mainShortcutRow"));
        QCOMPARE(shortcut->property("title").toString(), QStringLiteral("Use selected action as main shortcut"));
        QCOMPARE(shortcut->property("subtitle").toString(),
                 QStringLiteral("The top menu action always follows the preference chosen above."));
        QVERIFY(shortcut->property("isOn").toBool());
        QVERIFY(!shortcut->isEnabled());
        QCOMPARE(shortcut->opacity(), 0.72);
        const int writes = ui.fake.preferences.writes;
        ui.click(view, shortcut);
        QVERIFY(shortcut->property("isOn").toBool());
        QCOMPARE(ui.fake.preferences.writes, writes);
        QCOMPARE(ui.fake.loginItems.registerCalls + ui.fake.loginItems.unregisterCalls, 0);
        QVERIFY(UiFixture::findIn(shortcut, QStringLiteral("checkboxMark"))->isVisible());
    }

    void headerLabelKeepsItsSymbolBesideItsText()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* symbol = ui.find(view, QStringLiteral("appliedFromMenuBarSymbol"));
        QQuickItem* text = ui.find(view, QStringLiteral("appliedFromMenuBar"));
        QCOMPARE(symbol->property("name").toString(), QStringLiteral("menubar.rectangle"));
        QCOMPARE(symbol->property("tint").value<QColor>(), ColorScheme::light().secondary);
        QCOMPARE(text->property("color").value<QColor>(), ColorScheme::light().secondary);
        QCOMPARE(text->property("font").value<QFont>().pixelSize(), Theme().footnoteSize);
        // The label's own gap, not the header's 10, and the label ends at the right margin.
        const qreal gap = text->mapToScene(QPointF(0, 0)).x() - symbol->mapToScene(QPointF(symbol->width(), 0)).x();
        QCOMPARE(gap, qreal(Theme().labelSpacing));
        QVERIFY(gap < 10);
        QVERIFY(qAbs(text->mapToScene(QPointF(text->width(), 0)).x() - (760.0 - 28)) < 1);
    }

    void grantButtonIsFilledWithTheAccentColour()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* grant = ui.find(view, QStringLiteral("grantAccessButton"));
        QQuickItem* other = ui.find(view, QStringLiteral("openSystemSettingsButton"));
        QQuickItem* scroller = ui.find(view, QStringLiteral("settingsScroller"));
        scroller->setProperty("contentY", scroller->property("contentHeight").toReal() - 560);
        UiFixture::settle();
        const QImage image = view.grabWindow();
        // A point inside each button, clear of its text and border.
        const auto fillAt = [&image](QQuickItem* button) {
            return image.pixelColor(button->mapToScene(QPointF(4, button->height() / 2)).toPoint());
        };
        const QColor grantFill = fillAt(grant);
        const QColor otherFill = fillAt(other);
        QVERIFY2(grantFill.blue() > 180 && grantFill.red() < 80, qPrintable(grantFill.name()));
        QVERIFY2(qAbs(otherFill.red() - otherFill.blue()) < 30, qPrintable(otherFill.name()));
    }

    void sectionsAndTheirTextStyles()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.start();
        QQuickView& view = ui.settings();
        const Theme theme;
        const auto item = [&view](const char* name) { return UiFixture::find(view, QLatin1String(name)); };
        const auto font = [&item](const char* name) { return item(name)->property("font").value<QFont>(); };
        const auto top = [](QQuickItem* i) { return i->mapToScene(QPointF(0, 0)).y(); };
        const auto bottom = [](QQuickItem* i) { return i->mapToScene(QPointF(0, i->height())).y(); };
        for (const char* heading : {"primaryActionHeading", "startupHeading", "accessibilityHeading"}) {
            QCOMPARE(font(heading).pixelSize(), 20);
            QCOMPARE(font(heading).weight(), QFont::DemiBold);
            QCOMPARE(item(heading)->mapToScene(QPointF(0, 0)).x(), 28.0);
        }
        QCOMPARE(font("actionsIntro").pixelSize(), theme.subheadlineSize);
        QCOMPARE(item("actionsIntro")->property("color").value<QColor>(), ColorScheme::light().secondary);
        QCOMPARE(font("defaultSummaryTitle").pixelSize(), theme.headlineSize);
        QCOMPARE(font("defaultSummaryText").pixelSize(), theme.subheadlineSize);
        QCOMPARE(item("defaultSummaryText")->property("color").value<QColor>(), ColorScheme::light().secondary);
        QCOMPARE(font("accessTitle").pixelSize(), theme.headlineSize);
        QCOMPARE(font("accessDetail").pixelSize(), theme.subheadlineSize);
        QCOMPARE(item("accessDetail")->property("color").value<QColor>(), ColorScheme::light().secondary);
        // 28 around the sections, 18 inside each: the first heading 28 from the top.
        QCOMPARE(top(item("primaryActionHeading")), 28.0);
        QCOMPARE(top(item("startupSection")) - bottom(item("actionSection")), 28.0 + 1 + 28.0);
        QCOMPARE(top(item("actionsIntro")) - bottom(item("primaryActionHeading")), 18.0);
        QCOMPARE(top(item("actionCards")) - bottom(item("actionsIntro")), 18.0);
        QCOMPARE(top(item("launchAtLoginRow")) - bottom(item("startupHeading")), 18.0);
        QCOMPARE(top(item("mainShortcutRow")) - bottom(item("launchAtLoginRow")), 16.0);
        QCOMPARE(top(item("accessStatusBox")) - bottom(item("accessibilityHeading")), 18.0);
        QCOMPARE(top(item("accessButtons")) - bottom(item("accessStatusBox")), 18.0);
        // Both buttons of the access row, 12 apart.
        QQuickItem* grant = item("grantAccessButton");
        QQuickItem* other = item("openSystemSettingsButton");
        QCOMPARE(other->mapToScene(QPointF(0, 0)).x() - grant->mapToScene(QPointF(grant->width(), 0)).x(), 12.0);
        // The two boxes: 16 inside, radius 16, the symbol 12 from the texts, texts 4 apart.
        for (const char* box : {"summaryBox", "accessStatusBox"}) {
            QCOMPARE(item(box)->property("radius").toReal(), 16.0);
            QCOMPARE(item(box)->property("color").value<QColor>(), ColorScheme::light().controlBackground);
        }
        QQuickItem* accessSymbol = item("accessSymbol");
        QQuickItem* accessTitle = item("accessTitle");
        QCOMPARE(accessSymbol->mapToScene(QPointF(0, 0)) - item("accessStatusBox")->mapToScene(QPointF(0, 0)),
                 QPointF(16, 16));
        QCOMPARE(accessTitle->mapToScene(QPointF(0, 0)).x() -
                     accessSymbol->mapToScene(QPointF(accessSymbol->width(), 0)).x(),
                 12.0);
        QCOMPARE(top(item("accessDetail")) - bottom(accessTitle), 4.0);
        QCOMPARE(bottom(item("accessStatusBox")) - bottom(item("accessDetail")), 16.0);
    }

    void summaryBoxHugsItsContent()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* box = ui.find(view, QStringLiteral("summaryBox"));
        QVERIFY(box->width() < 704);
        QCOMPARE(box->property("radius").toReal(), 16.0);
        QCOMPARE(box->mapToScene(QPointF(0, 0)).x(), 28.0);
    }
};

QTEST_MAIN(SettingsViewTest)
#include "tst_settings_view.moc"
