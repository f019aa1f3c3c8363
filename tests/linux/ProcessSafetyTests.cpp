// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Signals only ever reach the process the user meant: never Stowly, its parent, the
// leaders of its group and session, another user's processes, or a process that took
// over the pid of the one listed. Checked on real processes and, where the decision
// alone matters, on made-up ones.

#include "ProcStat.h"
#include "ProcessSignals.h"
#include "TestBed.h"
#include "X11Platform.h"
#include "XConnection.h"
#include "core/WindowMinimizer.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <thread>

using namespace stowly;
using namespace stowly::testbed;
using stowly::linuxdesktop::ProcStat;
using stowly::linuxdesktop::SignalSender;
using stowly::linuxdesktop::SignalTarget;
using stowly::linuxdesktop::SignalVerdict;

namespace stowly::testbed {
Display& sharedDisplay();
}

namespace {

RunningApplicationRef listed(Workspace& workspace, int pid)
{
    for (const auto& app : workspace.runningApplications())
        if (app->processIdentifier() == pid)
            return app;
    return nullptr;
}

// A process of user `nobody`, our child; -1 unless we may switch users.
int startOtherUsersProcess()
{
    if (getuid() != 0)
        return -1;
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent || setgid(65534) != 0 || setuid(65534) != 0)
            _exit(127);
        execlp("sleep", "sleep", "100000", static_cast<char*>(nullptr));
        _exit(127);
    }
    return pid;
}

// For processes that are not our children (processGone would try to reap them).
bool stillRunning(int pid)
{
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text;
    if (!std::getline(stat, text))
        return false;
    const auto paren = text.rfind(')');
    return paren != std::string::npos && paren + 2 < text.size() && text[paren + 2] != 'Z';
}

SignalTarget targetOf(std::int32_t pid, std::uint64_t start, std::uint32_t uid, char state = 'S')
{
    SignalTarget t;
    t.pid = pid;
    ProcStat stat;
    stat.pid = pid;
    stat.state = state;
    stat.startTime = start;
    t.stat = stat;
    t.realUid = uid;
    t.effectiveUid = uid;
    return t;
}

} // namespace

TEST(ProcStat, ParsesNamesWithSpacesAndParentheses)
{
    const auto stat = linuxdesktop::parseProcStat(
        "4242 (a) b (c)) S 17 4242 17 34816 4242 4194304 1 2 3 4 5 6 7 8 20 0 1 0 987654321 1000 10 "
        "18446744073709551615 1 1 0 0 0 0 0 0 0 0 0 0 17 1 0 0 0 0 0\n");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->pid, 4242);
    EXPECT_EQ(stat->state, 'S');
    EXPECT_EQ(stat->ppid, 17);
    EXPECT_EQ(stat->pgrp, 4242);
    EXPECT_EQ(stat->session, 17);
    EXPECT_EQ(stat->startTime, 987654321u);
    EXPECT_EQ(stat->flags, 4194304u);
    EXPECT_FALSE(stat->isKernelThread());
}

TEST(ProcStat, TellsAKernelThreadByItsFlags)
{
    const auto stat = linuxdesktop::parseProcStat(
        "2 (kthreadd) S 0 0 0 0 -1 2129984 0 0 0 0 0 1 0 0 20 0 1 0 3 0 0 18446744073709551615 0 0 0 0 0 0 0 "
        "2147483647 0 1 0 0 17 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->ppid, 0);
    EXPECT_TRUE(stat->isKernelThread());
    EXPECT_EQ(stat->startTime, 3u);
}

TEST(ProcStat, RefusesWhatIsNotAStatLine)
{
    for (const char* text :
         {"", "(", "12 (x", "12 (x) S", "12 (x) S 1 2 3 4 5", "x (y) S 1 2 3",
          "0 (x) S 1 1 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 5",
          "12 (x) S 1 1 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 99999999999999999999999",
          "12 (x) S 1  1 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 5", "99999999999 (x) S 1 1 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 5"})
        EXPECT_FALSE(linuxdesktop::parseProcStat(text)) << text;
    EXPECT_TRUE(linuxdesktop::parseProcStat("12 (x) S 1 1 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 5"));
}

TEST(ProcStat, ReadsThisProcess)
{
    const auto self = linuxdesktop::readProcStat(static_cast<std::int32_t>(getpid()));
    ASSERT_TRUE(self);
    EXPECT_EQ(self->pid, getpid());
    EXPECT_EQ(self->ppid, getppid());
    EXPECT_EQ(self->pgrp, getpgrp());
    EXPECT_EQ(self->session, getsid(0));
    EXPECT_GT(self->startTime, 0u);
    EXPECT_FALSE(linuxdesktop::readProcStat(0));
    EXPECT_FALSE(linuxdesktop::readProcStat(-5));
}

TEST(SignalJudgement, RefusesEveryoneButTheListedProcessOfOurUser)
{
    linuxdesktop::SignalSender me;
    me.pid = 500;
    me.parent = 400;
    me.group = 300;
    me.session = 200;
    me.uid = 1000;
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(900, 77, 1000), 77), SignalVerdict::sent);
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(900, 77, 1000), std::nullopt), SignalVerdict::sent);
    for (const std::int32_t pid : {1, 0, -1, -300})
        EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(pid, 77, 1000), 77), SignalVerdict::notAProcess) << pid;
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(500, 77, 1000), 77), SignalVerdict::ownProcess);
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(400, 77, 1000), 77), SignalVerdict::parentProcess);
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(300, 77, 1000), 77), SignalVerdict::ownGroupOrSession);
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(200, 77, 1000), 77), SignalVerdict::ownGroupOrSession);
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(900, 78, 1000), 77), SignalVerdict::replaced);
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(900, 77, 0), 77), SignalVerdict::otherUser);
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, targetOf(900, 77, 1000, 'Z'), 77), SignalVerdict::gone);

    linuxdesktop::SignalTarget setuidTarget = targetOf(900, 77, 1000);
    setuidTarget.effectiveUid = 0; // ours by real uid, root by effective uid
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, setuidTarget, 77), SignalVerdict::otherUser);
    linuxdesktop::SignalTarget unknownOwner = targetOf(900, 77, 1000);
    unknownOwner.realUid.reset();
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, unknownOwner, 77), SignalVerdict::otherUser);
    linuxdesktop::SignalTarget unreadable = targetOf(900, 77, 1000);
    unreadable.stat.reset();
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, unreadable, 77), SignalVerdict::gone);
    linuxdesktop::SignalTarget mislabelled = targetOf(900, 77, 1000);
    mislabelled.stat->pid = 901;
    EXPECT_EQ(linuxdesktop::judgeSignalTarget(me, mislabelled, 77), SignalVerdict::gone);
}

