// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// What the panel costs while it is closed: no view-model signals and no icon conversion on
// the model's refreshes, its view destroyed and its rows and icons dropped a moment after
// it closed, its fonts' engines dropped with it, and an icon cache that never holds more
// than the listed apps.
#include "AppIconCache.h"
#include "PanelViewModel.h"
#include "PanelWindow.h"
#include "RunningAppsListModel.h"
#include "TrayController.h"
#include "UiFixture.h"

#include <QQuickView>
#include <QSignalSpy>
#include <QTest>
#include <QtGui/private/qfont_p.h>

#include <memory>

using namespace stowly;

namespace {

AppIconRef squareIcon(std::uint32_t colour)
{
    auto icon = std::make_shared<AppIcon>();
    icon->width = icon->height = 16;
    icon->argb.assign(16 * 16, colour);
    return icon;
}

// Every signal a view could react to, from both view models of the panel.
struct ViewModelSpies {
    explicit ViewModelSpies(StowlyViews& views)
        : inserted(&views.openApps(), &QAbstractItemModel::rowsInserted),
          removed(&views.openApps(), &QAbstractItemModel::rowsRemoved),
          moved(&views.openApps(), &QAbstractItemModel::rowsMoved),
          changed(&views.openApps(), &QAbstractItemModel::dataChanged),
          reset(&views.openApps(), &QAbstractItemModel::modelReset),
          count(&views.openApps(), &RunningAppsListModel::countChanged),
          availability(&views.panel(), &PanelViewModel::availabilityChanged),
          message(&views.panel(), &PanelViewModel::resultMessageChanged),
          actions(&views.panel(), &PanelViewModel::actionsChanged)
    {
    }
    int total() const
    {
        return int(inserted.size() + removed.size() + moved.size() + changed.size() + reset.size() + count.size() +
                   availability.size() + message.size() + actions.size());
    }
    QSignalSpy inserted, removed, moved, changed, reset, count, availability, message, actions;
};

} // namespace

class PanelRestTest : public QObject {
    Q_OBJECT

private slots:
    void aClosedPanelsViewModelsStayQuietThroughRefreshes()
    {
        testing::UiFixture ui;
        ui.addApp(501, "Alpha")->iconImage = squareIcon(0xff336699);
        ui.addApp(502, "Beta")->iconImage = squareIcon(0xff996633);
        ui.start();
        TrayController tray(ui.views());
        QVERIFY(!tray.panelWindow().hasView()); // nothing of the panel exists before it opens

        ViewModelSpies spies(ui.views());
        // Memory changes, an app arrives, another leaves, the message changes: all while closed.
        ui.fake.processTable.processes[501].footprint = 5 << 20;
        ui.addApp(503, "Gamma")->iconImage = squareIcon(0xff669933);
        ui.model().refreshSnapshot();
        ui.fake.workspace.apps[1]->terminated = true;
        ui.model().refreshSnapshot();
        ui.model().refreshRunningApps();
        ui.model().minimizeAllWindows();
        QCOMPARE(ui.model().runningApps().size(), std::size_t(2));
        QCOMPARE(spies.total(), 0);
        QCOMPARE(ui.views().openApps().icons().size(), std::size_t(0));

        // Opening brings everything up to date at once.
        tray.togglePanel();
        QVERIFY(tray.panelWindow().isVisible());
        QCOMPARE(ui.views().openApps().count(), 2);
        QCOMPARE(ui.views().openApps().icons().size(), std::size_t(2));
        QVERIFY(spies.availability.size() >= 1);
        QVERIFY(spies.message.size() >= 1);
        // While it is open, every refresh reaches the rows again.
        const auto changedBefore = spies.changed.size();
        ui.model().refreshSnapshot();
        QVERIFY(spies.changed.size() > changedBefore);
    }

    void aClosedPanelLetsGoOfItsViewRowsAndIcons()
    {
        testing::UiFixture ui;
        ui.addApp(501, "Alpha")->iconImage = squareIcon(0xff336699);
        ui.start();
        TrayController tray(ui.views());
        PanelWindow& panel = tray.panelWindow();
        panel.setReleaseDelay(std::chrono::milliseconds(20));
        QSignalSpy released(&panel, &PanelWindow::released);

        tray.togglePanel();
        QVERIFY(panel.hasView());
        QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
        QCOMPARE(ui.views().openApps().count(), 1);

        panel.hide();
        QVERIFY(panel.hasView()); // kept a moment for a quick reopen
        QVERIFY(released.wait(2000));
        QVERIFY(!panel.hasView());
        QCOMPARE(ui.views().openApps().count(), 0);
        QCOMPARE(ui.views().openApps().icons().size(), std::size_t(0));

        // A reopen before the delay keeps the view; after it, a new one is made.
        tray.togglePanel();
        QVERIFY(panel.isVisible());
        QCOMPARE(ui.views().openApps().count(), 1);
        QQuickView* view = &panel.view();
        panel.hide();
        tray.togglePanel();
        QCOMPARE(&panel.view(), view);
        QCOMPARE(released.size(), 1);
        QVERIFY(testing::UiFixture::find(panel.view(), QStringLiteral("menuBarContentView")) != nullptr);
    }

    void aReleasedPanelTakesItsFontEnginesWithIt()
    {
        testing::UiFixture ui;
        ui.addApp(501, "Alpha");
        ui.start();
        TrayController tray(ui.views());
        PanelWindow& panel = tray.panelWindow();
        panel.setReleaseDelay(std::chrono::milliseconds(20));
        QSignalSpy released(&panel, &PanelWindow::released);
        const QFontCache::EngineCache& engines = QFontCache::instance()->engineCache;

        tray.togglePanel();
        QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
        panel.view().grabWindow(); // the text is laid out and drawn
        QVERIFY(!engines.isEmpty());

        panel.hide();
        QVERIFY(released.wait(2000));
        QVERIFY(engines.isEmpty());

        // The next panel opens them again and draws its text.
        tray.togglePanel();
        QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
        QVERIFY(!panel.view().grabWindow().isNull());
        QVERIFY(!engines.isEmpty());
    }

    void theIconCacheHoldsOnlyTheListedApps()
    {
        AppIconCache cache;
        // A day of apps coming and going: a thousand pids, never more than three at once.
        for (std::int32_t pid = 1000; pid < 2000; ++pid) {
            cache.update({{pid, squareIcon(0xff000000u | std::uint32_t(pid))},
                          {pid + 1, squareIcon(0xff000000u | std::uint32_t(pid + 1))},
                          {7, nullptr}});
            QVERIFY(cache.size() <= 2);
        }
        QCOMPARE(cache.size(), std::size_t(2));
        QVERIFY(!cache.url(1999).isEmpty());
        QVERIFY(cache.url(1500).isEmpty());
        cache.clear();
        QCOMPARE(cache.size(), std::size_t(0));
        QVERIFY(cache.url(1999).isEmpty());
    }
};

QTEST_MAIN(PanelRestTest)
#include "tst_panel_rest.moc"
