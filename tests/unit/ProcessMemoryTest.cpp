// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TestSupport.h"
#include "WindowMinimizer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace stowly {
namespace {

using testing::q;

class ProcessMemory : public ::testing::Test {
protected:
    fakes::FakeWorkspace workspace;
    fakes::FakeAccessibility accessibility;
    fakes::FakeProcessTable processTable;
    WindowMinimizer minimizer{workspace, accessibility, processTable};

    // A process that belongs to an app without being it (a helper), as the platform reports it.
    void helperOf(std::int32_t pid, std::optional<std::string> bundleId)
    {
        auto owner = std::make_shared<fakes::FakeRunningApplication>(pid);
        owner->bundleId = std::move(bundleId);
        workspace.applicationOfProcess[pid] = owner;
    }

    std::optional<std::uint64_t> total(const fakes::FakeAppRef& app)
    {
        return minimizer.totalMemory(*app, minimizer.groupedProcessMemory());
    }

    std::vector<std::int32_t> recordPids()
    {
        std::vector<std::int32_t> pids;
        for (const auto& record : minimizer.groupedProcessMemory())
            pids.push_back(record.pid);
        return pids;
    }

    std::optional<ProcessMemoryRecord> recordOf(std::int32_t pid)
    {
        for (const auto& record : minimizer.groupedProcessMemory()) {
            if (record.pid == pid)
                return record;
        }
        return std::nullopt;
    }
};

// ---- Listing ---------------------------------------------------------------------------

TEST_F(ProcessMemory, ListingCountZeroGivesNoPidsAndAppsFallBackToOwnProcess)
{
    auto foo = workspace.addApp(10, "Foo");
    processTable.add(10, "foo", 5000);
    processTable.add(11, "foo helper", 7000);
    processTable.countAnswer = 0;
    EXPECT_TRUE(minimizer.allPIDs().empty());
    EXPECT_TRUE(minimizer.groupedProcessMemory().empty());
    const auto apps = minimizer.runningApps();
    ASSERT_EQ(apps.size(), 1u);
    EXPECT_EQ(apps[0].memoryBytes, std::optional<std::uint64_t>(5000));
}

TEST_F(ProcessMemory, ListingNegativeCountGivesNoPids)
{
    processTable.add(10, "foo", 5000);
    processTable.countAnswer = -1;
    EXPECT_TRUE(minimizer.allPIDs().empty());
}

TEST_F(ProcessMemory, FillingAnsweringZeroOrLessGivesNoPids)
{
    processTable.add(10, "foo", 5000);
    processTable.listAnswer = 0;
    EXPECT_TRUE(minimizer.allPIDs().empty());
    processTable.listAnswer = -3;
    EXPECT_TRUE(minimizer.allPIDs().empty());
}

TEST_F(ProcessMemory, IdentifierZeroInTheBufferIsDropped)
{
    processTable.order = {5, 0, 6};
    processTable.add(5, "a", 1);
    processTable.add(6, "b", 1);
    EXPECT_EQ(minimizer.allPIDs(), (std::vector<std::int32_t>{5, 6}));
}

TEST_F(ProcessMemory, NegativeIdentifiersAreDroppedToo)
{
    processTable.order = {-4, 7};
    EXPECT_EQ(minimizer.allPIDs(), std::vector<std::int32_t>{7});
}

TEST_F(ProcessMemory, PidsKeepTheListingOrder)
{
    processTable.order = {30, 10, 20};
    EXPECT_EQ(minimizer.allPIDs(), (std::vector<std::int32_t>{30, 10, 20}));
}

TEST_F(ProcessMemory, BufferHoldsExactlyTheCountedPids)
{
    processTable.order = {30, 10, 20};
    processTable.countAnswer = 2; // a process started between the two calls
    EXPECT_EQ(minimizer.allPIDs(), (std::vector<std::int32_t>{30, 10}));
}

// ---- Records ----------------------------------------------------------------------------

TEST_F(ProcessMemory, ProcessWithUnreadableNameIsLeftOutEvenWithReadableMemory)
{
    processTable.add(10, std::nullopt, 5000);
    processTable.add(11, "named", 10);
    EXPECT_EQ(minimizer.memoryUsage(10), std::optional<std::uint64_t>(5000));
    EXPECT_EQ(recordPids(), std::vector<std::int32_t>{11});
}

TEST_F(ProcessMemory, ProcessWithUnreadableMemoryIsLeftOut)
{
    auto& gone = processTable.add(10, "gone", 0);
    gone.rusageResult = -1;
    gone.taskInfoResult = 0;
    processTable.add(11, "here", 10);
    processTable.extraListedPids = {12}; // vanished between listing and sampling
    EXPECT_EQ(recordPids(), std::vector<std::int32_t>{11});
}

TEST_F(ProcessMemory, OwnProcessIsNotRecorded)
{
    processTable.add(workspace.ownPid, "stowly", 5000);
    processTable.add(11, "other", 10);
    EXPECT_EQ(recordPids(), std::vector<std::int32_t>{11});
}

TEST_F(ProcessMemory, RecordsFollowListingOrderWithTrimmedLowercasedNamesAndReportedBundle)
{
    processTable.order = {21, 20};
    processTable.add(20, "  Foo Helper (GPU)\n", 300);
    processTable.add(21, "Bar", 200);
    helperOf(20, "org.Example.Foo");
    const auto records = minimizer.groupedProcessMemory();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].pid, 21);
    EXPECT_EQ(records[0].normalizedName, q("bar"));
    EXPECT_EQ(records[0].bundleIdentifier, std::nullopt);
    EXPECT_EQ(records[0].memoryBytes, 200u);
    EXPECT_EQ(records[1].pid, 20);
    EXPECT_EQ(records[1].normalizedName, q("foo helper (gpu)"));
    EXPECT_EQ(records[1].bundleIdentifier, std::optional<QString>(q("org.Example.Foo")));
    EXPECT_EQ(records[1].memoryBytes, 300u);
}

