// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Figures, not assertions: what one refresh costs on the test bed.

#include "AppModel.h"
#include "TestBed.h"
#include "WindowMinimizer.h"
#include "X11Platform.h"
#include "XConnection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>

using namespace stowly;
using namespace stowly::testbed;

namespace stowly::testbed {
Display& sharedDisplay();
}

namespace {

template <typename F>
double medianMicroseconds(int runs, F&& f)
{
    std::vector<double> samples;
    samples.reserve(static_cast<std::size_t>(runs));
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        f();
        samples.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}

// The CPU time this thread spent, user and system: what a tick costs the machine, which
// on a shared machine says more than the wall time around it.
double threadCpuMicroseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

template <typename F>
double medianCpuMicroseconds(int runs, F&& f)
{
    std::vector<double> samples;
    samples.reserve(static_cast<std::size_t>(runs));
    for (int i = 0; i < runs; ++i) {
        const double start = threadCpuMicroseconds();
        f();
        samples.push_back(threadCpuMicroseconds() - start);
    }
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}

} // namespace

TEST(Measure, RefreshCost)
{
    ASSERT_TRUE(sharedDisplay().ok());
    Apps apps;
    for (int i = 0; i < 6; ++i)
        apps.startXterm("measure-term-" + std::to_string(i));
    for (int i = 0; i < 6; ++i)
        apps.startTestWindow("measure-win-" + std::to_string(i),
                             {"--windows", "3", "--icon", "48", "--class", "measure" + std::to_string(i),
                              "Measure" + std::to_string(i)});
    apps.start({"xlogo", "-title", "measure-logo"});
    ASSERT_TRUE(waitForWindowCount("measure-", 6 + 18 + 1, 30s));

    x11::X11Platform linux_;
    Platform& p = linux_.platform();
    WindowMinimizer minimizer(p.workspace, p.accessibility, p.processTable);
    AppModel model(p);

    const std::size_t windows = wmctrlWindows().size();
    const int processes = p.processTable.listAllPids(nullptr, 0);
    std::size_t apps_ = 0;

    const std::uint64_t before = linux_.connection().roundTrips();
    apps_ = minimizer.runningApps().size();
    const std::uint64_t snapshotTrips = linux_.connection().roundTrips() - before;
    const std::uint64_t beforeRefresh = linux_.connection().roundTrips();
    model.refreshSnapshot();
    const std::uint64_t refreshTrips = linux_.connection().roundTrips() - beforeRefresh;

    const int runs = 200;
    const double runningAppsUs = medianMicroseconds(runs, [&] { (void)minimizer.runningApps(); });
    const double refreshUs = medianMicroseconds(runs, [&] { model.refreshSnapshot(); });
    const double workspaceOnlyUs = medianMicroseconds(runs, [&] { (void)p.workspace.runningApplications(); });

    // One tick's CPU time by part, each part as the tick does it.
    const double tickCpuUs = medianCpuMicroseconds(runs, [&] { model.refreshSnapshot(); });
    const double trustCpuUs = medianCpuMicroseconds(runs, [&] { (void)p.trust.isProcessTrusted(false); });
    const double listingCpuUs = medianCpuMicroseconds(runs, [&] { (void)minimizer.allPIDs(); });
    const double fullReadCpuUs = medianCpuMicroseconds(runs, [&] { (void)minimizer.groupedProcessMemory(); });
    // At rest a tick comes once a second, to caches that other programs have used since:
    // a few ticks at that pace cost more than the same ticks back to back.
    const double restTickCpuUs = medianCpuMicroseconds(5, [&] {
        std::this_thread::sleep_for(1s);
        model.refreshSnapshot();
    });
    const std::uint64_t beforeQuiet = linux_.connection().roundTrips();
    model.refreshSnapshot();
    const std::uint64_t quietTrips = linux_.connection().roundTrips() - beforeQuiet;
    std::printf("[measure] one tick's CPU time, median of %d: refreshSnapshot %.0f us (%llu X round trips with nothing "
                "changed), %.0f us a second apart; access check %.0f us; the process walk (names, parents, listing) "
                "%.0f us; for comparison, names + owners + memory of every process %.0f us\n",
                runs, tickCpuUs, static_cast<unsigned long long>(quietTrips), restTickCpuUs, trustCpuUs, listingCpuUs,
                fullReadCpuUs);
    RecordProperty("tickCpuMicroseconds", static_cast<int>(tickCpuUs));

    std::printf("[measure] %d processes, %zu managed windows, %zu listed apps\n", processes, windows, apps_);
    std::printf("[measure] WindowMinimizer::runningApps(): median %.0f us over %d runs, %llu X round trips\n",
                runningAppsUs, runs, static_cast<unsigned long long>(snapshotTrips));
    std::printf("[measure] AppModel::refreshSnapshot(): median %.0f us over %d runs, %llu X round trips\n", refreshUs,
                runs, static_cast<unsigned long long>(refreshTrips));
    std::printf("[measure] Workspace::runningApplications() alone: median %.0f us\n", workspaceOnlyUs);
    RecordProperty("processes", processes);
    RecordProperty("windows", static_cast<int>(windows));
    RecordProperty("runningAppsMedianMicroseconds", static_cast<int>(runningAppsUs));
    RecordProperty("refreshSnapshotMedianMicroseconds", static_cast<int>(refreshUs));
    RecordProperty("snapshotRoundTrips", static_cast<int>(snapshotTrips));
    EXPECT_GT(apps_, 0u);
}
