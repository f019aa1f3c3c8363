// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Which app reads as active while one of Stowly's own windows holds the focus. The test
// process stands in for Stowly: a window it owns is one of "our" windows. Every step is
// checked against _NET_ACTIVE_WINDOW as xprop reads it.

#include "BedTest.h"
#include "OwnWindow.h"
#include "TestBed.h"
#include "X11Platform.h"

#include <xcb/xcb.h>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

using namespace stowly;
using namespace stowly::testbed;

namespace stowly::testbed {
Display& sharedDisplay();
}

namespace {

// Pids of the listed apps that read as active.
std::vector<int> activePids(Workspace& workspace)
{
    std::vector<int> pids;
    for (const auto& app : workspace.runningApplications())
        if (app->isActive())
            pids.push_back(app->processIdentifier());
    return pids;
}

std::string hex(std::uint32_t window)
{
    std::ostringstream out;
    out << "0x" << std::hex << window;
    return out.str();
}

// Asks the window manager to activate a window, as a pager would (EWMH source 2).
void activate(std::uint32_t window)
{
    run("wmctrl -i -a " + hex(window) + " 2>/dev/null");
}

// Writes _NET_ACTIVE_WINDOW on the root ourselves, as a window manager that names no
// active window (None) or the root does when a focused window goes away.
void setActiveWindowProperty(std::uint32_t value, bool asRoot)
{
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    ASSERT_FALSE(xcb_connection_has_error(c));
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    const char name[] = "_NET_ACTIVE_WINDOW";
    xcb_intern_atom_reply_t* atom = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, std::strlen(name), name), nullptr);
    ASSERT_NE(atom, nullptr);
    const std::uint32_t data = asRoot ? screen->root : value;
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, screen->root, atom->atom, XCB_ATOM_WINDOW, 32, 1, &data);
    std::free(atom);
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); // processed before we go
    xcb_disconnect(c);
}

using ActiveApp = BedTest;

} // namespace

TEST_F(ActiveApp, OwnWindowNeverCountsAndTheAppActiveBeforeItStaysActive)
{
    const int terminal = apps.startXterm("active-term");
    const int other = apps.startTestWindow("active-other");
    const std::uint32_t terminalWindow = waitForWindowTitled("active-term");
    const std::uint32_t otherWindow = waitForWindowTitled("active-other");
    ASSERT_TRUE(terminalWindow && otherWindow);
    OwnWindow own("active-own");
    ASSERT_TRUE(waitForWindowTitled("active-own"));

    activate(terminalWindow);
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == terminalWindow; }));
    EXPECT_TRUE(waitUntil([&] { return activePids(p.workspace) == std::vector<int>{terminal}; }));

    // Our window takes the focus: the terminal still reads active, on every look.
    activate(own.window());
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == own.window(); }));
    for (int look = 0; look < 5; ++look)
        EXPECT_EQ(activePids(p.workspace), std::vector<int>{terminal}) << "look " << look;

    // The window manager names no window, or the root: still the terminal.
    setActiveWindowProperty(XCB_NONE, false);
    ASSERT_EQ(activeWindow(), 0u);
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{terminal});
    setActiveWindowProperty(XCB_NONE, true);
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{terminal});

    // A real change shows at once, and is what our window then keeps.
    activate(otherWindow);
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == otherWindow; }));
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{other});
    activate(own.window());
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == own.window(); }));
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{other});
}

TEST_F(ActiveApp, AKeptAppStopsBeingActiveWhenMinimizedHiddenOrGone)
{
    const int first = apps.startTestWindow("kept-first");
    const int second = apps.startXterm("kept-second");
    const std::uint32_t firstWindow = waitForWindowTitled("kept-first");
    const std::uint32_t secondWindow = waitForWindowTitled("kept-second");
    ASSERT_TRUE(firstWindow && secondWindow);
    OwnWindow own("kept-own");
    ASSERT_TRUE(waitForWindowTitled("kept-own"));

    // Minimized while our window is active: nobody is active.
    activate(firstWindow);
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == firstWindow; }));
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{first});
    activate(own.window());
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == own.window(); }));
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{first});
    run("xdotool windowminimize " + std::to_string(firstWindow));
    ASSERT_TRUE(waitUntil([&] { return isIconic(firstWindow); }));
    EXPECT_TRUE(waitUntil([&] { return activePids(p.workspace).empty(); }));

    // Hidden by us while our window is active.
    activate(secondWindow);
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == secondWindow; }));
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{second});
    activate(own.window());
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == own.window(); }));
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{second});
    for (const auto& app : p.workspace.runningApplications()) {
        if (app->processIdentifier() == second) {
            EXPECT_TRUE(app->hide());
        }
    }
    EXPECT_TRUE(waitUntil([&] { return activePids(p.workspace).empty(); }));

    // Gone: the process ended while our window was active.
    activate(firstWindow);
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == firstWindow; }));
    EXPECT_EQ(activePids(p.workspace), std::vector<int>{first});
    activate(own.window());
    ASSERT_TRUE(waitUntil([&] { return activeWindow() == own.window(); }));
    testbed::kill(first);
    EXPECT_TRUE(waitUntil([&] { return activePids(p.workspace).empty(); }));
}
