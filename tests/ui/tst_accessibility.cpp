// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// What assistive technology gets from the views: every text readable under its own words,
// every control named by its visible text (icon-only ones by a clear name) and working
// through its accessible press action, disabled ones doing nothing. The offscreen platform
// has no accessibility bridge, so the names checked here are the ones the views declare
// themselves (a Button's automatic name from its text appears only once a bridge is up).
#include "PanelViewModel.h"
#include "UiFixture.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace stowly;
using stowly::testing::UiFixture;

class AccessibilityTest : public QObject {
    Q_OBJECT

private:
    static QAccessibleInterface* accessible(QQuickItem* item)
    {
        return item ? QAccessible::queryAccessibleInterface(item) : nullptr;
    }
    static QString nameOf(QQuickItem* item)
    {
        QAccessibleInterface* iface = accessible(item);
        return iface ? iface->text(QAccessible::Name) : QStringLiteral("<no interface>");
    }
    // Presses through the accessible action, as a screen reader does.
    static bool press(QQuickItem* item)
    {
        QAccessibleInterface* iface = accessible(item);
        if (!iface || !iface->actionInterface())
            return false;
        if (!iface->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()))
            return false;
        iface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        UiFixture::settle();
        return true;
    }
    static QQuickItem* row(QQuickView& view, int index)
    {
        QQuickItem* list = UiFixture::find(view, QStringLiteral("appList"));
        QQuickItem* content = list->property("contentItem").value<QQuickItem*>();
        return UiFixture::findIn(content, QStringLiteral("appRow_%1").arg(index));
    }

