// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The program itself, started in the KWin session: which window system it picks and says.
#include "KWinSession.h"
#include "TestBed.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace std::chrono_literals;
namespace tb = stowly::testbed;
using stowly::kwintest::sharedSession;

namespace {

// Runs stowly (or a copy of it) in the session for a moment; what it printed.
std::string startupLog(const std::string& program, const std::string& name)
{
    const std::string log = sharedSession().root() + "/" + name + ".log";
    setenv("DISPLAY", sharedSession().x11Display().c_str(), 1);
    setenv("XDG_CURRENT_DESKTOP", "KDE", 1);
    const int pid = tb::spawn({program}, log);
    unsetenv("DISPLAY");
    unsetenv("XDG_CURRENT_DESKTOP");
    // Other lines may come first (the single-instance socket, say): wait for the choice itself.
    tb::waitUntil(
        [&] {
            const std::string text = tb::readText(log);
            return text.find("Wayland session on KWin") != std::string::npos ||
                   text.find("using X11 through Xwayland") != std::string::npos;
        },
        10s);
    const bool stillRunning = !tb::processGone(pid);
    tb::kill(pid);
    return tb::readText(log) + (stillRunning ? "" : "\n(exited early)");
}

TEST(SessionChoice, StowlyUsesKWinWhenItsEntryGrantsTheInterface)
{
    ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
    sharedSession().grant(STOWLY_PROGRAM_PATH);
    const std::string log = startupLog(STOWLY_PROGRAM_PATH, "granted");
    EXPECT_NE(log.find("Wayland session on KWin"), std::string::npos) << log;
    EXPECT_EQ(log.find("not granted"), std::string::npos) << log;
    EXPECT_EQ(log.find("exited early"), std::string::npos) << log;
}

TEST(SessionChoice, OnPlasmaWithoutTheGrantItStaysOnKWinAndSaysSo)
{
    ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
    const std::string copy = sharedSession().root() + "/stowly-unlisted";
    tb::run(std::string("cp '") + STOWLY_PROGRAM_PATH + "' '" + copy + "'");
    const std::string log = startupLog(copy, "ungranted");
    EXPECT_NE(log.find("Wayland session on KWin"), std::string::npos) << log;
    EXPECT_NE(log.find("not granted to this program yet"), std::string::npos) << log;
}

} // namespace
