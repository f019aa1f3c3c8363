// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The tray item on a StatusNotifierItem host: registration with the watcher, the properties a
// host reads, and a click that carries its position to the panel. Runs on a private session
// bus with a stand-in watcher in its own process.
#include "PanelWindow.h"
#include "StatusNotifierItem.h"
#include "TrayController.h"
#include "UiFixture.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

using namespace stowly;

class StatusNotifierTest : public QObject {
    Q_OBJECT

private:
    QProcess m_watcher;

    bool startWatcher(int x, int y)
    {
        m_watcher.setProgram(QStringLiteral(STOWLY_SNI_WATCHER_PATH));
        m_watcher.setArguments({QString::number(x), QString::number(y)});
        m_watcher.start();
        return m_watcher.waitForStarted() &&
               QTest::qWaitFor([] { return StatusNotifierItem::isHostAvailable(); }, 5000);
    }
    void stopWatcher()
    {
        m_watcher.kill();
        m_watcher.waitForFinished();
        QVERIFY(QTest::qWaitFor([] { return !StatusNotifierItem::isHostAvailable(); }, 5000));
    }
    QString watcherOutput()
    {
        m_watcher.waitForReadyRead(100);
        return QString::fromUtf8(m_watcher.readAllStandardOutput());
    }

private slots:
    void initTestCase() { QVERIFY2(QDBusConnection::sessionBus().isConnected(), "the test needs a session bus"); }

    void withoutAWatcherThereIsNoHost() { QVERIFY(!StatusNotifierItem::isHostAvailable()); }

    void pixmapsAreArgbInNetworkOrder()
    {
        QImage image(2, 1, QImage::Format_ARGB32);
        image.setPixel(0, 0, 0x80112233u);
        image.setPixel(1, 0, 0xff445566u);
        const StatusNotifierPixmap pixmap = statusNotifierPixmap(image);
        QCOMPARE(pixmap.width, 2);
        QCOMPARE(pixmap.height, 1);
        QCOMPARE(pixmap.bytes, QByteArray::fromHex("80112233ff445566"));
    }

    void theItemRegistersAndAClickCarriesItsPosition()
    {
        QVERIFY(startWatcher(120, 30));
        StatusNotifierItem item(QStringLiteral("app.stowly.Stowly"), QStringLiteral("Stowly"),
                                {QImage(18, 18, QImage::Format_ARGB32), QImage(36, 36, QImage::Format_ARGB32)});
        QSignalSpy activated(&item, &StatusNotifierItem::activated);
        QVERIFY(item.registerItem());
        QVERIFY(activated.wait(5000));
        QCOMPARE(activated.first().first().toPoint(), QPoint(120, 30));
        QString output;
        QVERIFY(QTest::qWaitFor(
            [&] {
                output += watcherOutput();
                return output.contains(QStringLiteral("activated"));
            },
            5000));
        QVERIFY2(output.contains(QStringLiteral("registered ") + item.serviceName()), qPrintable(output));
        QVERIFY2(output.contains(QStringLiteral("Id=app.stowly.Stowly\n")), qPrintable(output));
        QVERIFY2(output.contains(QStringLiteral("Title=Stowly\n")), qPrintable(output));
        QVERIFY2(output.contains(QStringLiteral("ItemIsMenu=false\n")), qPrintable(output));
        QVERIFY2(output.contains(QStringLiteral("IconPixmap 18x18 1296 bytes\n")), qPrintable(output));
        QVERIFY2(output.contains(QStringLiteral("IconPixmap 36x36 5184 bytes\n")), qPrintable(output));
        stopWatcher();
    }

    void aClickInTheHostOpensThePanelUnderIt()
    {
        testing::UiFixture ui;
        ui.addApp(501, "Alpha");
        ui.start();
        TrayController tray(ui.views());
        QVERIFY(startWatcher(700, 12));
        tray.showTrayIcon();
        QVERIFY(QTest::qWaitFor([&] { return tray.panelWindow().isVisible(); }, 5000));
        // The panel hangs below the point the host gave, horizontally around it.
        const QRect panel = tray.panelWindow().view().geometry();
        QVERIFY2(panel.top() >= 12 && panel.top() < 60, qPrintable(QStringLiteral("top %1").arg(panel.top())));
        QVERIFY2(panel.left() <= 700 && panel.right() >= 680,
                 qPrintable(QStringLiteral("%1..%2").arg(panel.left()).arg(panel.right())));
        stopWatcher();
    }
};

QTEST_MAIN(StatusNotifierTest)
#include "tst_status_notifier.moc"
