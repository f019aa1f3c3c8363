// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The roster of processes that a refresh walks: what it keeps from one pass to the next
// must always read as a fresh look at /proc would.

#include "OpenFileLimit.h"
#include "ProcFs.h"
#include "ProcStat.h"
#include "ProcessRoster.h"
#include "TestBed.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace stowly {
namespace {

namespace tb = testbed;
using linuxdesktop::OpenFileBudget;
using linuxdesktop::ProcessRoster;
using linuxdesktop::ProcStatusCache;

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

// How many pids the kernel handed out from one reading of its last pid to another.
long handedOutBetween(const std::string& before, const std::string& after)
{
    return std::stol(after) - std::stol(before);
}

TEST(ProcessRoster, FindsNewProcessesWithoutReadingTheProcessDirectory)
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
    const std::string before = lastPid();
    roster.refresh();
    const std::uint64_t listings = roster.listings();
    const int pid = apps.start({"sleep", "100004"});
    ASSERT_TRUE(tb::waitUntil([&] { return commOf(pid) == "sleep"; }));
    roster.refresh();
    const std::string after = lastPid();
    expectAsAFreshReadSays(roster, pid);
    if (handedOutBetween(before, after) > 0 && handedOutBetween(before, after) <= ProcessRoster::kMostPidsLookedAt) {
        EXPECT_EQ(roster.listings(), listings) << before << " to " << after;
    }
}

TEST(ProcessRoster, ReadsTheProcessDirectoryWhenManyPidsWereHandedOut)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    if (!roster.seesNewPids())
        GTEST_SKIP() << "this /proc does not belong to the test's pid namespace";
    roster.refresh();
    const std::uint64_t listings = roster.listings();
    tb::Apps apps;
    const std::string many = std::to_string(ProcessRoster::kMostPidsLookedAt + 20);
    const int pid = apps.start(
        {"sh", "-c", "i=0; while [ $i -lt " + many + " ]; do /bin/true; i=$((i+1)); done; exec sleep 100005"});
    ASSERT_TRUE(tb::waitUntil([&] { return commOf(pid) == "sleep"; }));
    roster.refresh();
    EXPECT_GT(roster.listings(), listings);
    expectAsAFreshReadSays(roster, pid);
}

// The pids a process gives its threads come from the same counter: looking at what was
// handed out must still list only processes.
TEST(ProcessRoster, LeavesTheThreadsOfANewProcessOut)
{
    OpenFileBudget budget;
    ProcessRoster roster(budget);
    const std::string before = lastPid(); // read first: the roster's range lies within this one
    roster.refresh();
    const std::uint64_t listings = roster.listings();
    tb::Apps apps;
    const int pid =
        apps.start({"python3", "-c",
                    "import threading, time\n"
                    "for _ in range(3): threading.Thread(target=time.sleep, args=(100006,), daemon=True).start()\n"
                    "time.sleep(100006)\n"});
    std::vector<int> threads;
    ASSERT_TRUE(tb::waitUntil([&] {
        threads.clear();
        DIR* dir = ::opendir(("/proc/" + std::to_string(pid) + "/task").c_str());
        if (dir == nullptr)
            return false;
        while (const dirent* item = ::readdir(dir)) {
            const int tid = std::atoi(item->d_name);
            if (tid > 0 && tid != pid)
                threads.push_back(tid);
        }
        ::closedir(dir);
        return threads.size() >= 3;
    }));
    roster.refresh();
    const std::string after = lastPid();
    expectAsAFreshReadSays(roster, pid);
    for (const int tid : threads)
        EXPECT_FALSE(listed(roster, tid)) << "thread " << tid << " of " << pid;
    // Told apart without reading /proc whole, where the roster could look at each pid.
    if (roster.seesNewPids() && handedOutBetween(before, after) > 0 &&
        handedOutBetween(before, after) <= ProcessRoster::kMostPidsLookedAt) {
        EXPECT_EQ(roster.listings(), listings) << before << " to " << after;
    }
}

// Starts count sleeping processes, each told apart by its argument; none when they did not start.
std::vector<int> startSleepers(tb::Apps& apps, int count, int firstArgument)
{
    std::vector<int> pids;
    for (int i = 0; i < count; ++i)
        pids.push_back(apps.start({"sleep", std::to_string(firstArgument + i)}));
    const bool started = tb::waitUntil(
        [&] { return std::all_of(pids.begin(), pids.end(), [](int pid) { return commOf(pid) == "sleep"; }); });
    return started ? pids : std::vector<int>{};
}

