// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The open-apps rows, their icons, badges and menus, and the action tiles' own drawing.
#include "AppIconCache.h"
#include "AppIconImageProvider.h"
#include "RunningAppsListModel.h"
#include "Theme.h"
#include "UiFixture.h"

#include <QQmlComponent>
#include <QQuickWindow>
#include <QTest>

#include <cmath>

using namespace stowly;
using stowly::testing::UiFixture;

class AppRowsTest : public QObject {
    Q_OBJECT

private:
    // The row showing the app called `name`.
    static QQuickItem* row(QQuickView& view, const QString& name)
    {
        QQuickItem* list = UiFixture::find(view, QStringLiteral("appList"));
        QQuickItem* content = list ? list->property("contentItem").value<QQuickItem*>() : nullptr;
        if (!content)
            return nullptr;
        for (QQuickItem* child : content->childItems()) {
            if (child->objectName().startsWith(QLatin1String("appRow_")) && child->property("name").toString() == name)
                return child;
        }
        return nullptr;
    }
    static QQuickItem* part(QQuickItem* row, const char* name) { return UiFixture::findIn(row, QLatin1String(name)); }

    static AppIconRef solidIcon(int size, std::uint32_t argb)
    {
        auto icon = std::make_shared<AppIcon>();
        icon->width = size;
        icon->height = size;
        icon->argb.assign(std::size_t(size * size), argb);
        return icon;
    }

    // Opens the row's menu and picks the entry.
    static void chooseFromMenu(UiFixture& ui, QQuickView& view, QQuickItem* row, const char* entry)
    {
        QQuickItem* button = part(row, "rowMenuButton");
        ui.click(view, button);
        QObject* menu = button->findChild<QObject*>(QStringLiteral("rowMenu"));
        QVERIFY(menu);
        QTRY_VERIFY(menu->property("opened").toBool());
        QQuickItem* item = menu->findChild<QQuickItem*>(QLatin1String(entry));
        QVERIFY(item);
        ui.click(view, item);
    }

private slots:
    void rowShowsNameStatusLineAndMemory()
    {
        UiFixture ui;
        ui.addApp(101, "Notes", 3 * 1024 * 1024);
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* notes = row(view, QStringLiteral("Notes"));
        QVERIFY(notes);
        QCOMPARE(part(notes, "rowName")->property("text").toString(), QStringLiteral("Notes"));
        const RunningAppInfo& info = ui.model().runningApps().front();
        QCOMPARE(part(notes, "rowStatusLine")->property("text").toString(),
                 QStringLiteral("Open \u2022 RAM: ") + info.formattedRAM());
        QCOMPARE(part(notes, "rowStatusLine")->property("color").value<QColor>(), ColorScheme::light().secondary);
        QCOMPARE(part(notes, "rowBadgeText")->property("text").toString(), QStringLiteral("Open"));
        QCOMPARE(part(notes, "rowMenuButton")->property("text").toString(), QStringLiteral("Actions for Notes"));
    }

    void unmeasuredMemoryShowsItsOwnText()
    {
        UiFixture ui;
        fakes::FakeAppRef app = ui.fake.workspace.addApp(101, std::string("Notes"));
        app->bundleId = "org.example.notes"; // no process of its own: memory unknown
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* notes = row(view, QStringLiteral("Notes"));
        QVERIFY(notes);
        QQuickItem* line = part(notes, "rowStatusLine");
        QCOMPARE(line->property("text").toString(), QStringLiteral("Open \u2022 RAM: RAM unavailable"));
        // The memory text is never cut short, however narrow the row.
        QVERIFY(!line->property("truncated").toBool());
        QCOMPARE(line->property("elide").toInt(), int(Qt::ElideNone));
        notes->setWidth(150);
        UiFixture::settle();
        QVERIFY(!line->property("truncated").toBool());
        QVERIFY(line->property("lineCount").toInt() > 1);
    }

    void badgesAreColouredByStatus()
    {
        UiFixture ui;
        ui.addApp(101, "Hidden App")->hidden = true;
        ui.addApp(102, "Front App")->active = true;
        ui.addApp(103, "Other App");
        ui.start();
        QQuickView& view = ui.panel();
        const struct {
            const char* name;
            const char* status;
            QColor color;
        } expected[] = {
            {"Hidden App", "Hidden", ColorScheme::light().orange},
            {"Front App", "Active", ColorScheme::light().green},
            {"Other App", "Open", ColorScheme::light().secondary},
        };
        for (const auto& want : expected) {
            QQuickItem* r = row(view, QLatin1String(want.name));
            QVERIFY2(r, want.name);
            QQuickItem* badgeText = part(r, "rowBadgeText");
            QCOMPARE(badgeText->property("text").toString(), QLatin1String(want.status));
            QCOMPARE(badgeText->property("color").value<QColor>(), want.color);
            const QColor fill = part(r, "rowBadge")->property("color").value<QColor>();
            QCOMPARE(fill.rgb(), want.color.rgb());
            // The status colour's own alpha scaled by 0.14 (secondary is itself translucent).
            QVERIFY(qAbs(fill.alphaF() - want.color.alphaF() * 0.14) < 0.01);
            QCOMPARE(part(r, "rowStatusLine")->property("text").toString().section(QLatin1Char(' '), 0, 0),
                     QLatin1String(want.status));
        }
    }

