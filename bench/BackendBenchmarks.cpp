// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Stowly's own hot paths over the Linux backend, on the display scripts/bench started:
// the list refresh (the service call and the model's timer tick) and the two bulk window
// actions, timed on our side and until the window manager has applied them.

#include "BenchBackend.h"
#include "BenchOptions.h"
#include "DisplayObserver.h"

#include "AppModel.h"
#include "WindowMinimizer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace stowly::bench {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kApplyTimeout = std::chrono::seconds(10);

double seconds(Clock::duration d)
{
    return std::chrono::duration<double>(d).count();
}

// Built on first use, so that a run of other cases never touches the display.
struct Environment {
    std::unique_ptr<BenchBackend> backend = makeBenchBackend();
    WindowMinimizer minimizer{backend->platform().workspace, backend->platform().accessibility,
                              backend->platform().processTable};
    std::unique_ptr<AppModel> model = std::make_unique<AppModel>(backend->platform());
    DisplayObserver observer;

    static Environment& get()
    {
        static Environment environment;
        return environment;
    }
};

std::vector<xcb_window_t> currentTargets(benchmark::State& state, const BenchOptions& options)
{
    auto targets = Environment::get().observer.clientsOfClass(options.targetClass);
    if (static_cast<int>(targets.size()) != options.targetCount) {
        state.SkipWithError("the test bed does not show the expected target windows");
        return {};
    }
    return targets;
}

void runningApps(benchmark::State& state)
{
    auto& env = Environment::get();
    benchmark::DoNotOptimize(env.minimizer.runningApps()); // warm: first-call caches
    std::size_t apps = 0;
    for (auto _ : state) {
        const auto start = Clock::now();
        auto list = env.minimizer.runningApps();
        const auto end = Clock::now();
        apps = list.size();
        benchmark::DoNotOptimize(list);
        state.SetIterationTime(seconds(end - start));
    }
    state.counters["apps"] = static_cast<double>(apps);
}

// What tells two lists apart: the same apps in the same order, with the same names, states,
// icons and memory figures, or else the first difference; empty when they agree.
std::string difference(const std::vector<RunningAppInfo>& a, const std::vector<RunningAppInfo>& b)
{
    if (a.size() != b.size())
        return std::to_string(a.size()) + " apps against " + std::to_string(b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        const RunningAppInfo& x = a[i];
        const RunningAppInfo& y = b[i];
        const bool sameIcon =
            (!x.icon && !y.icon) || (x.icon && y.icon && x.icon->width == y.icon->width &&
                                     x.icon->height == y.icon->height && x.icon->argb == y.icon->argb);
        const std::string which =
            "app " + std::to_string(i) + " (pid " + std::to_string(x.id) + ", " + x.name.toStdString() + "): ";
        if (x.id != y.id || x.name != y.name)
            return which + "against pid " + std::to_string(y.id) + ", " + y.name.toStdString();
        if (x.isHidden != y.isHidden || x.isActive != y.isActive)
            return which + "hidden/active " + std::to_string(x.isHidden) + std::to_string(x.isActive) + " against " +
                   std::to_string(y.isHidden) + std::to_string(y.isActive);
        if (x.memoryBytes != y.memoryBytes)
            return which + "memory " + std::to_string(x.memoryBytes.value_or(0)) + " against " +
                   std::to_string(y.memoryBytes.value_or(0));
        if (!sameIcon)
            return which + "another icon";
    }
    return {};
}

// The tick reuses what did not change since the previous one; its list must still equal
// what a backend that has read nothing before sees. Idle apps' memory can move between
// two reads, so a difference is read again a few times before it counts.
std::string differenceFromAFreshRead(AppModel& model)
{
    std::string last;
    for (int attempt = 0; attempt < 5; ++attempt) {
        const auto freshBackend = makeBenchBackend();
        const AppModel fresh(freshBackend->platform());
        model.refreshSnapshot();
        last = difference(model.runningApps(), fresh.runningApps());
        if (last.empty())
            return {};
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return last;
}

void refreshSnapshot(benchmark::State& state)
{
    auto& env = Environment::get();
    env.model->refreshSnapshot();
    for (auto _ : state) {
        const auto start = Clock::now();
        env.model->refreshSnapshot();
        const auto end = Clock::now();
        state.SetIterationTime(seconds(end - start));
    }
    state.counters["apps"] = static_cast<double>(env.model->runningApps().size());
    if (const std::string differs = differenceFromAFreshRead(*env.model); !differs.empty()) {
        static std::string message; // SkipWithError keeps the pointer
        message = "the refreshed list differs from a fresh full read: " + differs;
        state.SkipWithError(message.c_str());
    }
}

void minimizeAllWindows(benchmark::State& state, const BenchOptions& options)
{
    auto& env = Environment::get();
    const auto targets = currentTargets(state, options);
    if (targets.empty())
        return;
    env.observer.watch(targets);
    for (auto _ : state) {
        if (!env.observer.restore(targets, kApplyTimeout)) {
            state.SkipWithError("the targets could not be restored");
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(150)); // let focus and redraws settle
        env.observer.drain();
        const auto start = Clock::now();
        const std::int64_t count = env.minimizer.minimizeAllWindows();
        const auto sent = Clock::now();
        const bool applied = env.observer.waitAllHidden(targets, kApplyTimeout);
        const auto end = Clock::now();
        if (!applied || count < options.targetCount) {
            state.SkipWithError("not every target window was minimized");
            break;
        }
        state.SetIterationTime(seconds(end - start));
        state.counters["ours_us"] = seconds(sent - start) * 1e6;
        state.counters["count"] = static_cast<double>(count);
    }
    env.observer.restore(targets, kApplyTimeout);
}

void closeAllWindows(benchmark::State& state, const BenchOptions& options)
{
    auto& env = Environment::get();
    for (auto _ : state) {
        // The targets do not survive a repetition: scripts/bench opens them again between runs.
        const auto targets = currentTargets(state, options);
        if (targets.empty())
            break;
        env.observer.watch(targets);
        env.observer.drain();
        const auto start = Clock::now();
        const std::int64_t count = env.minimizer.closeAllWindows();
        const auto sent = Clock::now();
        const bool applied = env.observer.waitAllGone(targets, kApplyTimeout);
        const auto end = Clock::now();
        if (!applied || count < options.targetCount) {
            state.SkipWithError("not every target window was closed");
            break;
        }
        state.SetIterationTime(seconds(end - start));
        state.counters["ours_us"] = seconds(sent - start) * 1e6;
        state.counters["count"] = static_cast<double>(count);
    }
}

} // namespace

void registerBackendBenchmarks(const BenchOptions& options)
{
    auto configure = [](benchmark::internal::Benchmark* b, int repetitions) {
        b->UseManualTime()->Iterations(1)->Repetitions(repetitions)->Unit(benchmark::kMicrosecond);
    };
    configure(benchmark::RegisterBenchmark("runningApps", runningApps), options.fastRepetitions);
    configure(benchmark::RegisterBenchmark("refreshSnapshot", refreshSnapshot), options.fastRepetitions);
    configure(benchmark::RegisterBenchmark("minimizeAllWindows",
                                           [options](benchmark::State& s) { minimizeAllWindows(s, options); }),
              options.windowRepetitions);
    // One repetition per run: each closes the test bed's target windows for good.
    configure(benchmark::RegisterBenchmark("closeAllWindows",
                                           [options](benchmark::State& s) { closeAllWindows(s, options); }),
              1);
}

} // namespace stowly::bench
