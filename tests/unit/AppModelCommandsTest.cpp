// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TestSupport.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace stowly {
namespace {

using testing::logEntriesStartingWith;
using testing::q;

class AppModelCommands : public testing::ModelTest {
protected:
    // A regular app with `count` standard windows labelled <name>1, <name>2, ...
    fakes::FakeAppRef appWithWindows(std::int32_t pid, const std::string& name, int count)
    {
        auto app = fakes.workspace.addApp(pid, name);
        fakes.accessibility.applicationElement(pid);
        for (int i = 1; i <= count; ++i)
            fakes.accessibility.addWindow(pid, name + std::to_string(i));
        return app;
    }

    AppModel& trustedModel()
    {
        fakes.trust.trusted = true;
        return makeModel();
    }

    RunningAppInfo row(std::int32_t pid, const char* name)
    {
        return RunningAppInfo{pid, q(name), nullptr, false, false, std::nullopt};
    }
};

// ---- Trust guard of the two window commands ---------------------------------------

TEST_F(AppModelCommands, UntrustedMinimizeRefusesWithoutRefreshing)
{
    appWithWindows(10, "Notes", 2);
    auto& m = makeModel();
    const int listings = fakes.workspace.runningApplicationsCalls;
    QSignalSpy appsSpy(&m, &AppModel::runningAppsChanged);
    m.minimizeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access is required before minimizing other apps' windows."));
    EXPECT_FALSE(m.hasAccessibilityPermission());
    EXPECT_EQ(fakes.workspace.runningApplicationsCalls, listings);
    EXPECT_EQ(appsSpy.count(), 0);
    EXPECT_TRUE(logEntriesStartingWith(fakes.accessibility.log, "set:").empty());
}

TEST_F(AppModelCommands, UntrustedCloseRefusesWithoutRefreshing)
{
    appWithWindows(10, "Notes", 2);
    auto& m = makeModel();
    const int listings = fakes.workspace.runningApplicationsCalls;
    m.closeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access is required before closing other apps' windows."));
    EXPECT_FALSE(m.hasAccessibilityPermission());
    EXPECT_EQ(fakes.workspace.runningApplicationsCalls, listings);
    EXPECT_TRUE(logEntriesStartingWith(fakes.accessibility.log, "perform:").empty());
}

TEST_F(AppModelCommands, TrustRevokedSinceLastCheckIsCaughtByTheFreshQuery)
{
    appWithWindows(10, "Notes", 1);
    auto& m = trustedModel();
    ASSERT_TRUE(m.hasAccessibilityPermission());
    fakes.trust.trusted = false;
    fakes.trust.prompts.clear();
    m.minimizeAllWindows();
    EXPECT_EQ(fakes.trust.prompts, std::vector<bool>{false});
    EXPECT_FALSE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access is required before minimizing other apps' windows."));
}

TEST_F(AppModelCommands, TrustGrantedSinceLastCheckSetsTheFlagAndActs)
{
    appWithWindows(10, "Notes", 1);
    auto& m = makeModel();
    ASSERT_FALSE(m.hasAccessibilityPermission());
    fakes.trust.trusted = true;
    m.minimizeAllWindows();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Minimized 1 window."));
}

TEST_F(AppModelCommands, UntrustedHideIsAttemptedAndReportsThreeApps)
{
    auto a = fakes.workspace.addApp(10, "Notes");
    auto b = fakes.workspace.addApp(11, "Mail");
    auto c = fakes.workspace.addApp(12, "Maps");
    auto& m = makeModel();
    fakes.trust.prompts.clear();
    m.hideAllApps();
    EXPECT_EQ(m.lastResultMessage(), q("Hid 3 apps."));
    EXPECT_EQ(a->hideCalls + b->hideCalls + c->hideCalls, 3);
    EXPECT_FALSE(m.hasAccessibilityPermission());
    EXPECT_TRUE(fakes.trust.prompts.empty()); // no trust check at all
}

TEST_F(AppModelCommands, UntrustedHideWithNothingToHideSaysNoAppsCouldBeHidden)
{
    auto& m = makeModel();
    m.hideAllApps();
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be hidden."));
    EXPECT_FALSE(m.hasAccessibilityPermission());
}

TEST_F(AppModelCommands, HideLeavesAGrantedFlagAloneAfterTrustIsLost)
{
    fakes.workspace.addApp(10, "Notes");
    auto& m = trustedModel();
    fakes.trust.trusted = false;
    QSignalSpy permissionSpy(&m, &AppModel::hasAccessibilityPermissionChanged);
    m.hideAllApps();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(permissionSpy.count(), 0);
    EXPECT_EQ(m.lastResultMessage(), q("Hid 1 app."));
}

TEST_F(AppModelCommands, UntrustedForceQuitIsAttempted)
{
    auto a = fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    m.forceQuitAllApps();
    EXPECT_EQ(a->forceTerminateCalls, 1);
    EXPECT_EQ(m.lastResultMessage(), q("Force quit sent to 1 app."));
    EXPECT_FALSE(m.hasAccessibilityPermission());
}

// ---- Counts and messages -----------------------------------------------------------

TEST_F(AppModelCommands, CloseCountOneSaysClosedOneWindow)
{
    appWithWindows(10, "Notes", 1);
    auto& m = trustedModel();
    m.closeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Closed 1 window."));
}

TEST_F(AppModelCommands, CloseCountTwoSaysClosedTwoWindows)
{
    appWithWindows(10, "Notes", 2);
    auto& m = trustedModel();
    m.closeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Closed 2 windows."));
}

TEST_F(AppModelCommands, CloseCountZeroSaysNoClosableWindows)
{
    fakes.workspace.addApp(10, "Notes");
    auto& m = trustedModel();
    m.closeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("No closable windows were found."));
}