// The roster reads as /proc does for every one of pids, and again after the last one ended.
void expectRightBeforeAndAfterTheLastEnds(ProcessRoster& roster, const std::vector<int>& pids)
{
    for (const int pid : pids)
        expectAsAFreshReadSays(roster, pid);
    tb::kill(pids.back());
    roster.refresh();
    EXPECT_FALSE(listed(roster, pids.back()));
    for (std::size_t i = 0; i + 1 < pids.size(); ++i)
        expectAsAFreshReadSays(roster, pids[i]);
}

TEST(ProcessRoster, StaysRightBeyondItsBudgetOfKeptFilesAndGivesThemBack)
{
    OpenFileBudget budget(5);
    tb::Apps apps;
    const std::vector<int> pids = startSleepers(apps, 4, 100010);
    ASSERT_EQ(pids.size(), 4u);
    {
        ProcessRoster roster(budget);
        roster.refresh();
        EXPECT_LE(budget.left(), 1u);
        expectRightBeforeAndAfterTheLastEnds(roster, pids);
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

// This process's descriptors: how many lie below FD_SETSIZE, and where the kept kinds lie.
struct Descriptors {
    int low = 0;
    int highest = -1;
    int pidfdsLow = 0;
    int pidfdsHigh = 0;
    int procFilesLow = 0; // /proc/PID/comm and /proc/PID/status
    int procFilesHigh = 0;
    int watchesLow = 0; // epoll instances
    int watchesHigh = 0;
};

Descriptors descriptors()
{
    Descriptors found;
    DIR* dir = ::opendir("/proc/self/fd");
    if (dir == nullptr)
        return found;
    const int own = ::dirfd(dir);
    while (const dirent* entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.')
            continue;
        const int fd = std::atoi(entry->d_name);
        if (fd == own)
            continue;
        char target[256];
        const ssize_t n = ::readlinkat(own, entry->d_name, target, sizeof target - 1);
        const std::string link(target, n > 0 ? static_cast<std::size_t>(n) : 0);
        const bool low = fd < FD_SETSIZE;
        found.low += low ? 1 : 0;
        found.highest = std::max(found.highest, fd);
        if (link == "anon_inode:[pidfd]")
            ++(low ? found.pidfdsLow : found.pidfdsHigh);
        if (link == "anon_inode:[eventpoll]")
            ++(low ? found.watchesLow : found.watchesHigh);
        const bool procFile = link.rfind("/proc/", 0) == 0 &&
                              (link.size() > 5 && (link.substr(link.size() - 5) == "/comm" ||
                                                   (link.size() > 7 && link.substr(link.size() - 7) == "/status")));
        if (procFile)
            ++(low ? found.procFilesLow : found.procFilesHigh);
    }
    ::closedir(dir);
    return found;
}

rlim_t softLimitNow()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    return limit.rlim_cur;
}

// Sets this process's soft limit on descriptors for as long as the object lives.
class SoftLimit {
public:
    explicit SoftLimit(rlim_t soft)
    {
        ::getrlimit(RLIMIT_NOFILE, &m_saved);
        rlimit changed = m_saved;
        changed.rlim_cur = std::min(soft, m_saved.rlim_max);
        m_set = ::setrlimit(RLIMIT_NOFILE, &changed) == 0;
    }
    ~SoftLimit() { ::setrlimit(RLIMIT_NOFILE, &m_saved); }
    SoftLimit(const SoftLimit&) = delete;
    SoftLimit& operator=(const SoftLimit&) = delete;
    bool set() const { return m_set; }

private:
    rlimit m_saved{};
    bool m_set = false;
};

TEST(OpenFileBudget, ComesFromTheSoftLimitAboveFdSetSize)
{
    EXPECT_EQ(OpenFileBudget::forSoftLimit(100).left(), 0u);
    EXPECT_EQ(OpenFileBudget::forSoftLimit(600).left(), 344u);
    EXPECT_EQ(OpenFileBudget::forSoftLimit(1024).left(), 768u);
    EXPECT_EQ(OpenFileBudget::forSoftLimit(20000).left(), 768u + (20000u - 1024u - 256u));
}

TEST(OpenFileBudget, MovesKeptDescriptorsUpOrKeepsFewLowOnesWhenTheyCannotMove)
{
    OpenFileBudget budget(3, 1);
    {
        // No room above FD_SETSIZE: one may stay low, the next is closed.
        const SoftLimit low(600);
        ASSERT_TRUE(low.set());
        const int first = budget.keep(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        ASSERT_GE(first, 0);
        EXPECT_LT(first, FD_SETSIZE);
        const int second = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ASSERT_GE(second, 0);
        EXPECT_EQ(budget.keep(second), -1);
        EXPECT_EQ(::fcntl(second, F_GETFD), -1) << "a descriptor the budget turns down is closed";
        EXPECT_EQ(budget.left(), 2u);
        budget.release(first);
        EXPECT_EQ(budget.left(), 3u);
    }
    linuxdesktop::openfilelimit::raise();
    if (softLimitNow() <= FD_SETSIZE + 3)
        GTEST_SKIP() << "the hard limit leaves no room above FD_SETSIZE";
    std::vector<int> kept;
    for (int i = 0; i < 3; ++i) {
        kept.push_back(budget.keep(::open("/dev/null", O_RDONLY | O_CLOEXEC)));
        EXPECT_GE(kept.back(), FD_SETSIZE);
        EXPECT_NE(::fcntl(kept.back(), F_GETFD) & FD_CLOEXEC, 0);
    }
    EXPECT_EQ(budget.keep(::open("/dev/null", O_RDONLY | O_CLOEXEC)), -1);
    for (const int fd : kept)
        budget.release(fd);
    EXPECT_EQ(budget.left(), 3u);
}

TEST(ProcessRoster, KeepsItsFilesAboveFdSetSizeAndStaysRight)
{
    linuxdesktop::openfilelimit::raise();
    if (softLimitNow() <= FD_SETSIZE + 1024)
        GTEST_SKIP() << "the hard limit leaves no room above FD_SETSIZE";
    tb::Apps apps;
    const int pid = apps.start({"sleep", "100020"});
    ASSERT_TRUE(tb::waitUntil([&] { return commOf(pid) == "sleep"; }));
    const Descriptors before = descriptors();
    OpenFileBudget budget;
    const std::size_t total = budget.left();
    {
        ProcessRoster roster(budget);
        ProcStatusCache statuses(budget);
        roster.refresh();
        statuses.beginPass();
        EXPECT_TRUE(statuses.status(pid).readable);
        const Descriptors during = descriptors();
        EXPECT_LE(during.low, before.low) << "descriptors below FD_SETSIZE stay free for the rest of the program";
        EXPECT_EQ(during.pidfdsLow, before.pidfdsLow);
        EXPECT_EQ(during.procFilesLow, before.procFilesLow);
        // A pidfd of nearly every process, the name of nearly every listed one (kernel
        // threads keep no name file), and the status file asked about.
        const int listedCount = static_cast<int>(roster.pids().size());
        EXPECT_GE(during.pidfdsHigh - before.pidfdsHigh + 16, listedCount);
        EXPECT_GE(during.procFilesHigh - before.procFilesHigh + 16, listedCount + 1);
        // The roster also keeps the watch over its pidfds and, where it can, the kernel's last pid.
        EXPECT_EQ(during.watchesHigh - before.watchesHigh, 1);
        EXPECT_EQ(total - budget.left(),
                  static_cast<std::size_t>(during.pidfdsHigh - before.pidfdsHigh + during.procFilesHigh -
                                           before.procFilesHigh + during.watchesHigh - before.watchesHigh +
                                           (roster.seesNewPids() ? 1 : 0)));
        expectAsAFreshReadSays(roster, pid);
        tb::kill(pid);
        roster.refresh();
        EXPECT_FALSE(listed(roster, pid));
        expectAsAFreshReadSays(roster, ::getpid());
    }
    EXPECT_EQ(budget.left(), total);
    const Descriptors after = descriptors();
    EXPECT_EQ(after.pidfdsHigh, before.pidfdsHigh);
    EXPECT_EQ(after.procFilesHigh, before.procFilesHigh);
    EXPECT_EQ(after.watchesHigh, before.watchesHigh);
}

TEST(ProcessRoster, UnderALowLimitKeepsItsFilesBelowItAndStaysRight)
{
    // A soft limit no higher than FD_SETSIZE: nothing can move up, so the kept files stay
    // low, within the budget that limit gives.
    const SoftLimit limit(600);
    ASSERT_TRUE(limit.set());
    tb::Apps apps;
    const std::vector<int> pids = startSleepers(apps, 3, 100030);
    ASSERT_EQ(pids.size(), 3u);
    const Descriptors before = descriptors();
    OpenFileBudget budget;
    EXPECT_EQ(budget.left(), 344u);
    {
        ProcessRoster roster(budget);
        roster.refresh();
        const Descriptors during = descriptors();
        EXPECT_LT(during.highest, 600);
        EXPECT_GT(during.pidfdsLow, before.pidfdsLow);
        // Every file it keeps comes out of that budget, however many processes the machine runs
        // (a kernel thread is held by its pidfd alone, so the count of pidfds alone says little).
        EXPECT_EQ(344u - budget.left(),
                  static_cast<std::size_t>(during.pidfdsLow - before.pidfdsLow + during.procFilesLow -
                                           before.procFilesLow + during.watchesLow - before.watchesLow +
                                           (roster.seesNewPids() ? 1 : 0)));
        expectRightBeforeAndAfterTheLastEnds(roster, pids);
    }
    EXPECT_EQ(budget.left(), 344u);
}

} // namespace
} // namespace stowly
