// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The roster of processes that a refresh walks: what it keeps from one pass to the next
// must always read as a fresh look at /proc would.

#include "ProcStat.h"
#include "ProcessRoster.h"
#include "TestBed.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace stowly {
namespace {

namespace tb = testbed;
using linuxdesktop::OpenFileBudget;
using linuxdesktop::ProcessRoster;

bool listed(const ProcessRoster& roster, int pid)
{
    return std::binary_search(roster.pids().begin(), roster.pids().end(), pid);
}

std::string commOf(int pid)
{
    std::string text = tb::readText("/proc/" + std::to_string(pid) + "/comm");
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

// The children of pid, from a fresh look.
std::vector<int> childrenOf(int pid)
{
    std::vector<int> children;
    for (const int other : tb::allProcesses())
        if (tb::parentOf(other) == pid)
            children.push_back(other);
    return children;
}

std::string lastPid()
{
    std::string text = tb::readText("/proc/loadavg");
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    return text.substr(text.rfind(' ') + 1);
}

void expectAsAFreshReadSays(const ProcessRoster& roster, int pid)
{
    const auto fresh = linuxdesktop::readProcStat(pid);
    ASSERT_TRUE(fresh) << pid;
    EXPECT_TRUE(listed(roster, pid)) << pid;
    EXPECT_EQ(roster.name(pid), fresh->name) << pid;
    EXPECT_EQ(roster.parent(pid), fresh->ppid) << pid;
}

TEST(ProcessRoster, ListsNamesAndParentsAsAFreshReadDoes)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    tb::Apps apps;
    const int a = apps.start({"sleep", "100000"});
    const int b = apps.start({"sleep", "100001"});
    ASSERT_TRUE(tb::waitUntil([&] { return commOf(a) == "sleep" && commOf(b) == "sleep"; }));
    roster.refresh();
    expectAsAFreshReadSays(roster, a);
    expectAsAFreshReadSays(roster, b);
    EXPECT_EQ(roster.parent(a), static_cast<int>(getpid()));
    EXPECT_TRUE(listed(roster, static_cast<int>(getpid())));

    tb::kill(a);
    const int c = apps.start({"sleep", "100002"});
    ASSERT_TRUE(tb::waitUntil([&] { return commOf(c) == "sleep"; }));
    roster.refresh();
    EXPECT_FALSE(listed(roster, a));
    expectAsAFreshReadSays(roster, b);
    expectAsAFreshReadSays(roster, c);

    // The kernel's thread starter, where this namespace shows it.
    if (commOf(2) == "kthreadd") {
        EXPECT_EQ(roster.name(2), std::optional<std::string>("kthreadd"));
        EXPECT_EQ(roster.parent(2), 0);
    }
}

TEST(ProcessRoster, AProgramExecutedInPlaceGivesItsNewName)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    tb::Apps apps;
    const int pid = apps.start({"sh", "-c", "sleep 0.5; exec sleep 100000"});
    ASSERT_TRUE(tb::waitUntil([&] {
        roster.refresh();
        return roster.name(pid) == std::optional<std::string>("sh");
    }));
    ASSERT_TRUE(tb::waitUntil([&] { return commOf(pid) == "sleep"; }));
    roster.refresh();
    EXPECT_EQ(roster.name(pid), std::optional<std::string>("sleep"));
}

TEST(ProcessRoster, AnOrphanGetsItsNewParentWhileTheOldOneIsStillAZombie)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    tb::Apps apps;
    const int parent = apps.start({"sh", "-c", "sleep 100003 & sleep 1"});
    int child = 0;
    ASSERT_TRUE(tb::waitUntil([&] {
        const auto children = childrenOf(parent);
        child = children.empty() ? 0 : children.front();
        return child != 0 && commOf(child) == "sleep";
    }));
    roster.refresh();
    EXPECT_EQ(roster.parent(child), parent);

    // The parent exits and is not waited for: a zombie, while its child is handed on.
    const bool zombie = tb::waitUntil([&] {
        const auto stat = linuxdesktop::readProcStat(parent);
        return stat && stat->isZombie();
    });
    roster.refresh();
    const int adopter = tb::parentOf(child);
    tb::kill(child); // not ours any more: the test bed would not end it
    ASSERT_TRUE(zombie);
    EXPECT_NE(adopter, parent);
    EXPECT_EQ(roster.parent(child), adopter);
}