// ---- Memory figure of one process ---------------------------------------------------------

TEST_F(ProcessMemory, FootprintIsPreferredOverResidentSize)
{
    processTable.add(10, "foo", 100).resident = 999;
    EXPECT_EQ(minimizer.memoryUsage(10), std::optional<std::uint64_t>(100));
}

TEST_F(ProcessMemory, ZeroFootprintIsMeasuredByResidentSize)
{
    processTable.add(10, "foo", 0).resident = 777;
    EXPECT_EQ(minimizer.memoryUsage(10), std::optional<std::uint64_t>(777));
}

TEST_F(ProcessMemory, FailedUsageCallIsMeasuredByResidentSize)
{
    auto& process = processTable.add(10, "foo", 100);
    process.rusageResult = -1;
    process.resident = 555;
    EXPECT_EQ(minimizer.memoryUsage(10), std::optional<std::uint64_t>(555));
}

TEST_F(ProcessMemory, ResidentSizeZeroIsKeptAsZeroForTheProcess)
{
    processTable.add(10, "foo", 0); // footprint 0, resident 0
    EXPECT_EQ(minimizer.memoryUsage(10), std::optional<std::uint64_t>(0));
    const auto record = recordOf(10);
    ASSERT_TRUE(record.has_value());
    EXPECT_EQ(record->memoryBytes, 0u);
}

TEST_F(ProcessMemory, ShortTaskInfoGivesNoFigure)
{
    auto& process = processTable.add(10, "foo", 0);
    process.resident = 123;
    process.taskInfoResult = kTaskInfoSize - 1;
    EXPECT_EQ(minimizer.memoryUsage(10), std::nullopt);
}