    void appWithoutIconShowsTheDashedSymbolInset()
    {
        UiFixture ui;
        ui.addApp(101, "Plain");
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* r = row(view, QStringLiteral("Plain"));
        QQuickItem* icon = part(r, "appIcon");
        QCOMPARE(icon->width(), 24.0);
        QCOMPARE(icon->height(), 24.0);
        QQuickItem* placeholder = part(r, "appIconPlaceholder");
        QVERIFY(placeholder->isVisible());
        QVERIFY(!part(r, "appIconImage")->isVisible());
        QCOMPARE(placeholder->x(), 4.0);
        QCOMPARE(placeholder->y(), 4.0);
        QCOMPARE(placeholder->width(), 16.0);
        QCOMPARE(placeholder->height(), 16.0);
        QCOMPARE(placeholder->property("name").toString(), QStringLiteral("app.dashed"));
        QCOMPARE(placeholder->property("tint").value<QColor>(), ColorScheme::light().secondary);
    }

    void appWithIconShowsItFromTheProvider()
    {
        UiFixture ui;
        ui.addApp(101, "Painted")->iconImage = solidIcon(48, 0x80ff0000);
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* r = row(view, QStringLiteral("Painted"));
        QQuickItem* image = part(r, "appIconImage");
        QVERIFY(image->isVisible());
        QVERIFY(!part(r, "appIconPlaceholder")->isVisible());
        QVERIFY(image->property("source").toUrl().toString().startsWith(QStringLiteral("image://appicon/101-")));
        QTRY_COMPARE(image->property("status").toInt(), 1); // Image.Ready
    }

    void iconPixelsAreTakenUnpremultipliedAndClippedRound()
    {
        auto cache = std::make_shared<AppIconCache>();
        cache->update({{7, solidIcon(24, 0x80ff0000)}});
        const QString url = cache->url(7);
        QVERIFY(url.startsWith(QStringLiteral("image://appicon/7-")));
        AppIconImageProvider provider(cache);
        QSize size;
        const QImage image =
            provider.requestImage(url.mid(QStringLiteral("image://appicon/").size()), &size, QSize(48, 48));
        QCOMPARE(size, QSize(48, 48));
        const QColor centre = image.pixelColor(24, 24);
        QCOMPARE(centre.red(), 255);
        QCOMPARE(centre.alpha(), 128);
        QCOMPARE(image.pixelColor(0, 0).alpha(), 0); // the rounded corner
        QVERIFY(cache->url(8).isEmpty());
    }

    void aLongNameIsCutAndTheBadgeAndMenuStayAtTheTrailingEdge()
    {
        UiFixture ui;
        ui.addApp(101, "An Application With A Remarkably Long Name That Cannot Fit On One Line");
        ui.addApp(102, "Short", 1);
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* longRow =
            row(view, QStringLiteral("An Application With A Remarkably Long Name That Cannot Fit On One Line"));
        QQuickItem* shortRow = row(view, QStringLiteral("Short"));
        QQuickItem* name = part(longRow, "rowName");
        QVERIFY(name->property("truncated").toBool());
        QCOMPARE(name->property("lineCount").toInt(), 1);
        const auto rightEdge = [](QQuickItem* item) { return item->mapToScene(QPointF(item->width(), 0)).x(); };
        QCOMPARE(rightEdge(part(longRow, "rowMenuButton")), rightEdge(part(shortRow, "rowMenuButton")));
        QCOMPARE(rightEdge(part(longRow, "rowMenuButton")), rightEdge(longRow));
        QVERIFY(rightEdge(name) + 8 <= part(longRow, "rowBadge")->mapToScene(QPointF(0, 0)).x());
    }

    void anAppsNameIsShownAsItIsNeverAsMarkup()
    {
        UiFixture ui;
        const QString odd = QStringLiteral("<i>x</i>&amp;");
        ui.addApp(101, odd.toStdString());
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* name = part(row(view, odd), "rowName");
        QVERIFY(name);
        QCOMPARE(name->property("text").toString(), odd);
        // Drawn as the literal characters, tags and entity included.
        const QFontMetricsF metrics(name->property("font").value<QFont>());
        QVERIFY2(qAbs(name->property("contentWidth").toReal() - metrics.horizontalAdvance(odd)) < 2,
                 qPrintable(QString::number(name->property("contentWidth").toReal())));
    }