TEST(ProcessRoster, ReadsTheProcessDirectoryOnlyAfterAPidWasHandedOut)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    if (!roster.seesNewPids())
        GTEST_SKIP() << "this /proc does not belong to the test's pid namespace";
    roster.refresh();
    // Other programs on the machine may start processes at any moment: look for a quiet
    // moment, known as one because the kernel's last pid stayed the same around it.
    bool quietMomentSeen = false;
    for (int attempt = 0; attempt < 50 && !quietMomentSeen; ++attempt) {
        const std::string before = lastPid();
        roster.refresh();
        const std::uint64_t listings = roster.listings();
        roster.refresh();
        const std::string after = lastPid();
        if (before != after)
            continue;
        quietMomentSeen = true;
        EXPECT_EQ(roster.listings(), listings);
    }
    if (!quietMomentSeen)
        GTEST_SKIP() << "processes kept starting on this machine";

    tb::Apps apps;
    const std::uint64_t listings = roster.listings();
    const int pid = apps.start({"sleep", "100004"});
    ASSERT_TRUE(tb::waitUntil([&] { return commOf(pid) == "sleep"; }));
    roster.refresh();
    EXPECT_GT(roster.listings(), listings);
    expectAsAFreshReadSays(roster, pid);
}

TEST(ProcessRoster, StaysRightBeyondItsBudgetOfKeptFilesAndGivesThemBack)
{
    OpenFileBudget budget(5);
    tb::Apps apps;
    std::vector<int> pids;
    for (int i = 0; i < 4; ++i)
        pids.push_back(apps.start({"sleep", std::to_string(100010 + i)}));
    ASSERT_TRUE(tb::waitUntil(
        [&] { return std::all_of(pids.begin(), pids.end(), [](int pid) { return commOf(pid) == "sleep"; }); }));
    {
        ProcessRoster roster(budget);
        roster.refresh();
        EXPECT_LE(budget.left(), 1u);
        for (const int pid : pids)
            expectAsAFreshReadSays(roster, pid);
        tb::kill(pids.back());
        roster.refresh();
        EXPECT_FALSE(listed(roster, pids.back()));
        for (std::size_t i = 0; i + 1 < pids.size(); ++i)
            expectAsAFreshReadSays(roster, pids[i]);
    }
    EXPECT_EQ(budget.left(), 5u);
}

// Kernel threads have no memory and no windows: the roster keeps them out of its list,
// and reads none of them again from pass to pass.
TEST(ProcessRoster, LeavesKernelThreadsOutAndDoesNotReadThemAgain)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    roster.refresh();
    std::size_t kernelThreads = 0;
    for (const int pid : tb::allProcesses()) {
        const auto fresh = linuxdesktop::readProcStat(pid);
        if (!fresh || !fresh->isKernelThread())
            continue;
        ++kernelThreads;
        EXPECT_FALSE(listed(roster, pid)) << pid << " " << fresh->name;
        // Asked by pid, it is read afresh, as any process the roster does not list.
        const auto before = roster.statReads();
        EXPECT_TRUE(roster.name(pid).has_value());
        EXPECT_EQ(roster.statReads(), before + 1);
    }
    for (const int pid : roster.pids()) {
        const auto fresh = linuxdesktop::readProcStat(pid);
        EXPECT_FALSE(fresh && fresh->isKernelThread()) << pid;
    }
    // This process and its parent are listed: only kernel threads are left out.
    EXPECT_TRUE(listed(roster, static_cast<int>(getpid())));
    EXPECT_TRUE(listed(roster, static_cast<int>(getppid())));
    if (kernelThreads == 0)
        GTEST_SKIP() << "no kernel threads are visible in this pid namespace";
}

} // namespace
} // namespace stowly