TEST(SignalGuard, RealProcessesAreSignalledOnlyWhenTheyAreWhoWeListed)
{
    Apps apps;
    const int child = apps.start({"sleep", "100000"});
    ASSERT_GT(child, 0);
    ASSERT_TRUE(waitUntil([&] { return linuxdesktop::readProcStat(child).has_value(); }));
    const auto stat = linuxdesktop::readProcStat(child);
    ASSERT_TRUE(stat);
    EXPECT_EQ(linuxdesktop::sendSignalGuarded(child, SIGKILL, stat->startTime + 1), SignalVerdict::replaced);
    EXPECT_FALSE(processGone(child));
    EXPECT_EQ(linuxdesktop::sendSignalGuarded(getpid(), SIGKILL, std::nullopt), SignalVerdict::ownProcess);
    EXPECT_EQ(linuxdesktop::sendSignalGuarded(getppid(), SIGKILL, std::nullopt), SignalVerdict::parentProcess);
    EXPECT_EQ(linuxdesktop::sendSignalGuarded(0, SIGKILL, std::nullopt), SignalVerdict::notAProcess);
    EXPECT_EQ(linuxdesktop::sendSignalGuarded(1, SIGKILL, std::nullopt), SignalVerdict::notAProcess);
    const int other = startOtherUsersProcess();
    if (other > 0) {
        ASSERT_TRUE(waitUntil([&] { return run("stat -c %u /proc/" + std::to_string(other)) == "65534\n"; }));
        EXPECT_EQ(linuxdesktop::sendSignalGuarded(other, SIGKILL, std::nullopt), SignalVerdict::otherUser);
        EXPECT_FALSE(processGone(other));
        testbed::kill(other);
    }
    EXPECT_EQ(linuxdesktop::sendSignalGuarded(child, SIGKILL, stat->startTime), SignalVerdict::sent);
    EXPECT_TRUE(waitUntil([&] { return processGone(child); }));
    testbed::kill(child);
    EXPECT_EQ(linuxdesktop::sendSignalGuarded(child, SIGKILL, stat->startTime), SignalVerdict::gone);
}