    void rowGeometry()
    {
        UiFixture ui;
        ui.addApp(101, "Notes")->active = true;
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* r = row(view, QStringLiteral("Notes"));
        const Theme theme;
        const auto left = [](QQuickItem* item) { return item->mapToScene(QPointF(0, 0)).x(); };
        const auto right = [](QQuickItem* item) { return item->mapToScene(QPointF(item->width(), 0)).x(); };
        const auto middle = [](QQuickItem* item) { return item->mapToScene(QPointF(0, item->height() / 2)).y(); };
        QQuickItem* icon = part(r, "appIcon");
        QQuickItem* name = part(r, "rowName");
        QQuickItem* line = part(r, "rowStatusLine");
        QQuickItem* badge = part(r, "rowBadge");
        QQuickItem* badgeText = part(r, "rowBadgeText");
        QQuickItem* menu = part(r, "rowMenuButton");
        // Icon at the leading edge, 10 to the texts; the texts 2 apart.
        QCOMPARE(left(icon), left(r));
        QCOMPARE(left(name) - right(icon), 10.0);
        QCOMPARE(left(line), left(name));
        QCOMPARE(line->mapToScene(QPointF(0, 0)).y() - name->mapToScene(QPointF(0, name->height())).y(), 2.0);
        // 2 above and below; every child on the row's centre line.
        QCOMPARE(r->height(),
                 std::max({24.0, name->height() + 2 + line->height(), badge->height(), menu->height()}) + 4);
        for (QQuickItem* item : {icon, badge, menu})
            QVERIFY(qAbs(middle(item) - middle(r)) <= 0.5);
        // The badge: 8 either side of its text, 4 above and below, a capsule tinted 0.14.
        QCOMPARE(badge->width(), std::ceil(badgeText->implicitWidth()) + 16);
        QCOMPARE(badge->height(), std::ceil(badgeText->implicitHeight()) + 8);
        QCOMPARE(badge->property("radius").toReal(), badge->height() / 2);
        QCOMPARE(badgeText->property("font").value<QFont>().weight(), QFont::Medium);
        QCOMPARE(badgeText->property("font").value<QFont>().pixelSize(), theme.captionSize);
        QCOMPARE(badgeText->property("color").value<QColor>(), ColorScheme::light().green);
        // At least 8 between the texts and the badge, 10 between badge and menu.
        QVERIFY(left(badge) - right(name) >= 8);
        QCOMPARE(left(menu) - right(badge), 10.0);
        // Fonts and colours of the two lines.
        QCOMPARE(name->property("font").value<QFont>().pixelSize(), theme.subheadlineSize);
        QCOMPARE(name->property("color").value<QColor>(), ColorScheme::light().primary);
        QCOMPARE(line->property("font").value<QFont>().pixelSize(), theme.captionSize);
        QCOMPARE(line->property("color").value<QColor>(), ColorScheme::light().secondary);
        QCOMPARE(name->property("maximumLineCount").toInt(), 1);
        QCOMPARE(part(r, "rowMenuButton")->findChild<QObject*>(QStringLiteral("rowMenu"))->property("count").toInt(),
                 3);
    }

    void menuEntriesCallTheModelForTheRowsApp()
    {
        UiFixture ui;
        fakes::FakeAppRef notes = ui.addApp(101, "Notes");
        ui.start();
        QQuickView& view = ui.panel();
        QQuickItem* r = row(view, QStringLiteral("Notes"));
        QQuickItem* button = part(r, "rowMenuButton");
        QObject* menu = button->findChild<QObject*>(QStringLiteral("rowMenu"));
        QStringList entries;
        for (const char* name : {"rowMenuOpen", "rowMenuCloseApp", "rowMenuForceQuit"})
            entries.append(menu->findChild<QQuickItem*>(QLatin1String(name))->property("text").toString());
        QCOMPARE(entries,
                 (QStringList{QStringLiteral("Open"), QStringLiteral("Close App"), QStringLiteral("Force Quit")}));

        chooseFromMenu(ui, view, row(view, QStringLiteral("Notes")), "rowMenuOpen");
        QCOMPARE(notes->activateCalls.size(), std::size_t(1));
        QCOMPARE(ui.model().lastResultMessage(), QStringLiteral("Opened Notes."));

        notes->terminateAnswer = false;
        chooseFromMenu(ui, view, row(view, QStringLiteral("Notes")), "rowMenuCloseApp");
        QCOMPARE(notes->terminateCalls, 1);
        QCOMPARE(ui.model().lastResultMessage(), QStringLiteral("Could not close Notes."));

        chooseFromMenu(ui, view, row(view, QStringLiteral("Notes")), "rowMenuForceQuit");
        QCOMPARE(notes->forceTerminateCalls, 1);
        QCOMPARE(ui.model().lastResultMessage(), QStringLiteral("Force quit sent to Notes."));
    }