TEST_F(AppModelCommands, MinimizeCountsOneTwelveAndZero)
{
    appWithWindows(10, "Notes", 1);
    auto& m = trustedModel();
    m.minimizeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Minimized 1 window."));
    m.minimizeAllWindows(); // everything is minimized now
    EXPECT_EQ(m.lastResultMessage(), q("No minimizable windows were found."));
    appWithWindows(11, "Mail", 12);
    m.minimizeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Minimized 12 windows."));
}

TEST_F(AppModelCommands, ForceQuitCountOneSaysForceQuitSentToOneApp)
{
    fakes.workspace.addApp(10, "Notes");
    auto& m = trustedModel();
    m.forceQuitAllApps();
    EXPECT_EQ(m.lastResultMessage(), q("Force quit sent to 1 app."));
}

TEST_F(AppModelCommands, ForceQuitCountsTwoAndZero)
{
    auto& m = trustedModel();
    m.forceQuitAllApps();
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be force quit."));
    fakes.workspace.addApp(10, "Notes")->forceTerminateAnswer = false;
    fakes.workspace.addApp(11, "Mail");
    m.forceQuitAllApps();
    EXPECT_EQ(m.lastResultMessage(), q("Force quit sent to 2 apps."));
}

TEST_F(AppModelCommands, HideCountOneSaysHidOneApp)
{
    fakes.workspace.addApp(10, "Notes");
    auto& m = trustedModel();
    m.hideAllApps();
    EXPECT_EQ(m.lastResultMessage(), q("Hid 1 app."));
}

TEST_F(AppModelCommands, BulkCommandsRefreshTheListLast)
{
    auto& m = trustedModel();
    fakes.workspace.addApp(10, "Notes"); // appears after construction
    m.forceQuitAllApps();
    ASSERT_EQ(m.runningApps().size(), 1u);
    EXPECT_EQ(m.runningApps()[0].name, q("Notes"));
}

TEST_F(AppModelCommands, MinimizeErrorIsShownUnchangedAndTheListStillRefreshed)
{
    appWithWindows(10, "Notes", 2);
    auto& m = trustedModel();
    auto& windows = std::get<AXElementList>(fakes.accessibility.applicationElement(10)->attributes["AXWindows"].value);
    std::static_pointer_cast<fakes::FakeElement>(windows[1])->setAnswers["AXMinimized"] = kAXErrorCannotComplete;
    fakes.workspace.addApp(11, "Mail");
    QSignalSpy appsSpy(&m, &AppModel::runningAppsChanged);
    m.minimizeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility call failed with code -25204."));
    EXPECT_EQ(appsSpy.count(), 1);
    EXPECT_EQ(m.runningApps().size(), 2u);
}

TEST_F(AppModelCommands, CloseErrorIsShownUnchanged)
{
    appWithWindows(10, "Notes", 1);
    auto& m = trustedModel();
    auto& windows = std::get<AXElementList>(fakes.accessibility.applicationElement(10)->attributes["AXWindows"].value);
    auto window = std::static_pointer_cast<fakes::FakeElement>(windows[0]);
    auto button =
        std::static_pointer_cast<fakes::FakeElement>(std::get<AXElementRef>(window->attributes["AXCloseButton"].value));
    button->actionAnswers["AXPress"] = kAXErrorInvalidUIElement;
    m.closeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility call failed with code -25202."));
}

// ---- Default action ----------------------------------------------------------------

