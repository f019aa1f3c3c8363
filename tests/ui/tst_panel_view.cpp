// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The panel: title, result line, access warning, action grid, open-apps section, footer.
#include "PanelViewModel.h"
#include "RunningAppsListModel.h"
#include "SettingsViewModel.h"
#include "Theme.h"
#include "UiFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace stowly;
using stowly::testing::UiFixture;

class PanelViewTest : public QObject {
    Q_OBJECT

private:
    static QList<QQuickItem*> tiles(QQuickView& view)
    {
        QList<QQuickItem*> result;
        for (const char* raw : {"minimize", "hide", "closeWindows", "forceQuit"}) {
            if (QQuickItem* tile = UiFixture::find(view, QStringLiteral("actionTile_") + QLatin1String(raw)))
                result.append(tile);
        }
        return result;
    }
    static QString text(QQuickView& view, const char* name)
    {
        QQuickItem* item = UiFixture::find(view, QLatin1String(name));
        return item ? item->property("text").toString() : QStringLiteral("<missing %1>").arg(QLatin1String(name));
    }
    static QPointF scenePos(QQuickItem* item) { return item->mapToScene(QPointF(0, 0)); }

private slots:
    void panelIsFixedWidthWithTitle()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.panel();
        QCOMPARE(view.rootObject()->width(), 340.0);
        QCOMPARE(view.width(), 340);
        QCOMPARE(text(view, "titleText"), QStringLiteral("Stowly"));
        QQuickItem* stack = ui.find(view, QStringLiteral("panelStack"));
        QCOMPARE(stack->x(), 14.0);
        QCOMPARE(stack->y(), 14.0);
        QCOMPARE(stack->width(), 312.0);
        QCOMPARE(stack->property("spacing").toReal(), 12.0);
        QCOMPARE(view.rootObject()->height(), stack->height() + 28);
    }

    void panelTextStyles()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.start();
        QQuickView& view = ui.panel();
        const Theme theme;
        const auto font = [&view](const char* name) {
            return UiFixture::find(view, QLatin1String(name))->property("font").value<QFont>();
        };
        const auto color = [&view](const char* name) {
            return UiFixture::find(view, QLatin1String(name))->property("color").value<QColor>();
        };
        QCOMPARE(font("titleText").pixelSize(), theme.headlineSize);
        QCOMPARE(font("titleText").weight(), QFont::DemiBold);
        QCOMPARE(font("resultText").pixelSize(), theme.subheadlineSize);
        QCOMPARE(color("resultText"), ColorScheme::light().secondary);
        QCOMPARE(UiFixture::find(view, QStringLiteral("resultText"))->property("textFormat").toInt(),
                 int(Qt::PlainText));
        QCOMPARE(font("openAppsHeading").pixelSize(), theme.subheadlineSize);
        QCOMPARE(font("openAppsHeading").weight(), QFont::DemiBold);
        QCOMPARE(font("noAppsText").pixelSize(), theme.footnoteSize);
        QCOMPARE(color("noAppsText"), ColorScheme::light().secondary);
        // The open-apps section: heading, then the text, 6 apart; dividers around it.
        QQuickItem* heading = ui.find(view, QStringLiteral("openAppsHeading"));
        QQuickItem* none = ui.find(view, QStringLiteral("noAppsText"));
        QCOMPARE(none->mapToScene(QPointF(0, 0)).y() - heading->mapToScene(QPointF(0, heading->height())).y(), 6.0);
        QCOMPARE(heading->mapToScene(QPointF(0, 0)).x(), 14.0);
    }

    void absentPreferenceShowsAllFourInCatalogueOrderTwoByTwo()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        const QList<QQuickItem*> shown = tiles(view);
        QCOMPARE(shown.size(), 4);
        QCOMPARE(ui.find(view, QStringLiteral("actionGrid"))->property("columnCount").toInt(), 2);
        QCOMPARE(shown[0]->property("text").toString(), QStringLiteral("Minimize All Windows"));
        QCOMPARE(shown[1]->property("text").toString(), QStringLiteral("Hide All Apps"));
        QCOMPARE(shown[2]->property("text").toString(), QStringLiteral("Close All Windows"));
        QCOMPARE(shown[3]->property("text").toString(), QStringLiteral("Force Quit All Apps"));
        // Two by two: row 1 minimize | hide, row 2 close | force quit, 10 apart.
        QCOMPARE(scenePos(shown[0]).y(), scenePos(shown[1]).y());
        QCOMPARE(scenePos(shown[2]).y(), scenePos(shown[3]).y());
        QVERIFY(scenePos(shown[2]).y() > scenePos(shown[0]).y());
        QCOMPARE(scenePos(shown[0]).x(), scenePos(shown[2]).x());
        QCOMPARE(shown[0]->width(), (312.0 - 10) / 2);
        QCOMPARE(scenePos(shown[1]).x() - (scenePos(shown[0]).x() + shown[0]->width()), 10.0);
        QCOMPARE(scenePos(shown[2]).y() - (scenePos(shown[0]).y() + shown[0]->height()), 10.0);
        // Tiles of one row that differ in height share the row's centre line.
        QCOMPARE(ui.find(view, QStringLiteral("actionGrid"))->property("verticalItemAlignment").toInt(),
                 int(Qt::AlignVCenter));
    }

    void storedOrderDoesNotMatterCatalogueOrderDoes()
    {
        UiFixture ui;
        ui.setPreference("enabledActions", "forceQuit,minimize");
        ui.start();
        QQuickView& view = ui.panel();
        const QList<QQuickItem*> shown = tiles(view);
        QCOMPARE(shown.size(), 2);
        QCOMPARE(shown[0]->property("text").toString(), QStringLiteral("Minimize All Windows"));
        QCOMPARE(shown[1]->property("text").toString(), QStringLiteral("Force Quit All Apps"));
        QCOMPARE(scenePos(shown[0]).y(), scenePos(shown[1]).y());
        QVERIFY(scenePos(shown[0]).x() < scenePos(shown[1]).x());
    }

    void noRecognisedActionShowsNoTilesAndNoColumns_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::newRow("empty") << QString();
        QTest::newRow("unknown names") << QStringLiteral("bogus,Minimize");
        QTest::newRow("leading space") << QStringLiteral(" minimize");
    }
    void noRecognisedActionShowsNoTilesAndNoColumns()
    {
        QFETCH(QString, stored);
        UiFixture ui;
        ui.addApp(101, "Notes");
        ui.setPreference("enabledActions", stored.toStdString());
        ui.start();
        QQuickView& view = ui.panel();
        QCOMPARE(tiles(view).size(), 0);
        QCOMPARE(ui.views().panel().columnCount(), 0);
        QCOMPARE(ui.find(view, QStringLiteral("actionGrid"))->height(), 0.0);
        QCOMPARE(text(view, "titleText"), QStringLiteral("Stowly"));
        QCOMPARE(text(view, "openAppsHeading"), QStringLiteral("Open Apps (1)"));
        QVERIFY(ui.find(view, QStringLiteral("quitButton"))->isVisible());
    }

    void oneActionSpansTheWholeWidth()
    {
        UiFixture ui;
        ui.setPreference("enabledActions", "hide");
        ui.start();
        QQuickView& view = ui.panel();
        const QList<QQuickItem*> shown = tiles(view);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(ui.views().panel().columnCount(), 1);
        QCOMPARE(shown[0]->width(), 312.0);
    }

    void threeActionsLeaveTheThirdAloneAtTheLeft()
    {
        UiFixture ui;
        ui.setPreference("enabledActions", "minimize,hide,forceQuit");
        ui.start();
        QQuickView& view = ui.panel();
        const QList<QQuickItem*> shown = tiles(view);
        QCOMPARE(shown.size(), 3);
        QCOMPARE(scenePos(shown[2]).x(), scenePos(shown[0]).x());
        QVERIFY(scenePos(shown[2]).y() > scenePos(shown[0]).y());
    }

    void withoutAccessTheWindowActionsAreDisabledAndTheWarningShows()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* warning = ui.find(view, QStringLiteral("accessWarning"));
        QVERIFY(warning->isVisible());
        QQuickItem* warningText = ui.find(view, QStringLiteral("accessWarningText"));
        QCOMPARE(warningText->property("text").toString(),
                 QStringLiteral("Accessibility access required. Grant it in Settings."));
        QCOMPARE(warningText->property("color").value<QColor>(), ColorScheme::light().orange);
        QCOMPARE(warningText->property("font").value<QFont>().pixelSize(), Theme().captionSize);
        // Symbol and text form one label, the text taking the rest of the width.
        QCOMPARE(warning->property("spacing").toReal(), qreal(Theme().labelSpacing));
        QCOMPARE(warningText->mapToScene(QPointF(warningText->width(), 0)).x(), 340.0 - 14);

        for (const char* raw : {"minimize", "closeWindows"}) {
            QQuickItem* tile = ui.find(view, QStringLiteral("actionTile_") + QLatin1String(raw));
            QVERIFY2(!tile->isEnabled(), raw);
            QCOMPARE(tile->opacity(), 0.45);
        }
        for (const char* raw : {"hide", "forceQuit"}) {
            QQuickItem* tile = ui.find(view, QStringLiteral("actionTile_") + QLatin1String(raw));
            QVERIFY2(tile->isEnabled(), raw);
            QCOMPARE(tile->opacity(), 1.0);
        }

        // A click on a disabled tile does nothing.
        const QString before = ui.model().lastResultMessage();
        ui.click(view, ui.find(view, QStringLiteral("actionTile_minimize")));
        QCOMPARE(ui.model().lastResultMessage(), before);
        QVERIFY(ui.fake.accessibility.log.empty());
    }

    void accessGrantedWithoutAppsDisablesTheAppActions()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.start();
        QQuickView& view = ui.panel();
        QVERIFY(!ui.find(view, QStringLiteral("accessWarning"))->isVisible());
        QCOMPARE(text(view, "openAppsHeading"), QStringLiteral("Open Apps (0)"));
        QQuickItem* none = ui.find(view, QStringLiteral("noAppsText"));
        QVERIFY(none->isVisible());
        QCOMPARE(none->property("text").toString(), QStringLiteral("No regular apps are currently open."));
        QVERIFY(!ui.find(view, QStringLiteral("appList"))->isVisible());
        QVERIFY(!ui.find(view, QStringLiteral("actionTile_hide"))->isEnabled());
        QVERIFY(!ui.find(view, QStringLiteral("actionTile_forceQuit"))->isEnabled());
        QCOMPARE(ui.find(view, QStringLiteral("actionTile_hide"))->opacity(), 0.45);
        QVERIFY(ui.find(view, QStringLiteral("actionTile_minimize"))->isEnabled());
        QVERIFY(ui.find(view, QStringLiteral("actionTile_closeWindows"))->isEnabled());
    }

    void aLongResultMessageWrapsAndThePanelGrows()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        fakes::FakeAppRef app = ui.addApp(101, std::string(120, 'W') + " Very Long Application Name");
        app->terminateAnswer = false;
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* result = ui.find(view, QStringLiteral("resultText"));
        const qreal shortHeight = view.rootObject()->height();
        QCOMPARE(result->property("lineCount").toInt(), 1);

        ui.views().openApps().terminateApp(0);
        ui.settle();
        QVERIFY(ui.model().lastResultMessage().startsWith(QStringLiteral("Could not close WWW")));
        QCOMPARE(result->property("text").toString(), ui.model().lastResultMessage());
        QVERIFY(result->property("lineCount").toInt() > 1);
        QVERIFY(!result->property("truncated").toBool());
        QCOMPARE(view.rootObject()->width(), 340.0);
        QTRY_VERIFY(view.rootObject()->height() > shortHeight);
        QTRY_COMPARE(view.height(), int(view.rootObject()->height()));
    }

    void manyAppsScrollInsideTheirAreaAndTheFooterStaysBelow()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        for (int pid = 200; pid < 230; ++pid)
            ui.addApp(pid, "App " + std::to_string(pid), std::uint64_t(pid) << 20);
        ui.start();
        QQuickView& view = ui.panel();
        QCOMPARE(text(view, "openAppsHeading"), QStringLiteral("Open Apps (30)"));
        QQuickItem* list = ui.find(view, QStringLiteral("appList"));
        QVERIFY(list->isVisible());
        QCOMPARE(list->height(), 220.0);
        QCOMPARE(list->property("spacing").toReal(), 8.0);
        QVERIFY(list->property("contentHeight").toReal() > 220.0);
        // The scroll bar lies over the rows: they keep the list's whole width.
        QQuickItem* bar = ui.find(view, QStringLiteral("appListScrollBar"));
        QVERIFY(bar->width() > 0);
        QQuickItem* content = list->property("contentItem").value<QQuickItem*>();
        QQuickItem* first = ui.findIn(content, QStringLiteral("appRow_0"));
        QCOMPARE(first->width(), list->width());
        QVERIFY(bar->mapToScene(QPointF(bar->width(), 0)).x() <= first->mapToScene(QPointF(first->width(), 0)).x());
        const qreal listBottom = list->mapToScene(QPointF(0, list->height())).y();
        qreal previousBottom = listBottom;
        for (const char* name : {"settingsButton", "refreshButton", "quitButton"}) {
            QQuickItem* button = ui.find(view, QLatin1String(name));
            QVERIFY(button->isVisible());
            const qreal top = button->mapToScene(QPointF(0, 0)).y();
            QVERIFY2(top >= previousBottom, name);
            QCOMPARE(button->mapToScene(QPointF(0, 0)).x(), 14.0);
            previousBottom = top + button->height();
            QVERIFY(previousBottom <= view.height());
        }
        QCOMPARE(text(view, "settingsButton"), QStringLiteral("Settings"));
        QCOMPARE(text(view, "refreshButton"), QStringLiteral("Refresh"));
        QCOMPARE(text(view, "quitButton"), QStringLiteral("Quit"));
    }

    void fewAppsKeepTheScrollAreaAt220()
    {
        UiFixture ui;
        ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* list = ui.find(view, QStringLiteral("appList"));
        QCOMPARE(list->height(), 220.0);
        QVERIFY(!ui.find(view, QStringLiteral("noAppsText"))->isVisible());
        // A list that does not scroll gives its rows the whole width of the panel's content.
        QQuickItem* content = list->property("contentItem").value<QQuickItem*>();
        QQuickItem* only = ui.findIn(content, QStringLiteral("appRow_0"));
        QCOMPARE(only->width(), 312.0);
        QQuickItem* menu = ui.findIn(only, QStringLiteral("rowMenuButton"));
        QCOMPARE(menu->mapToScene(QPointF(menu->width(), 0)).x(), 340.0 - 14);
        QVERIFY(!ui.find(view, QStringLiteral("appListScrollBar"))->isVisible());
    }

    void anEnabledTileRunsItsActionOncePerClick()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        fakes::FakeAppRef notes = ui.addApp(101, "Notes");
        fakes::FakeAppRef mail = ui.addApp(102, "Mail");
        ui.start();
        QQuickView& view = ui.panel();
        ui.click(view, ui.find(view, QStringLiteral("actionTile_hide")));
        QCOMPARE(notes->hideCalls, 1);
        QCOMPARE(mail->hideCalls, 1);
        QCOMPARE(ui.model().lastResultMessage(), QStringLiteral("Hid 2 apps."));
        QCOMPARE(ui.find(view, QStringLiteral("resultText"))->property("text").toString(),
                 QStringLiteral("Hid 2 apps."));

        ui.click(view, ui.find(view, QStringLiteral("actionTile_minimize")));
        QCOMPARE(ui.model().lastResultMessage(), QStringLiteral("Minimized 2 windows."));
    }

    void refreshRereadsAccessAndApps()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.start();
        QQuickView& view = ui.panel();
        QVERIFY(ui.find(view, QStringLiteral("accessWarning"))->isVisible());
        ui.fake.trust.trusted = true;
        ui.addApp(101, "Notes");
        ui.click(view, ui.find(view, QStringLiteral("refreshButton")));
        QVERIFY(!ui.find(view, QStringLiteral("accessWarning"))->isVisible());
        QCOMPARE(text(view, "openAppsHeading"), QStringLiteral("Open Apps (1)"));
    }

    void settingsAndQuitAskTheShell()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.panel();
        QSignalSpy settings(&ui.views().panel(), &PanelViewModel::settingsRequested);
        QSignalSpy quit(&ui.views().panel(), &PanelViewModel::quitRequested);
        ui.click(view, ui.find(view, QStringLiteral("settingsButton")));
        QCOMPARE(settings.count(), 1);
        ui.click(view, ui.find(view, QStringLiteral("quitButton")));
        QCOMPARE(quit.count(), 1);
    }

    void controlQQuitsWhileThePanelIsOpen()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.panel();
        view.requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        QSignalSpy quit(&ui.views().panel(), &PanelViewModel::quitRequested);
        QTest::keyClick(&view, Qt::Key_Q, Qt::ControlModifier);
        QCOMPARE(quit.count(), 1);
    }

    void settingsChangesShowAtOnce()
    {
        UiFixture ui;
        ui.start();
        QQuickView& view = ui.panel();
        QCOMPARE(tiles(view).size(), 4);
        ui.views().settings().toggleAction(QStringLiteral("hide"), true);
        ui.settle();
        QCOMPARE(tiles(view).size(), 3);
        QCOMPARE(ui.find(view, QStringLiteral("actionTile_hide")), nullptr);
    }
};

QTEST_MAIN(PanelViewTest)
#include "tst_panel_view.moc"
