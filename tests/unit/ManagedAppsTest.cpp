// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TestSupport.h"
#include "WindowMinimizer.h"

#include <gtest/gtest.h>

#include <limits>

namespace stowly {
namespace {

using testing::q;

class ManagedApps : public ::testing::Test {
protected:
    fakes::FakeWorkspace workspace;
    fakes::FakeAccessibility accessibility;
    fakes::FakeProcessTable processTable;
    WindowMinimizer minimizer{workspace, accessibility, processTable};

    // A regular app whose one process (named like the app) uses `memory` bytes.
    fakes::FakeAppRef appUsing(std::int32_t pid, std::optional<std::string> name, std::uint64_t memory)
    {
        auto app = workspace.addApp(pid, name);
        processTable.add(pid, name ? QString::fromStdString(*name).toLower().toStdString() : "proc", memory);
        return app;
    }

    std::vector<std::int32_t> managedPids()
    {
        std::vector<std::int32_t> pids;
        for (const auto& app : minimizer.managedApps())
            pids.push_back(app->processIdentifier());
        return pids;
    }

    std::vector<QString> listedNames()
    {
        std::vector<QString> names;
        for (const auto& info : minimizer.runningApps())
            names.push_back(info.name);
        return names;
    }
};

TEST_F(ManagedApps, OwnProcessIsNeverListedHiddenOrForceQuitEvenWhenRegular)
{
    auto self = workspace.addApp(workspace.ownPid, "Stowly", ActivationPolicy::regular);
    auto other = workspace.addApp(10, "Notes");
    EXPECT_EQ(managedPids(), std::vector<std::int32_t>{10});
    EXPECT_EQ(listedNames(), std::vector<QString>{q("Notes")});
    EXPECT_EQ(minimizer.hideAllApps(), 1);
    EXPECT_EQ(minimizer.forceTerminateAllApps(), 1);
    EXPECT_EQ(self->hideCalls, 0);
    EXPECT_EQ(self->forceTerminateCalls, 0);
    EXPECT_EQ(other->hideCalls, 1);
}

TEST_F(ManagedApps, AccessoryAndProhibitedAppsAreNeverListedOrActedOnInBulk)
{
    auto menuExtra = workspace.addApp(20, "Menu Extra", ActivationPolicy::accessory);
    auto agent = workspace.addApp(21, "Agent", ActivationPolicy::prohibited);
    EXPECT_TRUE(minimizer.runningApps().empty());
    EXPECT_TRUE(minimizer.managedApps().empty());
    EXPECT_EQ(minimizer.hideAllApps(), 0);
    EXPECT_EQ(minimizer.forceTerminateAllApps(), 0);
    EXPECT_TRUE(workspace.requestLog.empty());
}

TEST_F(ManagedApps, TerminateAndForceTerminateReachAccessoryAppsByPid)
{
    auto menuExtra = workspace.addApp(20, "Menu Extra", ActivationPolicy::accessory);
    auto agent = workspace.addApp(21, "Agent", ActivationPolicy::prohibited);
    EXPECT_TRUE(minimizer.terminateApp(20));
    EXPECT_TRUE(minimizer.forceTerminateApp(21));
    EXPECT_EQ(workspace.requestLog, (std::vector<std::string>{"terminate:20", "forceTerminate:21"}));
}

TEST_F(ManagedApps, TerminatedAppsAreNotManaged)
{
    workspace.addApp(10, "Notes")->terminated = true;
    workspace.addApp(11, "Mail");
    EXPECT_EQ(managedPids(), std::vector<std::int32_t>{11});
}

TEST_F(ManagedApps, NamelessAppSortsFirstInManagedApps)
{
    workspace.addApp(10, "Badger");
    workspace.addApp(11, std::nullopt);
    workspace.addApp(12, "Zebra");
    EXPECT_EQ(managedPids(), (std::vector<std::int32_t>{11, 10, 12}));
}

TEST_F(ManagedApps, NamelessAppIsListedAsUnknownAppAndTiesBreakByThatText)
{
    appUsing(10, "Zebra", 4096);
    appUsing(11, std::nullopt, 4096);
    appUsing(12, "Badger", 4096);
    appUsing(13, "Vole", 4096);
    EXPECT_EQ(listedNames(), (std::vector<QString>{q("Badger"), q("Unknown App"), q("Vole"), q("Zebra")}));
}

TEST_F(ManagedApps, AlphaAndZetaWithEqualMemoryListAlphaFirstButManageZetaFirst)
{
    appUsing(10, "alpha", 8192);
    appUsing(11, "Zeta", 8192);
    EXPECT_EQ(listedNames(), (std::vector<QString>{q("alpha"), q("Zeta")}));
    EXPECT_EQ(managedPids(), (std::vector<std::int32_t>{11, 10}));
}

TEST_F(ManagedApps, ManagedAppsSortCaseSensitivelyUppercaseFirst)
{
    workspace.addApp(10, "beta");
    workspace.addApp(11, "Gamma");
    workspace.addApp(12, "alpha");
    workspace.addApp(13, "Beta");
    EXPECT_EQ(managedPids(), (std::vector<std::int32_t>{13, 11, 12, 10}));
}

TEST_F(ManagedApps, ManagedAppsCompareCanonicallyEquivalentNamesAlike)
{
    // "Cafe" + combining acute is "Café" (U+00E9), which sorts after "Cafez" by scalar value;
    // compared raw, the decomposed form would come first.
    workspace.addApp(10, std::string("Cafe\xcc\x81"));
    workspace.addApp(11, "Cafez");
    EXPECT_EQ(managedPids(), (std::vector<std::int32_t>{11, 10}));
}

TEST_F(ManagedApps, LargestMemoryIsListedFirst)
{
    appUsing(10, "Small", 1024);
    appUsing(11, "Large", 10 * 1024 * 1024);
    appUsing(12, "Medium", 512 * 1024);
    EXPECT_EQ(listedNames(), (std::vector<QString>{q("Large"), q("Medium"), q("Small")}));
}

TEST_F(ManagedApps, AbsentMemoryIsPlacedAfterEveryPositiveFigure)
{
    appUsing(10, "Alpha", 0);     // sums to 0: absent
    workspace.addApp(11, "Beta"); // no process at all: absent
    appUsing(12, "Zulu", 1);
    appUsing(13, "Yak", 2048);
    const auto apps = minimizer.runningApps();
    ASSERT_EQ(apps.size(), 4u);
    EXPECT_EQ(apps[0].name, q("Yak"));
    EXPECT_EQ(apps[1].name, q("Zulu"));
    EXPECT_EQ(apps[2].name, q("Alpha"));
    EXPECT_EQ(apps[3].name, q("Beta"));
    EXPECT_EQ(apps[2].memoryBytes, std::nullopt);
    EXPECT_EQ(apps[3].memoryBytes, std::nullopt);
}

TEST_F(ManagedApps, AnAppWithNoFigureTiesWithOneAtZeroAndNamesDecide)
{
    // pid 10's only process has another name and measures 0 (resident size 0): 0 bytes.
    // pid 11 has no process at all: no figure. Both count as 0, so the name decides,
    // whichever of the two holds the earlier name.
    workspace.addApp(10, "Beta");
    processTable.add(10, "unrelated", 0);
    workspace.addApp(11, "alpha");
    appUsing(12, "Zulu", 1);
    auto apps = minimizer.runningApps();
    ASSERT_EQ(apps.size(), 3u);
    EXPECT_EQ(apps[0].name, q("Zulu"));
    EXPECT_EQ(apps[1].name, q("alpha"));
    EXPECT_EQ(apps[1].memoryBytes, std::nullopt);
    EXPECT_EQ(apps[2].name, q("Beta"));
    EXPECT_EQ(apps[2].memoryBytes, std::optional<std::uint64_t>(0));

    workspace.apps.clear();
    processTable.processes.clear();
    workspace.addApp(10, "alpha");
    processTable.add(10, "unrelated", 0);
    workspace.addApp(11, "Beta");
    apps = minimizer.runningApps();
    ASSERT_EQ(apps.size(), 2u);
    EXPECT_EQ(apps[0].name, q("alpha"));
    EXPECT_EQ(apps[0].memoryBytes, std::optional<std::uint64_t>(0));
    EXPECT_EQ(apps[1].name, q("Beta"));
    EXPECT_EQ(apps[1].memoryBytes, std::nullopt);
}

TEST_F(ManagedApps, GroupsAndOrdersOverTwelveHundredApps)
{
    // Each app: its own process plus a helper; every fifth pair of apps shares a figure.
    constexpr int kApps = 1200;
    for (int i = 0; i < kApps; ++i) {
        const std::int32_t pid = 10000 + 2 * i;
        const std::string name = (i % 2 ? "app " : "App ") + std::to_string(100000 + i);
        workspace.addApp(pid, name);
        const std::uint64_t own = std::uint64_t(i / 2) * 4096;
        processTable.add(pid, QString::fromStdString(name).toLower().toStdString(), own + 1);
        processTable.add(pid + 1, QString::fromStdString(name).toLower().toStdString() + " helper", 511);
    }
    const auto apps = minimizer.runningApps();
    ASSERT_EQ(apps.size(), std::size_t(kApps));
    for (std::size_t k = 0; k < apps.size(); ++k) {
        // Largest first; within a pair of equal figures the smaller number (name) first.
        const int i = kApps - 2 - 2 * int(k / 2) + int(k % 2);
        EXPECT_EQ(apps[k].id, 10000 + 2 * i) << k;
        EXPECT_EQ(apps[k].memoryBytes, std::optional<std::uint64_t>(std::uint64_t(i / 2) * 4096 + 512)) << k;
    }
    EXPECT_EQ(minimizer.managedApps().size(), std::size_t(kApps));
}

TEST(ManagedAppsDeathTest, MemorySumBeyondSixtyFourBitsIsAProgrammingError)
{
    fakes::FakeWorkspace workspace;
    fakes::FakeAccessibility accessibility;
    fakes::FakeProcessTable processTable;
    WindowMinimizer minimizer{workspace, accessibility, processTable};
    workspace.addApp(10, "Big");
    const std::uint64_t half = std::numeric_limits<std::uint64_t>::max() / 2 + 1;
    processTable.add(10, "big", half);
    processTable.add(11, "big helper", half - 1);
    // One byte short of wrapping: the exact sum is kept.
    EXPECT_EQ(minimizer.runningApps().at(0).memoryBytes,
              std::optional<std::uint64_t>(std::numeric_limits<std::uint64_t>::max()));
    processTable.add(11, "big helper", half);
    EXPECT_DEATH((void)minimizer.runningApps(), "");
}

TEST_F(ManagedApps, RecordsCarryTheAppsStateAndMemory)
{
    auto icon = std::make_shared<AppIcon>(AppIcon{1, 1, {0xff00ff00u}});
    auto app = appUsing(10, "Notes", 3 * 1024 * 1024);
    app->iconImage = icon;
    app->hidden = true;
    app->active = true;
    auto plain = workspace.addApp(11, "Mail");
    const auto apps = minimizer.runningApps();
    ASSERT_EQ(apps.size(), 2u);
    EXPECT_EQ(apps[0].id, 10);
    EXPECT_EQ(apps[0].name, q("Notes"));
    EXPECT_EQ(apps[0].icon, icon);
    EXPECT_TRUE(apps[0].isHidden);
    EXPECT_TRUE(apps[0].isActive);
    EXPECT_EQ(apps[0].memoryBytes, std::optional<std::uint64_t>(3 * 1024 * 1024));
    EXPECT_EQ(apps[1].icon, nullptr);
    EXPECT_FALSE(apps[1].isHidden);
    EXPECT_FALSE(apps[1].isActive);
}

TEST_F(ManagedApps, HideAllWithEveryAppHiddenReturnsZeroAndSendsNothing)
{
    workspace.addApp(10, "Notes")->hidden = true;
    workspace.addApp(11, "Mail")->hidden = true;
    EXPECT_EQ(minimizer.hideAllApps(), 0);
    EXPECT_TRUE(workspace.requestLog.empty());
}

TEST_F(ManagedApps, HideAllCountsAnAppThatRefusedToHide)
{
    workspace.addApp(10, "Notes")->hideAnswer = false;
    workspace.addApp(11, "Mail");
    EXPECT_EQ(minimizer.hideAllApps(), 2);
}

TEST_F(ManagedApps, HideAllAsksVisibleAppsInNameOrder)
{
    workspace.addApp(10, "Notes");
    workspace.addApp(11, "Mail")->hidden = true;
    workspace.addApp(12, "Calendar");
    EXPECT_EQ(minimizer.hideAllApps(), 2);
    EXPECT_EQ(workspace.requestLog, (std::vector<std::string>{"hide:12", "hide:10"}));
}

TEST_F(ManagedApps, ForceTerminateAllSendsToEveryAppInNameOrderWhateverTheAnswers)
{
    workspace.addApp(10, "Notes")->forceTerminateAnswer = false;
    workspace.addApp(11, "Mail")->hidden = true;
    workspace.addApp(12, "Calendar")->forceTerminateAnswer = false;
    EXPECT_EQ(minimizer.forceTerminateAllApps(), 3);
    EXPECT_EQ(workspace.requestLog,
              (std::vector<std::string>{"forceTerminate:12", "forceTerminate:11", "forceTerminate:10"}));
}

TEST_F(ManagedApps, OpenAppForAPidThatIsNotRunningReturnsFalseAndActivatesNothing)
{
    auto notes = workspace.addApp(10, "Notes");
    EXPECT_FALSE(minimizer.openApp(999));
    EXPECT_TRUE(notes->activateCalls.empty());
    EXPECT_TRUE(workspace.requestLog.empty());
}

TEST_F(ManagedApps, OpenAppActivatesAllWindowsIgnoringOtherApps)
{
    auto notes = workspace.addApp(10, "Notes");
    EXPECT_TRUE(minimizer.openApp(10));
    EXPECT_EQ(notes->activateCalls, std::vector<unsigned>{3u});
    notes->activateAnswer = false;
    EXPECT_FALSE(minimizer.openApp(10));
}

TEST_F(ManagedApps, OpenTerminateAndForceTerminateOfATerminatedAppReturnFalse)
{
    auto notes = workspace.addApp(10, "Notes");
    notes->terminated = true;
    EXPECT_FALSE(minimizer.openApp(10));
    EXPECT_FALSE(minimizer.terminateApp(10));
    EXPECT_FALSE(minimizer.forceTerminateApp(10));
    EXPECT_TRUE(workspace.requestLog.empty());
}

TEST_F(ManagedApps, RunningApplicationSkipsATerminatedEntryWithTheSamePid)
{
    workspace.addApp(10, "Old Notes")->terminated = true;
    auto fresh = workspace.addApp(10, "Notes");
    const auto found = minimizer.runningApplication(10);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->localizedName(), std::optional<std::string>("Notes"));
    EXPECT_TRUE(minimizer.terminateApp(10));
    EXPECT_EQ(fresh->terminateCalls, 1);
}

TEST_F(ManagedApps, TerminateAndForceTerminateReturnTheAppsAnswer)
{
    auto notes = workspace.addApp(10, "Notes");
    notes->terminateAnswer = false;
    EXPECT_FALSE(minimizer.terminateApp(10));
    EXPECT_TRUE(minimizer.forceTerminateApp(10));
    notes->forceTerminateAnswer = false;
    EXPECT_FALSE(minimizer.forceTerminateApp(10));
    EXPECT_EQ(notes->terminateCalls, 1);
    EXPECT_EQ(notes->forceTerminateCalls, 2);
}

} // namespace
} // namespace stowly