TEST_F(AppModelCommands, StoredDefaultCloseWindowsStillClosesWhenDisabled)
{
    appWithWindows(10, "Notes", 1);
    fakes.preferences.values["defaultAction"] = "closeWindows";
    fakes.preferences.values["enabledActions"] = "minimize,hide";
    auto& m = trustedModel();
    m.performDefaultAction();
    EXPECT_EQ(m.lastResultMessage(), q("Closed 1 window."));
    EXPECT_EQ(logEntriesStartingWith(fakes.accessibility.log, "perform:"),
              std::vector<std::string>{"perform:Notes1.close:AXPress"});
}

TEST_F(AppModelCommands, AbsentDefaultPerformsMinimize)
{
    appWithWindows(10, "Notes", 1);
    auto& m = trustedModel();
    m.performDefaultAction();
    EXPECT_EQ(m.lastResultMessage(), q("Minimized 1 window."));
}

TEST_F(AppModelCommands, UnknownDefaultPerformsMinimize)
{
    appWithWindows(10, "Notes", 1);
    fakes.preferences.values["defaultAction"] = "ForceQuit";
    auto& m = trustedModel();
    m.performDefaultAction();
    EXPECT_EQ(m.lastResultMessage(), q("Minimized 1 window."));
}

TEST_F(AppModelCommands, DefaultHideAndForceQuitRunTheirCommands)
{
    auto notes = fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    fakes.preferences.values["defaultAction"] = "hide";
    m.performDefaultAction();
    EXPECT_EQ(m.lastResultMessage(), q("Hid 1 app."));
    fakes.preferences.values["defaultAction"] = "forceQuit";
    m.performDefaultAction();
    EXPECT_EQ(m.lastResultMessage(), q("Force quit sent to 1 app."));
    EXPECT_EQ(notes->hideCalls, 1);
    EXPECT_EQ(notes->forceTerminateCalls, 1);
}

// ---- Per-app commands ----------------------------------------------------------------

TEST_F(AppModelCommands, TerminateNotesThatRefusesSaysCouldNotClose)
{
    fakes.workspace.addApp(10, "Notes")->terminateAnswer = false;
    auto& m = makeModel();
    m.terminateApp(row(10, "Notes"));
    EXPECT_EQ(m.lastResultMessage(), q("Could not close Notes."));
}

TEST_F(AppModelCommands, TerminateAcceptedSaysRequestedNormalClose)
{
    auto notes = fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    m.terminateApp(row(10, "Notes"));
    EXPECT_EQ(notes->terminateCalls, 1);
    EXPECT_EQ(m.lastResultMessage(), q("Requested normal close for Notes."));
}

TEST_F(AppModelCommands, OpenSucceedsAndFails)
{
    fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    m.openApp(row(10, "Notes"));
    EXPECT_EQ(m.lastResultMessage(), q("Opened Notes."));
    m.openApp(row(99, "Ghost"));
    EXPECT_EQ(m.lastResultMessage(), q("Could not open Ghost."));
}

TEST_F(AppModelCommands, ForceTerminateSucceedsAndFails)
{
    auto notes = fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    m.forceTerminateApp(row(10, "Notes"));
    EXPECT_EQ(m.lastResultMessage(), q("Force quit sent to Notes."));
    notes->forceTerminateAnswer = false;
    m.forceTerminateApp(row(10, "Notes"));
    EXPECT_EQ(m.lastResultMessage(), q("Could not force quit Notes."));
}

TEST_F(AppModelCommands, PerAppMessagesUseTheRowNameUnchanged)
{
    fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    m.openApp(row(10, "  Nötes, v2 "));
    EXPECT_EQ(m.lastResultMessage(), q("Opened   Nötes, v2 ."));
}

TEST_F(AppModelCommands, PerAppCommandsNeverCheckTrustAndAlwaysRefresh)
{
    auto notes = fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    fakes.trust.prompts.clear();
    notes->terminated = true; // exits before the click lands
    QSignalSpy appsSpy(&m, &AppModel::runningAppsChanged);
    m.terminateApp(row(10, "Notes"));
    m.openApp(row(10, "Notes"));
    m.forceTerminateApp(row(10, "Notes"));
    EXPECT_EQ(m.lastResultMessage(), q("Could not force quit Notes."));
    EXPECT_TRUE(fakes.trust.prompts.empty());
    EXPECT_EQ(appsSpy.count(), 3);
    EXPECT_TRUE(m.runningApps().empty()); // the exited app is gone from the list
    EXPECT_EQ(notes->terminateCalls + notes->forceTerminateCalls, 0);
    EXPECT_TRUE(notes->activateCalls.empty());
}

} // namespace
} // namespace stowly