TEST_F(ProcessMemory, AppWhoseMatchedProcessesSumToZeroHasNoFigure)
{
    auto foo = workspace.addApp(10, "Foo");
    processTable.add(10, "foo", 0);
    processTable.add(11, "foo helper", 0);
    EXPECT_EQ(total(foo), std::nullopt);
    const auto apps = minimizer.runningApps();
    ASSERT_EQ(apps.size(), 1u);
    EXPECT_EQ(apps[0].memoryBytes, std::nullopt);
    EXPECT_EQ(apps[0].formattedRAM(), q("RAM unavailable"));
}

// ---- Which processes belong to an app -------------------------------------------------------

TEST_F(ProcessMemory, BundleIdentifierDifferingOnlyInCaseStillCollectsProcesses)
{
    auto browser = workspace.addApp(50, "Browser");
    browser->bundleId = "org.Example.Browser";
    processTable.add(50, "browser", 1000);
    processTable.add(51, "web content", 2000);
    processTable.add(52, "gpu process", 3000);
    processTable.add(53, "other", 9999);
    helperOf(51, "ORG.EXAMPLE.BROWSER");
    helperOf(52, "org.example.browser");
    EXPECT_EQ(total(browser), std::optional<std::uint64_t>(6000));
}

TEST_F(ProcessMemory, NameWithTrailingSpaceMatchesExactNameAndHelperSuffixOnly)
{
    auto foo = workspace.addApp(60, "Foo ");
    processTable.add(60, "foo", 1);
    processTable.add(61, "foo helper (renderer)", 10);
    processTable.add(62, "foohelper", 100);
    processTable.add(63, "foo-agent", 1000);
    processTable.add(64, "Foo Helper (GPU)", 10000);
    processTable.add(65, "xfoo helper", 100000);
    processTable.add(66, "foo helpers", 1000000); // begins with "foo helper" all the same
    EXPECT_EQ(total(foo), std::optional<std::uint64_t>(1010011));
}

TEST_F(ProcessMemory, NamelessAppCollectsItsBundleAndItsOwnProcessButNoNames)
{
    auto tool = workspace.addApp(70, std::nullopt);
    tool->bundleId = "org.x.tool";
    processTable.add(70, "tool", 1);
    processTable.add(71, "tool", 10);      // same name, no bundle: not this app's
    processTable.add(72, "renderer", 100); // carries the bundle
    helperOf(72, "org.x.tool");
    EXPECT_EQ(total(tool), std::optional<std::uint64_t>(101));
}

TEST_F(ProcessMemory, NamelessAppWithoutBundleCollectsOnlyItsOwnProcess)
{
    auto anon = workspace.addApp(80, std::nullopt);
    processTable.add(80, "whatever", 5);
    processTable.add(81, "whatever", 50);
    EXPECT_EQ(total(anon), std::optional<std::uint64_t>(5));
}

TEST_F(ProcessMemory, NamedAppDoesNotCollectItsOwnProcessByPid)
{
    auto foo = workspace.addApp(90, "Foo");
    processTable.add(90, "launcher", 4242);
    processTable.add(92, "foo", 10);
    EXPECT_EQ(total(foo), std::optional<std::uint64_t>(10));
}

TEST_F(ProcessMemory, BundleMismatchDoesNotExcludeANameMatch)
{
    auto foo = workspace.addApp(90, "Foo");
    foo->bundleId = "org.a.foo";
    processTable.add(91, "foo", 10);
    helperOf(91, "org.other.thing");
    EXPECT_EQ(total(foo), std::optional<std::uint64_t>(10));
}

TEST_F(ProcessMemory, AppWithNoMatchingRecordTakesItsOwnProcessMemory)
{
    auto foo = workspace.addApp(90, "Foo");
    processTable.add(90, "launcher", 4242);
    EXPECT_EQ(total(foo), std::optional<std::uint64_t>(4242));
}

TEST_F(ProcessMemory, AppWithNoMatchingRecordAndNoOwnFigureHasNone)
{
    auto foo = workspace.addApp(91, "Foo");
    processTable.add(92, "bar", 10);
    EXPECT_EQ(total(foo), std::nullopt);
}

