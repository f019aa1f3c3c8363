// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The window system chosen at start-up, made in this process under each kind of session, and
// what its access settings say about the windows out of reach: only a Wayland compositor
// without window management (here sway) leaves any.

#include "KWinSession.h"
#include "LinuxSession.h"
#include "SwaySession.h"
#include "TestBed.h"

#include <gtest/gtest.h>

#include <stdlib.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

using namespace std::chrono_literals;
using namespace stowly;
namespace tb = stowly::testbed;
using stowly::kwintest::sharedSession;

namespace {

// Sets the session's variables for one scope, and puts the previous values back.
class SessionVariables {
public:
    SessionVariables(const std::optional<std::string>& wayland, const std::optional<std::string>& x11)
    {
        set("WAYLAND_DISPLAY", wayland);
        set("DISPLAY", x11);
        set("XDG_SESSION_TYPE", wayland ? std::optional<std::string>("wayland") : std::optional<std::string>("x11"));
    }
    ~SessionVariables()
    {
        for (const auto& [name, value] : m_saved) {
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
        }
    }
    SessionVariables(const SessionVariables&) = delete;
    SessionVariables& operator=(const SessionVariables&) = delete;

private:
    void set(const std::string& name, const std::optional<std::string>& value)
    {
        const char* old = std::getenv(name.c_str());
        m_saved.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
        if (value)
            setenv(name.c_str(), value->c_str(), 1);
        else
            unsetenv(name.c_str());
    }
    std::vector<std::pair<std::string, std::optional<std::string>>> m_saved;
};

bool lists(Workspace& workspace, int pid)
{
    const auto apps = workspace.runningApplications();
    return std::any_of(apps.begin(), apps.end(), [&](const RunningApplicationRef& app) {
        return app && app->processIdentifier() == pid && !app->isTerminated();
    });
}

TEST(FallbackSession, OnAWaylandCompositorWithoutWindowManagementOnlyXwaylandAppsAreReachedAndAccessSaysSo)
{
    // sway refuses to run as root, and the test bed runs it in a user namespace; a kernel
    // or sandbox that gives none leaves nothing to test here.
    if (std::system("unshare --user --map-user=1000 --map-group=1000 true >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "no user namespaces on this machine: sway cannot run here";
    kwintest::SwaySession sway(STOWLY_TEST_BUILD_DIR);
    ASSERT_TRUE(sway.ok()) << sway.error();
    setenv("DISPLAY", sway.x11Display().c_str(), 1);
    const int xterm = tb::spawn({"xterm", "-T", "sway-xterm", "-e", "sleep", "100000"});
    unsetenv("DISPLAY");

    {
        SessionVariables variables(sway.socketPath(), sway.x11Display());
        LinuxSession session;
        EXPECT_EQ(session.windowSystem(), LinuxSession::WindowSystem::x11);
        EXPECT_TRUE(session.reachesWindowSystem());
        const std::optional<std::string> limitation = session.platform().accessSettings.limitation();
        ASSERT_TRUE(limitation.has_value());
        EXPECT_EQ(*limitation, "Only apps running through Xwayland can be listed and acted on: this Wayland desktop "
                               "does not let Stowly see its other windows.");
        // What it does reach, it reaches: the Xwayland app is listed.
        EXPECT_TRUE(tb::waitUntil([&] { return lists(session.platform().workspace, xterm); }, 10s));
    }
    tb::kill(xterm);
}

TEST(FallbackSession, OnKWinNothingIsOutOfReach)
{
    ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
    SessionVariables variables(sharedSession().socketName(), sharedSession().x11Display());
    LinuxSession session;
    EXPECT_EQ(session.windowSystem(), LinuxSession::WindowSystem::kwin);
    EXPECT_EQ(session.platform().accessSettings.limitation(), std::nullopt);
}

TEST(FallbackSession, OnX11NothingIsOutOfReach)
{
    ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
    SessionVariables variables(std::nullopt, sharedSession().x11Display());
    LinuxSession session;
    EXPECT_EQ(session.windowSystem(), LinuxSession::WindowSystem::x11);
    EXPECT_TRUE(session.reachesWindowSystem());
    EXPECT_EQ(session.platform().accessSettings.limitation(), std::nullopt);
}

} // namespace
