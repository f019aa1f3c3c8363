// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The views in their hard states, rendered and saved as pictures under the build folder
// (gallery/*.png) for a look by eye, and checked for what a look would catch: texts that
// run past their box or out of the window, boxes that leave their margins.
#include "RunningAppsListModel.h"
#include "Theme.h"
#include "UiFixture.h"

#include <QDir>
#include <QGuiApplication>
#include <QPalette>
#include <QQuickWindow>
#include <QTest>

#ifndef STOWLY_GALLERY_DIR
#error "STOWLY_GALLERY_DIR must name the folder for the pictures"
#endif

using namespace stowly;
using stowly::testing::UiFixture;

class ViewGalleryTest : public QObject {
    Q_OBJECT

private:
    static void save(QQuickView& view, const char* name)
    {
        QDir().mkpath(QStringLiteral(STOWLY_GALLERY_DIR));
        const QImage image = view.grabWindow();
        QVERIFY(!image.isNull());
        QVERIFY(image.save(QStringLiteral(STOWLY_GALLERY_DIR "/") + QLatin1String(name) + QStringLiteral(".png")));
    }

    static void collectTexts(QQuickItem* item, QList<QQuickItem*>& texts)
    {
        if (!item->isVisible())
            return;
        if (QByteArray(item->metaObject()->className()) == "QQuickText")
            texts.append(item);
        for (QQuickItem* child : item->childItems())
            collectTexts(child, texts);
    }

    // Every visible text fits its own box (or elides inside it) and lies wholly inside the
    // horizontal band [left, right] of the window.
    static void checkTextsFit(QQuickView& view, qreal left, qreal right)
    {
        QList<QQuickItem*> texts;
        collectTexts(view.rootObject(), texts);
        QVERIFY(!texts.isEmpty());
        for (QQuickItem* text : texts) {
            const QString content = text->property("text").toString();
            if (content.isEmpty())
                continue;
            const qreal painted = text->property("paintedWidth").toReal();
            const bool elides = text->property("elide").toInt() != int(Qt::ElideNone);
            QVERIFY2(elides || painted <= text->width() + 0.5 || text->width() == text->implicitWidth(),
                     qPrintable(QStringLiteral("\"%1\" runs past its box").arg(content)));
            // Only an app's name (one line) and a tile's title (two lines) may be cut short.
            const QString owner = text->objectName();
            if (owner != QLatin1String("rowName") && owner != QLatin1String("tileTitle")) {
                QVERIFY2(!text->property("truncated").toBool(),
                         qPrintable(QStringLiteral("\"%1\" is cut short").arg(content)));
            }
            const qreal x = text->mapToScene(QPointF(0, 0)).x();
            const qreal shown = std::min(painted, text->width());
            QVERIFY2(x >= left - 0.5 && x + shown <= right + 0.5,
                     qPrintable(QStringLiteral("\"%1\" spans %2..%3, outside %4..%5")
                                    .arg(content)
                                    .arg(x)
                                    .arg(x + shown)
                                    .arg(left)
                                    .arg(right)));
        }
    }

