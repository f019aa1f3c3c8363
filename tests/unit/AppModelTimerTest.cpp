// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TestSupport.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QMetaObject>
#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

namespace stowly {

// Fires the model's tick by hand, so no test waits for the clock.
class AppModelTimerProbe {
public:
    static void tick(AppModel& model) { model.scheduleRefreshFromTimer(); }
};

namespace {

using testing::q;

class AppModelTimer : public testing::ModelTest {
protected:
    void TearDown() override
    {
        model.reset();
        drainEvents();
    }

    // Runs queued events, including deferred deletions, without waiting for any timer.
    static void drainEvents()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static QList<QTimer*> liveTimers(AppModel& m)
    {
        QList<QTimer*> live;
        for (auto* timer : m.findChildren<QTimer*>()) {
            if (timer->isActive())
                live.push_back(timer);
        }
        return live;
    }
};

TEST_F(AppModelTimer, ConstructionStartsOneRepeatingOneSecondTimer)
{
    auto& m = makeModel();
    drainEvents();
    const auto timers = m.findChildren<QTimer*>();
    ASSERT_EQ(timers.size(), 1);
    EXPECT_TRUE(timers[0]->isActive());
    EXPECT_FALSE(timers[0]->isSingleShot());
    EXPECT_EQ(timers[0]->interval(), 1000);
    // A coarse timer may fire up to 5% late on every tick.
    EXPECT_EQ(timers[0]->timerType(), Qt::PreciseTimer);
}

TEST_F(AppModelTimer, StartAutoRefreshTwiceLeavesExactlyOneLiveTimer)
{
    auto& m = makeModel();
    m.startAutoRefresh();
    m.startAutoRefresh();
    ASSERT_EQ(liveTimers(m).size(), 1);
    drainEvents();
    const auto timers = m.findChildren<QTimer*>();
    ASSERT_EQ(timers.size(), 1); // replaced timers are gone, not merely stopped
    EXPECT_TRUE(timers[0]->isActive());
    EXPECT_EQ(timers[0]->interval(), 1000);
    EXPECT_EQ(timers[0]->timerType(), Qt::PreciseTimer);
}

TEST_F(AppModelTimer, TickNeverRefreshesInsideTheCallback)
{
    auto& m = makeModel();
    drainEvents();
    const int listings = fakes.workspace.runningApplicationsCalls;
    const auto trustQueries = fakes.trust.prompts.size();
    QSignalSpy appsSpy(&m, &AppModel::runningAppsChanged);

    AppModelTimerProbe::tick(m);
    EXPECT_EQ(fakes.workspace.runningApplicationsCalls, listings);
    EXPECT_EQ(fakes.trust.prompts.size(), trustQueries);
    EXPECT_EQ(appsSpy.count(), 0);

    QCoreApplication::processEvents();
    EXPECT_GT(fakes.workspace.runningApplicationsCalls, listings);
    EXPECT_GT(fakes.trust.prompts.size(), trustQueries);
    EXPECT_GE(appsSpy.count(), 1);
}

TEST_F(AppModelTimer, TimerTimeoutQueuesTheRefreshToo)
{
    auto& m = makeModel();
    drainEvents();
    const auto timers = m.findChildren<QTimer*>();
    ASSERT_EQ(timers.size(), 1);
    const int listings = fakes.workspace.runningApplicationsCalls;
    // Emit the timer's own signal, as the event loop would on expiry.
    ASSERT_TRUE(QMetaObject::invokeMethod(timers[0], "timeout", Qt::DirectConnection));
    EXPECT_EQ(fakes.workspace.runningApplicationsCalls, listings);
    QCoreApplication::processEvents();
    EXPECT_GT(fakes.workspace.runningApplicationsCalls, listings);
}

TEST_F(AppModelTimer, TickInsideANestedEventLoopRefreshesWithinThatLoop)
{
    // A menu or a modal dialog runs its own event loop; ticks must not wait for it to end.
    auto& m = makeModel();
    drainEvents();
    const auto timers = m.findChildren<QTimer*>();
    ASSERT_EQ(timers.size(), 1);
    const int listings = fakes.workspace.runningApplicationsCalls;
    int listingsSeenInsideTheLoop = -1;
    bool ranInsideTheLoop = false;

    QEventLoop nested;
    QTimer::singleShot(0, &nested, [&] {
        ranInsideTheLoop = true;
        ASSERT_TRUE(QMetaObject::invokeMethod(timers[0], "timeout", Qt::DirectConnection));
        // Posted after the queued refresh, so it runs after it, still inside this loop.
        QMetaObject::invokeMethod(
            &nested,
            [&] {
                listingsSeenInsideTheLoop = fakes.workspace.runningApplicationsCalls;
                nested.quit();
            },
            Qt::QueuedConnection);
    });
    QTimer::singleShot(10000, &nested, &QEventLoop::quit); // never hang the run
    nested.exec();
    ASSERT_TRUE(ranInsideTheLoop);
    EXPECT_GT(listingsSeenInsideTheLoop, listings);
}

TEST_F(AppModelTimer, QueuedTickIsTheSnapshotGrantingAccess)
{
    auto& m = makeModel();
    drainEvents();
    fakes.trust.trusted = true;
    AppModelTimerProbe::tick(m);
    EXPECT_FALSE(m.hasAccessibilityPermission());
    QCoreApplication::processEvents();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access granted."));
}

TEST_F(AppModelTimer, DestroyedModelTurnsAQueuedTickIntoANoOp)
{
    auto& m = makeModel();
    drainEvents();
    AppModelTimerProbe::tick(m);
    AppModelTimerProbe::tick(m);
    model.reset();
    const int listings = fakes.workspace.runningApplicationsCalls;
    const auto trustQueries = fakes.trust.prompts.size();
    drainEvents();
    EXPECT_EQ(fakes.workspace.runningApplicationsCalls, listings);
    EXPECT_EQ(fakes.trust.prompts.size(), trustQueries);
}

TEST_F(AppModelTimer, TrustGrantedWhileRunningIsNoticedByTheRunningTimer)
{
    // The only test that lets the real timer fire; the bound is generous on purpose.
    auto& m = makeModel();
    fakes.trust.trusted = true;
    QSignalSpy permissionSpy(&m, &AppModel::hasAccessibilityPermissionChanged);
    ASSERT_TRUE(permissionSpy.wait(10000));
    QCoreApplication::processEvents();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access granted."));
}

} // namespace
} // namespace stowly
