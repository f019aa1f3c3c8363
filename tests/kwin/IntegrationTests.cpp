// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The real AppModel and WindowMinimizer over the KWin backend, in a headless KWin session
// with native Wayland and Xwayland apps; every effect is checked from outside our code
// (KWin's own scripting, the apps' own reports, /proc).

#include "AppModel.h"
#include "KWinPlatform.h"
#include "KWinSession.h"
#include "PlasmaWindowManagement.h"
#include "TestBed.h"
#include "WaylandConnection.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <set>

using namespace std::chrono_literals;
using namespace stowly;
namespace tb = stowly::testbed;
using stowly::kwintest::ScriptedWindow;
using stowly::kwintest::sharedSession;

namespace {

std::optional<ScriptedWindow> seen(const std::string& caption)
{
    return sharedSession().scriptedWindow(caption);
}

bool minimizedInKWin(const std::string& caption)
{
    const auto window = seen(caption);
    return window && window->minimized;
}

// Six regular apps (four native Qt, one native GTK, one Xwayland) with six standard windows, a
// dialog, a window that refuses to close, and a skip-taskbar accessory; and the Xwayland server,
// which no bulk action may touch.
struct Desk {
    int a = 0, b = 0, withDialog = 0, stubborn = 0, gtk = 0, term = 0, accessory = 0;
    int xwayland = 0;

    bool start()
    {
        stowly::kwintest::KWinSession& s = sharedSession();
        a = s.startNative("kdesk-a");
        b = s.startNative("kdesk-b");
        withDialog = s.startNative("kdesk-main", {"--dialog"});
        stubborn = s.startNative("kdesk-stubborn", {"--refuse-close"});
        gtk = s.startGtk("kdesk-gtk");
        term = s.startXterm("kdesk-term");
        accessory =
            s.startX11TestWindow("kdesk-accessory", {"--skip-taskbar", "--class", "kdeskaccessory", "KDeskAccessory"});
        return tb::waitUntil(
            [&] {
                std::set<std::string> captions;
                for (const ScriptedWindow& w : s.scriptedWindows())
                    captions.insert(w.caption);
                for (const char* c : {"kdesk-a", "kdesk-b", "kdesk-main", "kdesk-main dialog", "kdesk-stubborn",
                                      "kdesk-gtk", "kdesk-term", "kdesk-accessory"}) {
                    if (captions.count(c) == 0)
                        return false;
                }
                xwayland = s.xwaylandPid();
                return xwayland > 0;
            },
            20s);
    }
    // No clean-up of its own: after each test the session ends what the test started and waits
    // until KWin has let go of their windows (see main.cpp).
    std::vector<int> managedPids() const { return {a, b, withDialog, stubborn, gtk, term}; }
    static std::vector<std::string> standardCaptions()
    {
        return {"kdesk-a", "kdesk-b", "kdesk-main", "kdesk-stubborn", "kdesk-gtk", "kdesk-term"};
    }
    // What must outlive every bulk action: the compositor, its Xwayland and the accessory.
    void expectBystandersAlive() const
    {
        EXPECT_FALSE(tb::processGone(sharedSession().kwinPid()));
        // Xwayland is KWin's child, not ours: read its state from /proc. The same pid must still
        // be KWin's Xwayland (KWin would start a new one after a crash).
        const std::string stat = tb::readText("/proc/" + std::to_string(xwayland) + "/stat");
        const auto paren = stat.rfind(')');
        EXPECT_TRUE(paren != std::string::npos && paren + 2 < stat.size() && stat[paren + 2] != 'Z')
            << "Xwayland " << xwayland;
        EXPECT_EQ(sharedSession().xwaylandPid(), xwayland);
        EXPECT_FALSE(tb::processGone(accessory));
    }
};

class KWinIntegration : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
        ASSERT_TRUE(desk.start()) << "the test apps did not all appear";
    }
    Desk desk;
};

TEST_F(KWinIntegration, MinimizeAllMinimizesStandardWindowsOnly)
{
    kwin::KWinPlatform kwin;
    AppModel model(kwin.platform());
    EXPECT_TRUE(model.hasAccessibilityPermission());
    model.minimizeAllWindows();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Minimized 6 windows."));
    for (const std::string& caption : Desk::standardCaptions())
        EXPECT_TRUE(tb::waitUntil([&] { return minimizedInKWin(caption); })) << caption;
    EXPECT_FALSE(minimizedInKWin("kdesk-accessory"));
    // Minimized apps still read "Open": only a hide marks them.
    model.refreshRunningApps();
    for (const RunningAppInfo& app : model.runningApps())
        EXPECT_NE(app.status(), QStringLiteral("Hidden")) << app.name.toStdString();

    model.minimizeAllWindows();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("No minimizable windows were found."));
    desk.expectBystandersAlive();
}

