// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "KWinPlatform.h"
#include "KWinSession.h"
#include "PlasmaWindowManagement.h"
#include "TestBed.h"
#include "WaylandConnection.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <memory>

using namespace std::chrono_literals;
namespace tb = stowly::testbed;
using stowly::kwin::PlasmaWindowInfo;
using stowly::kwin::PlasmaWindowManagement;
using stowly::kwin::WaylandConnection;
namespace WindowState = stowly::kwin::WindowState;
using stowly::kwintest::KWinSession;
using stowly::kwintest::ScriptedWindow;
using stowly::kwintest::sharedSession;
using namespace stowly;

namespace {

class KWinWindows : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
        management = std::make_unique<PlasmaWindowManagement>();
    }

    // The window whose title is `title`, once KWin has told us about it.
    std::optional<PlasmaWindowInfo> waitForWindow(const std::string& title, std::chrono::milliseconds deadline = 15s)
    {
        std::optional<PlasmaWindowInfo> found;
        tb::waitUntil(
            [&] {
                management->sync(500);
                for (const PlasmaWindowInfo& window : management->windows()) {
                    if (window.title == title)
                        found = window;
                }
                return found.has_value();
            },
            deadline);
        return found;
    }
    std::optional<PlasmaWindowInfo> current(const std::string& uuid)
    {
        management->sync(500);
        for (const PlasmaWindowInfo& window : management->windows()) {
            if (window.uuid == uuid)
                return window;
        }
        return std::nullopt;
    }
    static std::optional<ScriptedWindow> scripted(const std::string& caption)
    {
        return sharedSession().scriptedWindow(caption);
    }

    std::unique_ptr<PlasmaWindowManagement> management;
};

TEST_F(KWinWindows, GrantedToTheProgramItsDesktopEntryNames)
{
    EXPECT_TRUE(management->connection().isConnected());
    EXPECT_TRUE(management->isAdvertised());
    EXPECT_TRUE(management->isGranted());
    EXPECT_GE(management->boundVersion(), PlasmaWindowManagement::minimumVersion);
}

TEST_F(KWinWindows, NotOfferedToAProgramWithoutAnEntry)
{
    // Same bytes at another path: KWin matches the entry's Exec against the client's executable.
    const std::string copy = sharedSession().root() + "/unlisted-client";
    tb::run("cp /proc/" + std::to_string(getpid()) + "/exe '" + copy + "'");
    EXPECT_EQ(tb::run("'" + copy + "' --probe-grant"), "denied\n");
}

TEST_F(KWinWindows, ListsNativeAndXwaylandWindowsOnceWithTheirPids)
{
    const int native = sharedSession().startNative("kwin list native");
    const int xterm = sharedSession().startXterm("kwin list xterm");
    const auto nativeWindow = waitForWindow("kwin list native");
    const auto xtermWindow = waitForWindow("kwin list xterm");
    ASSERT_TRUE(nativeWindow);
    ASSERT_TRUE(xtermWindow);
    EXPECT_EQ(nativeWindow->pid, native);
    EXPECT_EQ(xtermWindow->pid, xterm);
    EXPECT_FALSE(nativeWindow->uuid.empty());
    EXPECT_NE(nativeWindow->uuid, xtermWindow->uuid);
    EXPECT_TRUE(nativeWindow->has(WindowState::closeable));
    EXPECT_TRUE(nativeWindow->has(WindowState::minimizable));
    EXPECT_FALSE(nativeWindow->isTransient());
    const auto windows = management->windows();
    EXPECT_EQ(std::count_if(windows.begin(), windows.end(),
                            [](const PlasmaWindowInfo& w) { return w.title == "kwin list xterm"; }),
              1);
    // KWin's own list agrees on the pids.
    const auto seenNative = scripted("kwin list native");
    const auto seenXterm = scripted("kwin list xterm");
    ASSERT_TRUE(seenNative);
    ASSERT_TRUE(seenXterm);
    EXPECT_EQ(seenNative->pid, native);
    EXPECT_EQ(seenXterm->pid, xterm);
    tb::kill(native);
    tb::kill(xterm);
}

TEST_F(KWinWindows, ADialogNamesItsParent)
{
    const int pid = sharedSession().startNative("kwin parent", {"--dialog"});
    const auto parent = waitForWindow("kwin parent");
    const auto dialog = waitForWindow("kwin parent dialog");
    ASSERT_TRUE(parent);
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->parentUuid, parent->uuid);
    EXPECT_FALSE(parent->isTransient());
    tb::kill(pid);
}

TEST_F(KWinWindows, MinimizeAndActivateAreAppliedByKWin)
{
    const int pid = sharedSession().startNative("kwin minimize");
    const auto window = waitForWindow("kwin minimize");
    ASSERT_TRUE(window);
    ASSERT_TRUE(management->setMinimized(window->uuid, true));
    EXPECT_TRUE(tb::waitUntil([&] {
        const auto now = current(window->uuid);
        return now && now->has(WindowState::minimized);
    }));
    auto seen = scripted("kwin minimize");
    ASSERT_TRUE(seen);
    EXPECT_TRUE(seen->minimized);

    ASSERT_TRUE(management->activate(window->uuid));
    EXPECT_TRUE(tb::waitUntil([&] {
        const auto now = current(window->uuid);
        return now && !now->has(WindowState::minimized) && now->has(WindowState::active);
    }));
    seen = scripted("kwin minimize");
    ASSERT_TRUE(seen);
    EXPECT_FALSE(seen->minimized);
    EXPECT_TRUE(seen->active);
    tb::kill(pid);
}

