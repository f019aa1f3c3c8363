// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The apps' processes are asked about every refresh: whether each still runs, and when it
// started. A held process answers without a read of /proc; a process that exited, or a
// pid handed to a new process, is looked at afresh.

#include "ProcStat.h"
#include "ProcessLiveness.h"
#include "TestBed.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace stowly {
namespace {

namespace tb = testbed;
using linuxdesktop::ProcessLiveness;

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

TEST(ProcessLiveness, AHeldProcessAnswersWithoutAReadUntilItExits)
{
    ProcessLiveness liveness;
    UnreapedChild child;
    const int pid = child.pid();
    ASSERT_GT(pid, 0);
    const auto fresh = linuxdesktop::readProcStat(pid);
    ASSERT_TRUE(fresh);

    EXPECT_TRUE(liveness.isAlive(pid));
    EXPECT_EQ(liveness.startTime(pid), fresh->startTime);
    const auto reads = liveness.statReads();
    EXPECT_EQ(reads, 1u);
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(liveness.isAlive(pid));
        EXPECT_EQ(liveness.startTime(pid), fresh->startTime);
    }
    EXPECT_EQ(liveness.statReads(), reads);
    // Asked for the process that started at a given time: only that one counts.
    EXPECT_TRUE(liveness.isAlive(pid, fresh->startTime));
    EXPECT_FALSE(liveness.isAlive(pid, fresh->startTime + 1));

    // A zombie has exited, yet its start time still tells it apart until it is reaped.
    ASSERT_EQ(::kill(pid, SIGKILL), 0);
    ASSERT_TRUE(tb::waitUntil([&] {
        const auto now = linuxdesktop::readProcStat(pid);
        return now && now->isZombie();
    }));
    EXPECT_FALSE(liveness.isAlive(pid));
    EXPECT_EQ(liveness.startTime(pid), fresh->startTime);

    ASSERT_TRUE(child.reap());
    EXPECT_FALSE(liveness.isAlive(pid));
    EXPECT_EQ(liveness.startTime(pid), std::nullopt);
}

TEST(ProcessLiveness, LetsGoOfProcessesNotKept)
{
    ProcessLiveness liveness;
    UnreapedChild first, second;
    const int a = first.pid();
    const int b = second.pid();
    ASSERT_GT(a, 0);
    ASSERT_GT(b, 0);
    EXPECT_TRUE(liveness.isAlive(a));
    EXPECT_TRUE(liveness.isAlive(b));
    EXPECT_EQ(liveness.statReads(), 2u);

    liveness.keepOnly({a});
    EXPECT_TRUE(liveness.isAlive(a));
    EXPECT_EQ(liveness.statReads(), 2u); // still held
    EXPECT_TRUE(liveness.isAlive(b));
    EXPECT_EQ(liveness.statReads(), 3u); // let go, so read afresh

    for (UnreapedChild* child : {&first, &second}) {
        ::kill(child->pid(), SIGKILL);
        ASSERT_TRUE(child->reap());
    }
    EXPECT_FALSE(liveness.isAlive(a));
    EXPECT_FALSE(liveness.isAlive(b));
    EXPECT_FALSE(liveness.isAlive(0));
    EXPECT_FALSE(liveness.isAlive(-1));
    EXPECT_EQ(liveness.startTime(0), std::nullopt);
}

} // namespace
} // namespace stowly
