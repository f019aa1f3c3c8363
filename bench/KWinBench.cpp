// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Stowly's hot paths on KDE Plasma's Wayland session, beside what users script today: in a
// private headless KWin with 40 native Wayland windows of one app, per round and in an order
// that flips every round,
//   - WindowMinimizer::runningApps() over the KWin backend (the one-second refresh's snapshot),
//   - minimize all 40 through WindowMinimizer until KWin has applied it, and
//   - the same job as a KWin script loaded and run over D-Bus (dbus-send), until applied.
// "Applied" is seen through a second, independent connection to KWin's window list.
//   stowly_kwin_bench [ROUNDS]     prints a Markdown table
#include "KWinPlatform.h"
#include "KWinSession.h"
#include "PlasmaWindowManagement.h"
#include "TestBed.h"
#include "WindowMinimizer.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
namespace tb = stowly::testbed;

namespace {

constexpr int kWindows = 40;
constexpr int kSnapshotsPerRound = 20;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

std::string format(double micros)
{
    char text[32];
    if (micros >= 1000)
        std::snprintf(text, sizeof text, "%.2f ms", micros / 1000);
    else
        std::snprintf(text, sizeof text, "%.0f µs", micros);
    return text;
}

int minimizedCount(stowly::kwin::PlasmaWindowManagement& observer, int pid)
{
    observer.sync(1000);
    int count = 0;
    for (const auto& window : observer.windows())
        count += window.pid == pid && window.has(stowly::kwin::WindowState::minimized) ? 1 : 0;
    return count;
}

void restoreAll(stowly::kwin::PlasmaWindowManagement& observer, int pid)
{
    observer.sync(1000);
    for (const auto& window : observer.windows()) {
        if (window.pid == pid)
            observer.setMinimized(window.uuid, false);
    }
    tb::waitUntil([&] { return minimizedCount(observer, pid) == 0; }, 10s);
}

// Microseconds from the start until the observer sees all windows minimized.
double untilApplied(stowly::kwin::PlasmaWindowManagement& observer, int pid, Clock::time_point start)
{
    while (minimizedCount(observer, pid) < kWindows) {
        if (Clock::now() - start > 10s)
            return -1;
    }
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 15;
    char cwd[4096];
    const std::string here = getcwd(cwd, sizeof cwd) != nullptr ? cwd : "/tmp";
    stowly::kwintest::KWinSession session(here);
    if (!session.ok()) {
        std::fprintf(stderr, "stowly_kwin_bench: %s\n", session.error().c_str());
        return 1;
    }
    const int pid = session.startNative("bench", {"--windows", std::to_string(kWindows)});
    stowly::kwin::PlasmaWindowManagement observer;
    if (!tb::waitUntil(
            [&] {
                observer.sync(1000);
                const auto windows = observer.windows();
                return std::count_if(windows.begin(), windows.end(), [&](const auto& w) { return w.pid == pid; }) ==
                       kWindows;
            },
            30s)) {
        std::fprintf(stderr, "stowly_kwin_bench: the %d windows did not appear\n", kWindows);
        return 1;
    }
    const std::string script = session.root() + "/minimize-all.js";
    tb::writeFile(script, "var list = workspace.clientList();\n"
                          "for (var i = 0; i < list.length; ++i)\n"
                          "    if (list[i].pid == " +
                              std::to_string(pid) + ") list[i].minimized = true;\n");

    stowly::kwin::KWinPlatform kwin;
    stowly::Platform& platform = kwin.platform();
    stowly::WindowMinimizer minimizer(platform.workspace, platform.accessibility, platform.processTable);

    std::vector<double> snapshot, ours, scripted;
    for (int round = 0; round < rounds; ++round) {
        for (int i = 0; i < kSnapshotsPerRound; ++i) {
            const auto start = Clock::now();
            const auto apps = minimizer.runningApps();
            snapshot.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
            if (apps.empty())
                std::fprintf(stderr, "stowly_kwin_bench: the list came back empty\n");
        }
        for (int turn = 0; turn < 2; ++turn) {
            const bool oursFirst = round % 2 == 0;
            restoreAll(observer, pid);
            const auto start = Clock::now();
            if ((turn == 0) == oursFirst) {
                minimizer.minimizeAllWindows();
                ours.push_back(untilApplied(observer, pid, start));
            } else {
                const std::string name = "stowly-bench-" + std::to_string(round);
                const std::string reply = tb::run("dbus-send --session --print-reply --dest=org.kde.KWin /Scripting "
                                                  "org.kde.kwin.Scripting.loadScript string:'" +
                                                  script + "' string:'" + name + "'");
                const auto at = reply.find("int32 ");
                const std::string id =
                    at == std::string::npos ? "0" : std::to_string(std::atoi(reply.c_str() + at + 6));
                tb::run("dbus-send --session --print-reply --dest=org.kde.KWin /" + id + " org.kde.kwin.Script.run");
                scripted.push_back(untilApplied(observer, pid, start));
                tb::run(
                    "dbus-send --session --dest=org.kde.KWin /Scripting org.kde.kwin.Scripting.unloadScript string:'" +
                    name + "'");
            }
        }
    }
    tb::kill(pid);

    const double snap = median(snapshot), mine = median(ours), theirs = median(scripted);
    std::printf("| Operation on KWin (%d native windows of one app) | Ours (median) | KWin script over D-Bus (median) "
                "| Script / ours |\n",
                kWindows);
    std::printf("|---|---|---|---|\n");
    std::printf("| WindowMinimizer::runningApps() | %s | — | — |\n", format(snap).c_str());
    std::printf("| minimize all %d windows until KWin applied them | %s | %s | %.2f× |\n", kWindows,
                format(mine).c_str(), format(theirs).c_str(), mine > 0 ? theirs / mine : 0.0);
    std::printf("\n%d rounds; the snapshot %d times per round; a failed wait counts as -1.\n", rounds,
                kSnapshotsPerRound);
    return 0;
}