    void rowsFollowTheModelByProcessId()
    {
        UiFixture ui;
        ui.addApp(101, "Small", 1 << 20);
        ui.addApp(102, "Large", 8 << 20);
        ui.start();
        RunningAppsListModel& list = ui.views().openApps();
        QCOMPARE(list.count(), 2);
        QCOMPARE(list.data(list.index(0), RunningAppsListModel::NameRole).toString(), QStringLiteral("Large"));
        ui.fake.workspace.apps.erase(ui.fake.workspace.apps.begin() + 1); // Large quits
        ui.addApp(103, "New", 4 << 20);
        ui.model().refreshRunningApps();
        QCOMPARE(list.count(), 2);
        QCOMPARE(list.data(list.index(0), RunningAppsListModel::NameRole).toString(), QStringLiteral("New"));
        QCOMPARE(list.data(list.index(1), RunningAppsListModel::IdRole).toInt(), 101);
    }

    void tileTitlesWrapOntoTwoCentredLinesAtMost()
    {
        UiFixture ui;
        ui.start();
        QQuickWindow window;
        window.resize(200, 300);
        QQmlComponent component(&ui.views().engine(), StowlyViews::viewUrl(QStringLiteral("MenuActionButton.qml")));
        QVariantMap action{{QStringLiteral("rawValue"), QStringLiteral("minimize")},
                           {QStringLiteral("title"),
                            QStringLiteral("A title far too long for a narrow tile to hold on one line or two")},
                           {QStringLiteral("systemImage"), QStringLiteral("macwindow.badge.minus")}};
        std::unique_ptr<QObject> object(
            component.createWithInitialProperties({{QStringLiteral("bulkAction"), action}}));
        QVERIFY2(object, qPrintable(component.errorString()));
        auto* tile = qobject_cast<QQuickItem*>(object.get());
        tile->setParentItem(window.contentItem());
        tile->setWidth(110);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        UiFixture::settle();
        QQuickItem* title = UiFixture::findIn(tile, QStringLiteral("tileTitle"));
        QCOMPARE(title->property("lineCount").toInt(), 2);
        QVERIFY(title->property("truncated").toBool());
        QCOMPARE(title->property("horizontalAlignment").toInt(), int(Qt::AlignHCenter));
        QCOMPARE(title->property("font").value<QFont>().pixelSize(), Theme().captionSize);
        // 10 above and below, 6 at the sides; the badge 40 square, radius 10, tinted 0.12.
        QCOMPARE(tile->property("topPadding").toReal(), 10.0);
        QCOMPARE(tile->property("bottomPadding").toReal(), 10.0);
        QCOMPARE(tile->property("leftPadding").toReal(), 6.0);
        QCOMPARE(tile->property("rightPadding").toReal(), 6.0);
        QCOMPARE(title->width(), 110.0 - 12);
        QQuickItem* background = tile->property("background").value<QQuickItem*>();
        QCOMPARE(background->property("radius").toReal(), 12.0);
        QCOMPARE(background->property("color").value<QColor>(), ColorScheme::light().controlBackground);
        QQuickItem* symbol = UiFixture::findIn(tile, QStringLiteral("tileSymbol"));
        QCOMPARE(symbol->property("tint").value<QColor>(), ColorScheme::light().accent);
        QQuickItem* badge = symbol->parentItem();
        QCOMPARE(badge->width(), 40.0);
        QCOMPARE(badge->height(), 40.0);
        QCOMPARE(badge->property("radius").toReal(), 10.0);
        const QColor fill = badge->property("color").value<QColor>();
        QCOMPARE(fill.rgb(), ColorScheme::light().accent.rgb());
        QVERIFY(qAbs(fill.alphaF() - 0.12) < 0.01);
        QCOMPARE(badge->mapToScene(QPointF(20, 0)).x(), tile->mapToScene(QPointF(55, 0)).x());
        QCOMPARE(title->mapToScene(QPointF(0, 0)).y() - badge->mapToScene(QPointF(0, 40)).y(), 8.0);
        QCOMPARE(tile->height(), 10 + 40 + 8 + title->height() + 10);
        QCOMPARE(tile->opacity(), 1.0);
        QVERIFY(tile->isEnabled());
        tile->setProperty("disabled", true);
        QCOMPARE(tile->opacity(), 0.45);
        QVERIFY(!tile->isEnabled());
        tile->setParentItem(nullptr);
    }
};

QTEST_MAIN(AppRowsTest)
#include "tst_app_rows.moc"
