// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// lastCommandSucceeded(): the flag that scripts read instead of parsing the sentence.

#include "TestSupport.h"

#include <gtest/gtest.h>

namespace stowly {
namespace {

using testing::q;

class AppModelCommandOutcome : public testing::ModelTest {
protected:
    void addAppWithWindows(std::int32_t pid, const std::string& name, int count)
    {
        fakes.workspace.addApp(pid, name);
        fakes.accessibility.applicationElement(pid);
        for (int i = 1; i <= count; ++i)
            fakes.accessibility.addWindow(pid, name + std::to_string(i));
    }

    AppModel& trustedModel()
    {
        fakes.trust.trusted = true;
        return makeModel();
    }

    static RunningAppInfo row(std::int32_t pid, const char* name)
    {
        return RunningAppInfo{pid, q(name), nullptr, false, false, std::nullopt};
    }

    void failMinimizingWindow(std::int32_t pid, std::size_t index)
    {
        auto& windows =
            std::get<AXElementList>(fakes.accessibility.applicationElement(pid)->attributes["AXWindows"].value);
        std::static_pointer_cast<fakes::FakeElement>(windows[index])->setAnswers["AXMinimized"] =
            kAXErrorCannotComplete;
    }
};

TEST_F(AppModelCommandOutcome, NoCommandYetCountsAsNotSucceeded)
{
    addAppWithWindows(10, "Notes", 1);
    EXPECT_FALSE(trustedModel().lastCommandSucceeded());
}

TEST_F(AppModelCommandOutcome, MinimizeSucceedsWithACountAndNotWithNone)
{
    addAppWithWindows(10, "Notes", 2);
    auto& m = trustedModel();
    m.minimizeAllWindows();
    EXPECT_TRUE(m.lastCommandSucceeded());
    m.minimizeAllWindows(); // nothing left to minimize
    EXPECT_EQ(m.lastResultMessage(), q("No minimizable windows were found."));
    EXPECT_FALSE(m.lastCommandSucceeded());
}

TEST_F(AppModelCommandOutcome, MissingAccessClearsAnEarlierSuccess)
{
    addAppWithWindows(10, "Notes", 1);
    auto& m = trustedModel();
    m.closeAllWindows();
    ASSERT_TRUE(m.lastCommandSucceeded());
    addAppWithWindows(11, "Mail", 1);
    fakes.trust.trusted = false;
    m.closeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access is required before closing other apps' windows."));
    EXPECT_FALSE(m.lastCommandSucceeded());
}

TEST_F(AppModelCommandOutcome, AnErrorPartWayIsNotASuccess)
{
    addAppWithWindows(10, "Notes", 2);
    failMinimizingWindow(10, 1); // the first window is minimized, the second fails
    auto& m = trustedModel();
    m.minimizeAllWindows();
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility call failed with code -25204."));
    EXPECT_FALSE(m.lastCommandSucceeded());
}

TEST_F(AppModelCommandOutcome, HideAndForceQuitFollowTheirCounts)
{
    auto& m = makeModel(); // neither needs access
    m.hideAllApps();
    EXPECT_FALSE(m.lastCommandSucceeded());
    m.forceQuitAllApps();
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be force quit."));
    EXPECT_FALSE(m.lastCommandSucceeded());
    fakes.workspace.addApp(10, "Notes");
    m.hideAllApps();
    EXPECT_TRUE(m.lastCommandSucceeded());
    m.forceQuitAllApps();
    EXPECT_EQ(m.lastResultMessage(), q("Force quit sent to 1 app."));
    EXPECT_TRUE(m.lastCommandSucceeded());
}

TEST_F(AppModelCommandOutcome, DefaultActionReportsThroughTheCommandItRuns)
{
    fakes.preferences.values["defaultAction"] = "hide";
    auto& m = makeModel();
    m.performDefaultAction();
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be hidden."));
    EXPECT_FALSE(m.lastCommandSucceeded());
    fakes.workspace.addApp(10, "Notes");
    m.performDefaultAction();
    EXPECT_TRUE(m.lastCommandSucceeded());
}

TEST_F(AppModelCommandOutcome, PerAppCommandsFollowThePlatformsAnswer)
{
    auto notes = fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    m.openApp(row(10, "Notes"));
    EXPECT_TRUE(m.lastCommandSucceeded());
    m.openApp(row(99, "Ghost"));
    EXPECT_FALSE(m.lastCommandSucceeded());
    m.terminateApp(row(10, "Notes"));
    EXPECT_TRUE(m.lastCommandSucceeded());
    notes->terminateAnswer = false;
    m.terminateApp(row(10, "Notes"));
    EXPECT_EQ(m.lastResultMessage(), q("Could not close Notes."));
    EXPECT_FALSE(m.lastCommandSucceeded());
    m.forceTerminateApp(row(10, "Notes"));
    EXPECT_TRUE(m.lastCommandSucceeded());
    notes->forceTerminateAnswer = false;
    m.forceTerminateApp(row(10, "Notes"));
    EXPECT_FALSE(m.lastCommandSucceeded());
}

TEST_F(AppModelCommandOutcome, TheFlagIsSetWhenTheSentenceIsAnnounced)
{
    auto notes = fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    std::vector<bool> seen;
    QObject::connect(&m, &AppModel::lastResultMessageChanged, &m, [&] { seen.push_back(m.lastCommandSucceeded()); });
    m.hideAllApps();
    notes->terminateAnswer = false;
    m.terminateApp(row(10, "Notes"));
    EXPECT_EQ(seen, (std::vector<bool>{true, false}));
}

} // namespace
} // namespace stowly