TEST_F(ProcessMemory, RunningAppsSamplesTheProcessTableOnce)
{
    for (std::int32_t pid = 10; pid < 14; ++pid) {
        workspace.addApp(pid, "App" + std::to_string(pid));
        processTable.add(pid, "app" + std::to_string(pid), 100 * pid);
    }
    const auto apps = minimizer.runningApps();
    EXPECT_EQ(apps.size(), 4u);
    EXPECT_EQ(processTable.listAllPidsCalls, 2); // one count, one fill
    EXPECT_EQ(apps[0].memoryBytes, std::optional<std::uint64_t>(1300));
}

TEST_F(ProcessMemory, RunningAppsReadsTheMemoryOfClaimableProcessesOnlyAndSumsAsAFullReadWould)
{
    auto foo = workspace.addApp(10, "Foo");
    processTable.add(10, "foo", 1);
    processTable.add(11, "foo helper (gpu)", 10);
    processTable.add(12, "xfoo helper", 100); // no app's name ends where " helper" starts
    auto tool = workspace.addApp(20, std::nullopt);
    tool->bundleId = "org.x.Tool";
    processTable.add(20, "tool", 1000);
    processTable.add(21, "renderer", 10000);
    helperOf(21, "ORG.X.TOOL");
    auto anon = workspace.addApp(30, std::nullopt);
    processTable.add(30, "whatever", 100000);
    processTable.add(31, "whatever", 1000000); // same name, but a nameless app claims by pid only
    processTable.add(40, "bar", 10000000);
    helperOf(40, "org.other");

    const auto whole = minimizer.groupedProcessMemory();
    const std::optional<std::uint64_t> expected[] = {
        minimizer.totalMemory(*foo, whole), minimizer.totalMemory(*tool, whole), minimizer.totalMemory(*anon, whole)};
    processTable.memoryReads.clear();
    const auto apps = minimizer.runningApps();

    std::vector<std::int32_t> asked = processTable.memoryReads;
    std::sort(asked.begin(), asked.end());
    EXPECT_EQ(asked, (std::vector<std::int32_t>{10, 11, 20, 21, 30}));
    ASSERT_EQ(apps.size(), 3u);
    for (const auto& app : apps) {
        const std::size_t i = app.id == 10 ? 0 : app.id == 20 ? 1 : 2;
        EXPECT_EQ(app.memoryBytes, expected[i]) << app.id;
    }
    EXPECT_EQ(expected[0], std::optional<std::uint64_t>(11));
    EXPECT_EQ(expected[1], std::optional<std::uint64_t>(11000));
    EXPECT_EQ(expected[2], std::optional<std::uint64_t>(100000));
}

// ---- Names ----------------------------------------------------------------------------------

TEST_F(ProcessMemory, NormalizedNameTrimsWhiteSpaceAndLowerCasesUnicode)
{
    EXPECT_EQ(WindowMinimizer::normalizedProcessName(std::nullopt), std::nullopt);
    EXPECT_EQ(WindowMinimizer::normalizedProcessName(q(" \t\u00c4PFEL Helper\n")),
              std::optional<QString>(q("\u00e4pfel helper")));
    EXPECT_EQ(WindowMinimizer::normalizedProcessName(q("Foo.app/Contents")),
              std::optional<QString>(q("foo.app/contents")));
}

TEST_F(ProcessMemory, ProcessNameReplacesInvalidUtf8)
{
    processTable.add(10,
                     std::string("ab\xff"
                                 "cd"),
                     1);
    EXPECT_EQ(minimizer.processName(10), std::optional<QString>(QString::fromUtf8("ab\xef\xbf\xbd"
                                                                                  "cd")));
    EXPECT_EQ(minimizer.processName(11), std::nullopt);
}

} // namespace
} // namespace stowly