// Without the X-Resource extension a window's pid is whatever its _NET_WM_PID claims.
TEST(LyingWindows, AWindowClaimingSomeoneElsesPidNeverGetsThemSignalled)
{
    // Back to the shared display however this test ends: later tests start apps there.
    struct Restore {
        ~Restore() { setenv("DISPLAY", sharedDisplay().name().c_str(), 1); }
    } restore;
    Display display(true, {"-extension", "X-Resource"});
    ASSERT_TRUE(display.ok());
    ASSERT_EQ(run("xdpyinfo -display " + display.name() + " -queryExtensions | grep -c X-Resource"), "0\n");
    x11::X11Platform linux_(display.name());
    Platform& p = linux_.platform();
    Apps apps;
    const int other = startOtherUsersProcess();
    std::vector<std::pair<std::string, int>> claims = {
        {"lie-self", getpid()}, {"lie-parent", getppid()}, {"lie-init", 1}, {"lie-group", getpgrp()}};
    if (other > 0)
        claims.emplace_back("lie-other-user", other);
    std::vector<int> liars;
    for (const auto& [title, pid] : claims)
        liars.push_back(apps.startTestWindow(title, {"--no-delete", "--pid", std::to_string(pid)}));
    const int honest = apps.startTestWindow("honest");
    ASSERT_TRUE(waitForWindowCount("lie-", claims.size()) && waitForWindowTitled("honest"));

    for (const auto& [title, pid] : claims) {
        const RunningApplicationRef app = listed(p.workspace, pid);
        ASSERT_TRUE(app) << title; // the lie is believed: only the guard stands in the way
        EXPECT_FALSE(app->forceTerminate()) << title;
        EXPECT_FALSE(app->terminate()) << title; // no window to close, and no SIGTERM
    }
    // The bulk path as the panel runs it: every listed app is a target, the liars included.
    WindowMinimizer minimizer(p.workspace, p.accessibility, p.processTable);
    EXPECT_GE(minimizer.forceTerminateAllApps(), 1);
    EXPECT_FALSE(minimizer.forceTerminateApp(getppid()));
    EXPECT_FALSE(minimizer.terminateApp(getppid()));

    EXPECT_TRUE(waitUntil([&] { return processGone(honest); }));
    for (const int liar : liars)
        EXPECT_FALSE(processGone(liar)); // they claimed another pid: never targets themselves
    if (other > 0) {
        EXPECT_FALSE(processGone(other));
        testbed::kill(other);
    }
    EXPECT_TRUE(stillRunning(getppid()));
    EXPECT_FALSE(processGone(display.windowManagerPid()));
}

// The kernel hands out the pid of an exited process again; ns_last_pid lets the test
// make that happen at once instead of after a full turn of the pid space.
TEST(PidReuse, AProcessThatInheritedAListedPidIsNotForceQuit)
{
    ASSERT_TRUE(sharedDisplay().ok());
    x11::X11Platform linux_;
    Platform& p = linux_.platform();
    Apps apps;
    const int first = apps.startTestWindow("reuse-first");
    ASSERT_TRUE(waitForWindowTitled("reuse-first"));
    WindowMinimizer minimizer(p.workspace, p.accessibility, p.processTable);
    // A refresh as the panel's: the list the user then acts on.
    const auto shown = minimizer.runningApps();
    ASSERT_TRUE(std::any_of(shown.begin(), shown.end(), [&](const RunningAppInfo& a) { return a.id == first; }));
    const RunningApplicationRef listedFirst = listed(p.workspace, first);
    ASSERT_TRUE(listedFirst);
    const auto firstStat = linuxdesktop::readProcStat(first);
    ASSERT_TRUE(firstStat);
    testbed::kill(first);
    // Start times count clock ticks: two processes started within one tick under the same
    // pid cannot be told apart. A real reuse waits for a full turn of the pid space, far
    // longer than a tick; this test skips the turn, so it lets a tick or two pass instead.
    std::this_thread::sleep_for(30ms);

    int second = -1;
    for (int attempt = 0; attempt < 50 && second != first; ++attempt) {
        std::ofstream lastPid("/proc/sys/kernel/ns_last_pid");
        if (!lastPid)
            GTEST_SKIP() << "cannot choose the next pid here";
        lastPid << first - 1;
        lastPid.close();
        if (!lastPid)
            GTEST_SKIP() << "cannot choose the next pid here";
        second = apps.startTestWindow("reuse-second");
        if (second != first)
            testbed::kill(second);
    }
    if (second != first)
        GTEST_SKIP() << "another process took the pid each time";
    ASSERT_TRUE(waitForWindowTitled("reuse-second"));
    const auto secondStat = linuxdesktop::readProcStat(second);
    ASSERT_TRUE(secondStat);
    ASSERT_NE(secondStat->startTime, firstStat->startTime);

    EXPECT_FALSE(listedFirst->forceTerminate());
    EXPECT_TRUE(listedFirst->isTerminated());
    // The per-app command looks the pid up afresh and finds the newcomer's window.
    const RunningApplicationRef fresh = p.workspace.runningApplication(first);
    ASSERT_TRUE(fresh);
    EXPECT_FALSE(fresh->forceTerminate());
    EXPECT_FALSE(fresh->terminate());
    EXPECT_FALSE(minimizer.forceTerminateApp(first));
    EXPECT_FALSE(processGone(second));
    EXPECT_NE(waitForWindowTitled("reuse-second", 1s), 0u);

    // Once a listing shows the newcomer, a command meant for it goes through.
    const auto shownNow = minimizer.runningApps();
    ASSERT_TRUE(std::any_of(shownNow.begin(), shownNow.end(), [&](const RunningAppInfo& a) { return a.id == second; }));
    EXPECT_TRUE(minimizer.forceTerminateApp(second));
    EXPECT_TRUE(waitUntil([&] { return processGone(second); }));
}