private slots:
    void panelTextsAreReadable()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.addApp(101, "Notes")->hidden = true;
        ui.start();
        QQuickView& view = ui.panel();
        const struct {
            const char* object;
            QString name;
        } expected[] = {
            {"titleText", QStringLiteral("Stowly")},
            {"resultText", ui.model().lastResultMessage()},
            {"accessWarning", QStringLiteral("Accessibility access required. Grant it in Settings.")},
            {"openAppsHeading", QStringLiteral("Open Apps (1)")},
        };
        for (const auto& want : expected)
            QCOMPARE(nameOf(ui.find(view, QLatin1String(want.object))), want.name);

        QQuickItem* notes = row(view, 0);
        QVERIFY(notes);
        const QString statusLine =
            UiFixture::findIn(notes, QStringLiteral("rowStatusLine"))->property("text").toString();
        // Read as "name, status, RAM: figure": the bullet becomes a pause.
        QVERIFY(statusLine.startsWith(QStringLiteral("Hidden \u2022 RAM: ")));
        QCOMPARE(nameOf(notes),
                 QStringLiteral("Notes, Hidden, RAM: ") + statusLine.section(QStringLiteral("RAM: "), 1));
        QCOMPARE(nameOf(UiFixture::findIn(notes, QStringLiteral("rowName"))), QStringLiteral("Notes"));
        QCOMPARE(nameOf(UiFixture::findIn(notes, QStringLiteral("rowStatusLine"))), statusLine);
        QCOMPARE(nameOf(UiFixture::findIn(notes, QStringLiteral("rowBadgeText"))), QStringLiteral("Hidden"));
    }

    void noAppsTextIsReadable()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.panel();
        QCOMPARE(nameOf(ui.find(view, QStringLiteral("noAppsText"))),
                 QStringLiteral("No regular apps are currently open."));
    }

    void panelControlsArePressable()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        fakes::FakeAppRef notes = ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();

        QQuickItem* hide = ui.find(view, QStringLiteral("actionTile_hide"));
        QCOMPARE(nameOf(hide), QStringLiteral("Hide All Apps"));
        QVERIFY(press(hide));
        QCOMPARE(notes->hideCalls, 1);

        // A disabled tile keeps its name, is not focusable, and ignores the press.
        QQuickItem* minimize = ui.find(view, QStringLiteral("actionTile_minimize"));
        QCOMPARE(nameOf(minimize), QStringLiteral("Minimize All Windows"));
        QVERIFY(!accessible(minimize)->state().focusable);
        QVERIFY(accessible(hide)->state().focusable);
        // Reported disabled (AT-SPI: neither enabled nor sensitive), with no action to press.
        QVERIFY(accessible(minimize)->state().disabled);
        QVERIFY(!accessible(hide)->state().disabled);
        QCOMPARE(accessible(minimize)->role(), QAccessible::Button);
        QVERIFY(accessible(minimize)->actionInterface());
        QVERIFY(accessible(minimize)->actionInterface()->actionNames().isEmpty());
        const QString before = ui.model().lastResultMessage();
        QVERIFY(!press(minimize));
        accessible(minimize)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        UiFixture::settle();
        QCOMPARE(ui.model().lastResultMessage(), before);
        // The tile sits in the panel's tree: its parent lists it among its children.
        QAccessibleInterface* parent = accessible(minimize)->parent();
        QVERIFY(parent);
        QVERIFY(parent->indexOfChild(accessible(minimize)) >= 0);

        QSignalSpy settings(&ui.views().panel(), &PanelViewModel::settingsRequested);
        QSignalSpy quit(&ui.views().panel(), &PanelViewModel::quitRequested);
        QCOMPARE(nameOf(ui.find(view, QStringLiteral("settingsButton"))), QStringLiteral("Settings"));
        QVERIFY(press(ui.find(view, QStringLiteral("settingsButton"))));
        QCOMPARE(settings.count(), 1);
        QCOMPARE(nameOf(ui.find(view, QStringLiteral("quitButton"))), QStringLiteral("Quit"));
        QVERIFY(press(ui.find(view, QStringLiteral("quitButton"))));
        QCOMPARE(quit.count(), 1);
        ui.fake.trust.trusted = true;
        QCOMPARE(nameOf(ui.find(view, QStringLiteral("refreshButton"))), QStringLiteral("Refresh"));
        QVERIFY(press(ui.find(view, QStringLiteral("refreshButton"))));
        QVERIFY(ui.model().hasAccessibilityPermission());

        // With access granted the same tile reads enabled and presses.
        QVERIFY(!accessible(minimize)->state().disabled);
        QVERIFY(accessible(minimize)->state().focusable);
        QVERIFY(press(minimize));
        QVERIFY(ui.model().lastResultMessage() != before);
    }

    void resultLineIsAnnouncedOncePerChange()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* line = ui.find(view, QStringLiteral("resultText"));
        QCOMPARE(accessible(line)->role(), QAccessible::StatusBar);

        // The name Qt Quick reports, and sends an accessibility event for, when it changes.
        QObject* attached = nullptr;
        for (QObject* child : line->children()) {
            if (qstrcmp(child->metaObject()->className(), "QQuickAccessibleAttached") == 0)
                attached = child;
        }
        QVERIFY(attached);
        QSignalSpy announcements(attached, SIGNAL(nameChanged()));
        const auto tick = [&] {
            ui.model().refreshSnapshot();
            UiFixture::settle();
        };

        for (int i = 0; i < 3; ++i)
            tick();
        QCOMPARE(announcements.count(), 0);

        ui.model().hideAllApps();
        UiFixture::settle();
        QCOMPARE(announcements.count(), 1);
        QCOMPARE(accessible(line)->text(QAccessible::Name), ui.model().lastResultMessage());
        for (int i = 0; i < 3; ++i)
            tick();
        QCOMPARE(announcements.count(), 1);

        ui.model().refreshPermissionStatus(); // a different sentence
        UiFixture::settle();
        QCOMPARE(announcements.count(), 2);
    }

    void rowMenuOpensAndItsEntriesArePressable()
    {
        UiFixture ui;
        fakes::FakeAppRef notes = ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* button = UiFixture::findIn(row(view, 0), QStringLiteral("rowMenuButton"));
        QCOMPARE(nameOf(button), QStringLiteral("Actions for Notes"));
        QVERIFY(press(button));
        QObject* menu = button->findChild<QObject*>(QStringLiteral("rowMenu"));
        QTRY_VERIFY(menu->property("opened").toBool());

        QQuickItem* open = menu->findChild<QQuickItem*>(QStringLiteral("rowMenuOpen"));
        QCOMPARE(nameOf(open), QStringLiteral("Open"));
        QVERIFY(press(open));
        QCOMPARE(notes->activateCalls.size(), std::size_t(1));

        QQuickItem* close = menu->findChild<QQuickItem*>(QStringLiteral("rowMenuCloseApp"));
        QCOMPARE(nameOf(close), QStringLiteral("Close App"));
        QVERIFY(press(close));
        QCOMPARE(notes->terminateCalls, 1);

        QQuickItem* force = menu->findChild<QQuickItem*>(QStringLiteral("rowMenuForceQuit"));
        QCOMPARE(nameOf(force), QStringLiteral("Force Quit"));
        QVERIFY(press(force));
        QCOMPARE(notes->forceTerminateCalls, 1);
    }

    void settingsTextsAreReadable()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.start();
        QQuickView& view = ui.settings();
        const struct {
            const char* object;
            const char* name;
        } expected[] = {
            {"primaryActionHeading", "Primary action"},
            {"appliedFromMenuBar", "Applied from the menu bar"},
            {"actionsIntro",
             "Choose which actions are available in the menu and pick a default. Your selections save automatically."},
            {"defaultSummaryTitle", "Default: Minimize All Windows"},
            {"defaultSummaryText", "Minimizes standard windows without closing apps."},
            {"startupHeading", "Startup"},
            {"accessibilityHeading", "Accessibility"},
            {"accessTitle", "Access required"},
            {"accessDetail", "Stowly needs Accessibility access to minimize or close windows in other apps."},
        };
        for (const auto& want : expected)
            QCOMPARE(nameOf(ui.find(view, QLatin1String(want.object))), QString::fromUtf8(want.name));
    }

    void cardsAndRowsArePressableAndReportTheirState()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* minimize = ui.find(view, QStringLiteral("actionCard_minimize"));
        QCOMPARE(nameOf(minimize), QStringLiteral("Minimize"));
        QCOMPARE(accessible(minimize)->text(QAccessible::Description),
                 QStringLiteral("Clear the desktop while keeping apps running."));
        QVERIFY(accessible(minimize)->state().checked);
        QVERIFY(press(minimize));
        QCOMPARE(ui.preference("enabledActions"), std::optional<std::string>("closeWindows,forceQuit,hide"));
        QVERIFY(!accessible(minimize)->state().checked);

        QQuickItem* launch = ui.find(view, QStringLiteral("launchAtLoginRow"));
        QCOMPARE(nameOf(launch), QStringLiteral("Launch Stowly at startup"));
        QVERIFY(!accessible(launch)->state().checked);
        QVERIFY(press(launch));
        QCOMPARE(ui.fake.loginItems.registerCalls, 1);
        QVERIFY(accessible(launch)->state().checked);

        QQuickItem* shortcut = ui.find(view, QStringLiteral("mainShortcutRow"));
        QCOMPARE(nameOf(shortcut), QStringLiteral("Use selected action as main shortcut"));
        QVERIFY(accessible(shortcut)->state().checked);
        const int writes = ui.fake.preferences.writes;
        press(shortcut);
        QCOMPARE(ui.fake.preferences.writes, writes);
        QVERIFY(accessible(shortcut)->state().checked);
    }

    void thePickerOpensAndItsItemsArePressable()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* picker = ui.find(view, QStringLiteral("defaultActionPicker"));
        QCOMPARE(nameOf(picker), QStringLiteral("Default action"));
        QVERIFY(press(picker));
        QObject* popup = picker->property("popup").value<QObject*>();
        QTRY_VERIFY(popup->property("opened").toBool());
        // Items: Close Windows, Force Quit, Hide, Minimize.
        QList<QQuickItem*> items;
        const std::function<void(QQuickItem*)> collect = [&](QQuickItem* item) {
            if (item->objectName() == QLatin1String("defaultActionPickerItem"))
                items.append(item);
            for (QQuickItem* child : item->childItems())
                collect(child);
        };
        collect(popup->property("contentItem").value<QQuickItem*>());
        QStringList names;
        for (QQuickItem* item : items)
            names.append(nameOf(item));
        QCOMPARE(names, (QStringList{"Close Windows", "Force Quit", "Hide", "Minimize"}));
        QQuickItem* hide = items[2];
        QVERIFY(press(hide));
        QCOMPARE(ui.preference("defaultAction"), std::optional<std::string>("hide"));
        QCOMPARE(picker->property("currentText").toString(), QStringLiteral("Hide"));
    }

    void accessButtonsArePressable()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* grant = ui.find(view, QStringLiteral("grantAccessButton"));
        QCOMPARE(nameOf(grant), QStringLiteral("Grant Accessibility Access"));
        ui.fake.trust.prompts.clear();
        QVERIFY(press(grant));
        QCOMPARE(ui.fake.trust.prompts.size(), std::size_t(1));
        QQuickItem* settings = ui.find(view, QStringLiteral("openSystemSettingsButton"));
        QCOMPARE(nameOf(settings), QStringLiteral("Open System Settings"));
        QVERIFY(press(settings));
        QCOMPARE(ui.fake.urlOpener.opened.size(), std::size_t(1));
    }
};

QTEST_MAIN(AccessibilityTest)
#include "tst_accessibility.moc"
