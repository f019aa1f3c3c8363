// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Linked last: this ends the compositor the whole run shares.
#include "KWinSession.h"
#include "PlasmaWindowManagement.h"
#include "TestBed.h"
#include "WaylandConnection.h"

#include <QEventLoop>
#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

#include <sys/resource.h>

namespace tb = stowly::testbed;
using stowly::kwin::PlasmaWindowInfo;
using stowly::kwin::PlasmaWindowManagement;
using stowly::kwin::WaylandConnection;
using stowly::kwintest::sharedSession;

namespace {

long cpuMicroseconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000000L + usage.ru_utime.tv_usec + usage.ru_stime.tv_usec;
}

TEST(CompositorLoss, TheCompositorGoingAwayEndsTheConnectionQuietly)
{
    ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
    PlasmaWindowManagement management;
    WaylandConnection& connection = management.connection();
    ASSERT_TRUE(management.isGranted());
    const int pid = sharedSession().startNative("kwin going away");
    ASSERT_TRUE(tb::waitUntil([&] {
        management.sync(500);
        for (const PlasmaWindowInfo& window : management.windows()) {
            if (window.title == "kwin going away")
                return true;
        }
        return false;
    }));
    QSignalSpy lost(&connection, &WaylandConnection::connectionLost);
    sharedSession().stopCompositor();
    const long before = cpuMicroseconds();
    QEventLoop loop;
    QTimer::singleShot(1000, &loop, &QEventLoop::quit);
    loop.exec();
    const long spent = cpuMicroseconds() - before;
    EXPECT_EQ(lost.count(), 1);
    EXPECT_FALSE(connection.isConnected());
    EXPECT_FALSE(management.isGranted());
    EXPECT_FALSE(management.sync(100));
    EXPECT_FALSE(management.setMinimized("anything", true));
    // A dead socket must not wake the loop over and over: well under a tenth of that second.
    EXPECT_LT(spent, 100000);
    tb::kill(pid);
}

} // namespace