TEST_F(KWinIntegration, HideAllThenOpenOneBringsItBackActive)
{
    kwin::KWinPlatform kwin;
    AppModel model(kwin.platform());
    model.hideAllApps();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Hid 6 apps."));
    for (const std::string& caption : Desk::standardCaptions())
        EXPECT_TRUE(tb::waitUntil([&] { return minimizedInKWin(caption); })) << caption;
    EXPECT_FALSE(minimizedInKWin("kdesk-accessory"));
    EXPECT_TRUE(tb::waitUntil([&] {
        model.refreshRunningApps();
        return model.runningApps().size() == 6 &&
               std::all_of(model.runningApps().begin(), model.runningApps().end(),
                           [](const RunningAppInfo& a) { return a.status() == QStringLiteral("Hidden"); });
    }));
    model.hideAllApps();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("No apps could be hidden."));
    desk.expectBystandersAlive();

    const auto row = std::find_if(model.runningApps().begin(), model.runningApps().end(),
                                  [&](const RunningAppInfo& a) { return a.id == desk.term; });
    ASSERT_NE(row, model.runningApps().end());
    const RunningAppInfo chosen = *row;
    model.openApp(chosen);
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Opened %1.").arg(chosen.name));
    EXPECT_TRUE(tb::waitUntil([&] {
        const auto term = seen("kdesk-term");
        return term && !term->minimized && term->active;
    }));
    EXPECT_TRUE(minimizedInKWin("kdesk-a"));
    EXPECT_TRUE(tb::waitUntil([&] {
        model.refreshRunningApps();
        for (const RunningAppInfo& a : model.runningApps()) {
            if (a.id == desk.term)
                return a.status() == QStringLiteral("Active");
        }
        return false;
    }));
}

TEST_F(KWinIntegration, CloseAllAsksAndKillsNothing)
{
    kwin::KWinPlatform kwin;
    AppModel model(kwin.platform());
    model.closeAllWindows();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Closed 6 windows."));
    for (const int pid : {desk.a, desk.b, desk.gtk, desk.term})
        EXPECT_TRUE(tb::waitUntil([&] { return tb::processGone(pid); }))
            << pid << "\n"
            << tb::readText(sharedSession().root() + "/apps.log");
    // GTK closed its window on the compositor's request, it was not signalled.
    EXPECT_NE(tb::readText(sharedSession().root() + "/apps.log").find("gtk window kdesk-gtk: closed on request"),
              std::string::npos);
    EXPECT_TRUE(tb::waitUntil([] { return !seen("kdesk-main").has_value(); }));
    // The window that refuses is still there, and nothing was killed.
    EXPECT_TRUE(seen("kdesk-stubborn").has_value());
    EXPECT_FALSE(tb::processGone(desk.stubborn));
    desk.expectBystandersAlive();
}

TEST_F(KWinIntegration, ForceQuitAllSparesTheCompositorTheAccessoryAndItself)
{
    kwin::KWinPlatform kwin;
    AppModel model(kwin.platform());
    for (const RunningAppInfo& app : model.runningApps())
        EXPECT_NE(app.id, static_cast<int>(getpid()));
    model.forceQuitAllApps();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Force quit sent to 6 apps."));
    for (const int pid : desk.managedPids())
        EXPECT_TRUE(tb::waitUntil([&] { return tb::processGone(pid); }))
            << pid << "\n"
            << tb::readText(sharedSession().root() + "/apps.log");
    desk.expectBystandersAlive();
    EXPECT_TRUE(tb::waitUntil([&] {
        model.refreshRunningApps();
        return model.runningApps().empty();
    }));
}

TEST_F(KWinIntegration, TheListHasEveryRegularAppOnceWithItsMemory)
{
    kwin::KWinPlatform kwin;
    AppModel model(kwin.platform());
    model.refreshSnapshot();
    std::set<int> listed;
    for (const RunningAppInfo& app : model.runningApps()) {
        EXPECT_TRUE(listed.insert(app.id).second) << "listed twice: " << app.id;
        EXPECT_FALSE(app.name.isEmpty()) << app.id;
        // Native windows carry the app id that names their desktop entry.
        if (app.id == desk.gtk) {
            EXPECT_EQ(app.name, QStringLiteral("GTK Test Window"));
        } else if (app.id != desk.term) {
            EXPECT_EQ(app.name, QStringLiteral("Wayland Test Window")) << app.id;
        }
    }
    const std::vector<int> managed = desk.managedPids();
    EXPECT_EQ(listed, std::set<int>(managed.begin(), managed.end()));

    // xterm and its shell child, summed the same way by an independent reading of /proc;
    // the list also counts every other process of that name (the name rule for app memory),
    // should another xterm run on this machine.
    const auto row = std::find_if(model.runningApps().begin(), model.runningApps().end(),
                                  [&](const RunningAppInfo& a) { return a.id == desk.term; });
    ASSERT_NE(row, model.runningApps().end());
    ASSERT_TRUE(row->memoryBytes.has_value());
    std::uint64_t expected = tb::footprintOf(desk.term).value_or(0);
    for (const int pid : tb::allProcesses()) {
        if (pid == desk.term)
            continue;
        if (tb::parentOf(pid) == desk.term || tb::readText("/proc/" + std::to_string(pid) + "/comm") == "xterm\n")
            expected += tb::footprintOf(pid).value_or(0);
    }
    const double ratio = static_cast<double>(*row->memoryBytes) / static_cast<double>(expected);
    EXPECT_NEAR(ratio, 1.0, 0.10) << *row->memoryBytes << " vs " << expected;
}

} // namespace