TEST_F(KWinWindows, CloseAsksAndAWindowMayRefuse)
{
    const int polite = sharedSession().startNative("kwin close polite");
    const int stubborn = sharedSession().startNative("kwin close stubborn", {"--refuse-close"});
    const auto politeWindow = waitForWindow("kwin close polite");
    const auto stubbornWindow = waitForWindow("kwin close stubborn");
    ASSERT_TRUE(politeWindow);
    ASSERT_TRUE(stubbornWindow);
    ASSERT_TRUE(management->close(politeWindow->uuid));
    ASSERT_TRUE(management->close(stubbornWindow->uuid));
    // The polite app quits by itself when its last window closes; the other keeps its window.
    EXPECT_TRUE(tb::waitUntil([&] { return tb::reapIfExited(polite); }))
        << tb::readText(sharedSession().root() + "/apps.log");
    EXPECT_TRUE(tb::waitUntil([&] { return !current(politeWindow->uuid).has_value(); }));
    EXPECT_TRUE(current(stubbornWindow->uuid).has_value());
    EXPECT_FALSE(tb::processGone(stubborn));
    EXPECT_TRUE(tb::readText(sharedSession().root() + "/apps.log").find("refused close") != std::string::npos);
    tb::kill(stubborn);
}

TEST_F(KWinWindows, AWindowThatVanishesBeforeTheRequestIsHarmless)
{
    const int pid = sharedSession().startNative("kwin vanishing");
    const auto window = waitForWindow("kwin vanishing");
    ASSERT_TRUE(window);
    tb::kill(pid);
    // Our list may still hold it; the request goes to a window KWin has already dropped.
    management->setMinimized(window->uuid, true);
    management->close(window->uuid);
    EXPECT_TRUE(tb::waitUntil([&] { return !current(window->uuid).has_value(); }));
    EXPECT_TRUE(management->connection().isConnected());
    EXPECT_FALSE(management->setMinimized(window->uuid, true));
}

TEST_F(KWinWindows, QtsEventLoopDeliversChangesWithoutBeingAsked)
{
    QSignalSpy changed(management.get(), &PlasmaWindowManagement::windowsChanged);
    const int pid = sharedSession().startNative("kwin event loop");
    QEventLoop loop;
    QTimer::singleShot(15000, &loop, &QEventLoop::quit);
    QObject::connect(management.get(), &PlasmaWindowManagement::windowsChanged, &loop, [&] {
        for (const PlasmaWindowInfo& window : management->windows()) {
            if (window.title == "kwin event loop")
                loop.quit();
        }
    });
    loop.exec();
    EXPECT_GT(changed.count(), 0);
    const auto windows = management->windows();
    EXPECT_TRUE(std::any_of(windows.begin(), windows.end(),
                            [](const PlasmaWindowInfo& w) { return w.title == "kwin event loop"; }));
    tb::kill(pid);
}

} // namespace

namespace {

// An X11 window's own icon (_NET_WM_ICON, 16 and 48 pixels wide, through Xwayland) as KWin
// hands it out: read through get_icon without blocking, and shown for an app that has no
// desktop entry. (KWin 5.27 gives native Wayland windows only the icon of their desktop entry.)
TEST(KWinWindowIcons, AWindowsOwnIconIsReadAndUsedWhenTheDesktopEntryGivesNone)
{
    ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
    const int pid =
        sharedSession().startX11TestWindow("kwin icon", {"--icon", "48", "--class", "kwiniconapp", "KWinIconApp"});
    // The test window fills each icon with a colour made from its width.
    const std::uint32_t colour = 0xff000000u | (48u * 2654435761u);
    kwin::KWinPlatform kwin;
    PlasmaWindowManagement& management = kwin.windows();
    std::optional<PlasmaWindowInfo> window;
    // The icon arrives through the event loop, after the window itself.
    ASSERT_TRUE(tb::waitUntil(
        [&] {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
            for (const PlasmaWindowInfo& w : management.windows()) {
                if (w.title == "kwin icon" && w.icon)
                    window = w;
            }
            return window.has_value();
        },
        15s));
    EXPECT_EQ(window->pid, pid);
    ASSERT_EQ(window->icon->width, 48);
    ASSERT_EQ(window->icon->height, 48);
    ASSERT_EQ(window->icon->argb.size(), 48u * 48u);
    EXPECT_EQ(window->icon->argb.front(), colour);
    EXPECT_EQ(window->icon->argb[48 * 24 + 24], colour);

    // No desktop entry names this app: the listed app shows the window's own icon.
    const RunningApplicationRef app = kwin.platform().workspace.runningApplication(pid);
    ASSERT_TRUE(app);
    const AppIconRef icon = app->icon();
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->width, 48);
    EXPECT_EQ(icon->argb.back(), colour);
    tb::kill(pid);
}

} // namespace
