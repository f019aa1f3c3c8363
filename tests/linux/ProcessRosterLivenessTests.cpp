// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The apps' processes are asked about every refresh: whether each still runs, and when it
// started. A process the roster holds answers without a read of /proc; a process that
// exited, or one the roster has not seen yet, is looked at afresh.

#include "ProcStat.h"
#include "ProcessRoster.h"
#include "TestBed.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

namespace stowly {
namespace {

namespace tb = testbed;
using linuxdesktop::OpenFileBudget;
using linuxdesktop::ProcessRoster;

// A child of this process that waits for a signal, reaped only when the test says so (or
// at the end, whatever the test's outcome).
class UnreapedChild {
public:
    UnreapedChild() : m_pid(static_cast<int>(::fork()))
    {
        if (m_pid == 0) {
            for (;;)
                ::pause();
        }
    }
    ~UnreapedChild()
    {
        ::kill(m_pid, SIGKILL);
        reap();
    }
    UnreapedChild(const UnreapedChild&) = delete;
    UnreapedChild& operator=(const UnreapedChild&) = delete;
    int pid() const { return m_pid; }
    bool reap()
    {
        if (m_reaped || m_pid <= 0)
            return false;
        int status = 0;
        m_reaped = ::waitpid(m_pid, &status, 0) == m_pid;
        return m_reaped;
    }

private:
    int m_pid;
    bool m_reaped = false;
};

TEST(ProcessRosterLiveness, AHeldProcessAnswersWithoutAReadUntilItExits)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    UnreapedChild child;
    const int pid = child.pid();
    ASSERT_GT(pid, 0);
    const auto fresh = linuxdesktop::readProcStat(pid);
    ASSERT_TRUE(fresh);
    roster.refresh();
    ASSERT_NE(std::find(roster.pids().begin(), roster.pids().end(), pid), roster.pids().end());

    const auto reads = roster.statReads();
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(roster.isRunning(pid));
        EXPECT_EQ(roster.startTime(pid), fresh->startTime);
    }
    EXPECT_EQ(roster.statReads(), reads);
    // Asked for the process that started at a given time: only that one counts.
    EXPECT_TRUE(roster.isRunning(pid, fresh->startTime));
    EXPECT_FALSE(roster.isRunning(pid, fresh->startTime + 1));

    // A zombie has exited, yet its start time still tells it apart until it is reaped; the
    // roster, not yet refreshed, still lists it, and must not answer from that.
    ASSERT_EQ(::kill(pid, SIGKILL), 0);
    ASSERT_TRUE(tb::waitUntil([&] {
        const auto now = linuxdesktop::readProcStat(pid);
        return now && now->isZombie();
    }));
    EXPECT_FALSE(roster.isRunning(pid));
    EXPECT_FALSE(roster.isRunning(pid, fresh->startTime));
    EXPECT_EQ(roster.startTime(pid), fresh->startTime);

    ASSERT_TRUE(child.reap());
    EXPECT_FALSE(roster.isRunning(pid));
    EXPECT_EQ(roster.startTime(pid), std::nullopt);
}

TEST(ProcessRosterLiveness, AProcessNotYetSeenIsReadEveryTime)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    roster.refresh();
    UnreapedChild child; // started after the refresh
    const int pid = child.pid();
    ASSERT_GT(pid, 0);
    const auto fresh = linuxdesktop::readProcStat(pid);
    ASSERT_TRUE(fresh);
    const auto reads = roster.statReads();
    EXPECT_TRUE(roster.isRunning(pid, fresh->startTime));
    EXPECT_EQ(roster.startTime(pid), fresh->startTime);
    EXPECT_EQ(roster.statReads(), reads + 2);

    ::kill(pid, SIGKILL);
    ASSERT_TRUE(child.reap());
    EXPECT_FALSE(roster.isRunning(pid));
    EXPECT_EQ(roster.startTime(pid), std::nullopt);
    EXPECT_FALSE(roster.isRunning(0));
    EXPECT_FALSE(roster.isRunning(-1));
    EXPECT_EQ(roster.startTime(0), std::nullopt);
}

} // namespace
} // namespace stowly