    static void scrollSettingsToTheEnd(UiFixture& ui, QQuickView& view)
    {
        QQuickItem* scroller = ui.find(view, QStringLiteral("settingsScroller"));
        const qreal end = scroller->property("contentHeight").toReal() - scroller->height();
        QVERIFY(end > 0);
        scroller->setProperty("contentY", end);
        UiFixture::settle();
    }

private slots:
    void panelWithHardRows()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        fakes::FakeAppRef longName =
            ui.addApp(101, "An Application With A Remarkably Long Name That Cannot Fit On One Line", 512ull << 20);
        longName->terminateAnswer = false;
        ui.addApp(102, "Notes", 3ull << 30)->hidden = true;
        ui.addApp(103, "Terminal", 48ull << 20)->active = true;
        fakes::FakeAppRef noMemory = ui.fake.workspace.addApp(104, std::string("Unmeasured"));
        noMemory->bundleId = "org.example.unmeasured";
        ui.addApp(105, "Hidden And Active", 1ull << 20);
        ui.fake.workspace.apps.back()->hidden = true;
        ui.fake.workspace.apps.back()->active = true;
        ui.start();
        QQuickView& view = ui.panel();
        RunningAppsListModel& rows = ui.views().openApps();
        for (int row = 0; row < rows.count(); ++row) { // a result line that names the long app
            if (rows.data(rows.index(row), RunningAppsListModel::IdRole).toInt() == 101)
                rows.terminateApp(row);
        }
        UiFixture::settle();
        QTRY_COMPARE(view.height(), int(view.rootObject()->height()));
        QVERIFY(ui.find(view, QStringLiteral("resultText"))->property("lineCount").toInt() > 1);
        save(view, "panel_hard_rows");
        checkTextsFit(view, 14, 340 - 14);
    }

    void panelRowMenuOpen()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        for (int pid = 101; pid <= 108; ++pid)
            ui.addApp(pid, "App " + std::to_string(pid), std::uint64_t(pid) << 20);
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* list = ui.find(view, QStringLiteral("appList"));
        list->setProperty("contentY", list->property("contentHeight").toReal() - list->height());
        UiFixture::settle();
        // The last row's menu, at the bottom of the list, stays inside the panel.
        QQuickItem* content = list->property("contentItem").value<QQuickItem*>();
        QQuickItem* button = UiFixture::findIn(content, QStringLiteral("appRow_7"));
        QVERIFY(button);
        button = UiFixture::findIn(button, QStringLiteral("rowMenuButton"));
        UiFixture::click(view, button);
        QObject* menu = button->findChild<QObject*>(QStringLiteral("rowMenu"));
        QTRY_VERIFY(menu->property("opened").toBool());
        UiFixture::settle();
        save(view, "panel_row_menu_open");
        const qreal menuBottom = menu->property("y").toReal() + menu->property("height").toReal();
        QQuickItem* menuParent = menu->property("parent").value<QQuickItem*>();
        QVERIFY(menuParent->mapToScene(QPointF(0, menuBottom)).y() <= view.height());
        // Its trailing edge is the button's, inside the panel's margin.
        const qreal menuRight = menu->property("x").toReal() + menu->property("width").toReal();
        QCOMPARE(menuParent->mapToScene(QPointF(menuRight, 0)).x(),
                 button->mapToScene(QPointF(button->width(), 0)).x());
        QVERIFY(menuParent->mapToScene(QPointF(menuRight, 0)).x() <= 340 - 14);
    }

    void panelAndSettingsInLightAndDark()
    {
        const QPalette before = QGuiApplication::palette();
        for (const bool dark : {false, true}) {
            UiFixture::useDesktopScheme(dark);
            UiFixture ui;
            QQuickView& panel = ui.startPanelOfThreeAppsWithoutAccess();
            const ColorScheme& scheme = dark ? ColorScheme::dark() : ColorScheme::light();
            QCOMPARE(panel.rootObject()->property("color").value<QColor>(), scheme.windowBackground);
            save(panel, dark ? "panel_dark" : "panel_light");
            checkTextsFit(panel, 14, 340 - 14);
            QQuickView& settings = ui.settings();
            QCOMPARE(settings.rootObject()->property("color").value<QColor>(), scheme.windowBackground);
            save(settings, dark ? "settings_dark" : "settings_light");
            checkTextsFit(settings, 28, 760 - 28);
        }
        QGuiApplication::setPalette(before);
    }

    void panelWithoutApps()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.setPreference("enabledActions", "minimize,hide,forceQuit");
        ui.start();
        QQuickView& view = ui.panel();
        save(view, "panel_no_apps");
        checkTextsFit(view, 14, 340 - 14);
    }

    void settingsEndLimited()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.fake.accessSettings.outOfReach = "Only apps running through Xwayland can be listed and acted on: this "
                                            "Wayland desktop does not let Stowly see its other windows.";
        ui.start();
        QQuickView& view = ui.settings();
        scrollSettingsToTheEnd(ui, view);
        save(view, "settings_end_limited");
        checkTextsFit(view, 28, 760 - 28);
    }

    void settingsEndNotGranted()
    {
        UiFixture ui;
        ui.fake.trust.trusted = false;
        ui.start();
        QQuickView& view = ui.settings();
        save(view, "settings_top");
        checkTextsFit(view, 28, 760 - 28);
        scrollSettingsToTheEnd(ui, view);
        save(view, "settings_end_not_granted");
        checkTextsFit(view, 28, 760 - 28);
        // The last thing in the window is the row of access buttons, 28 above the bottom.
        QQuickItem* buttons = ui.find(view, QStringLiteral("accessButtons"));
        QCOMPARE(buttons->mapToScene(QPointF(0, buttons->height())).y(), 560.0 - 28);
    }

    void settingsPickerOpen()
    {
        UiFixture ui;
        ui.setPreference("enabledActions", "hide,forceQuit,minimize");
        ui.start();
        QQuickView& view = ui.settings();
        QQuickItem* picker = ui.find(view, QStringLiteral("defaultActionPicker"));
        UiFixture::click(view, picker);
        QObject* popup = picker->property("popup").value<QObject*>();
        QTRY_VERIFY(popup->property("opened").toBool());
        UiFixture::settle();
        save(view, "settings_picker_open");
        QCOMPARE(picker->property("count").toInt(), 3);
    }

    void settingsEndGranted()
    {
        UiFixture ui;
        ui.fake.trust.trusted = true;
        ui.setPreference("enabledActions", "hide");
        ui.setPreference("defaultAction", "forceQuit");
        ui.start();
        QQuickView& view = ui.settings();
        save(view, "settings_top_one_enabled");
        scrollSettingsToTheEnd(ui, view);
        save(view, "settings_end_granted");
        checkTextsFit(view, 28, 760 - 28);
        QQuickItem* box = ui.find(view, QStringLiteral("accessStatusBox"));
        QCOMPARE(box->mapToScene(QPointF(0, box->height())).y(), 560.0 - 28);
    }
};

QTEST_MAIN(ViewGalleryTest)
#include "tst_view_gallery.moc"
