// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Chaos rounds on a private desktop: apps and windows come, go, stop and change while
// Stowly runs every bulk action and per-app command through AppModel, as the panel does.
// After each round an outsider (its own X connection and /proc) checks that Stowly
// touched its targets and nothing else, and that what it reported is what happened.
//
//   stowly_chaos [--rounds N] [--seed S] [--wm-faults] [--no-type-changes]
//
// Every random choice comes from the seed: a failing round prints it for a replay.

#include "AppModel.h"
#include "Observer.h"
#include "TestBed.h"
#include "X11Platform.h"

#include <QCoreApplication>

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <random>
#include <sstream>
#include <thread>

using namespace std::chrono_literals;
using namespace stowly;
using namespace stowly::chaos;
namespace tb = stowly::testbed;

namespace {

double absentCpuShare = 0; // the highest CPU share measured while no window manager ran

struct ChaosApp {
    int pid = 0;
    bool accessory = false; // no taskbar window: never a bulk target
    bool stopped = false;
    std::string title;
};

enum class Command { minimize, hide, close, forceQuit, open, terminate, forceTerminate };

const char* nameOf(Command c)
{
    switch (c) {
    case Command::minimize: return "minimize all";
    case Command::hide: return "hide all";
    case Command::close: return "close all";
    case Command::forceQuit: return "force quit all";
    case Command::open: return "open app";
    case Command::terminate: return "quit app";
    case Command::forceTerminate: return "force quit app";
    }
    return "?";
}

// The number in a result message, 0 for the "No ... found." texts, -1 when none.
long long countIn(const QString& message)
{
    const std::string text = message.toStdString();
    const auto digit = text.find_first_of("0123456789");
    if (digit != std::string::npos)
        return std::atoll(text.c_str() + digit);
    return text.rfind("No ", 0) == 0 ? 0 : -1;
}

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

class Chaos {
public:
    Chaos(std::uint64_t seed, tb::Display& display)
        : m_seed(seed), m_rng(seed), m_display(display), m_observer(display.name()), m_linux(display.name()),
          m_model(m_linux.platform())
    {
        m_wmPid = display.windowManagerPid();
    }

    ~Chaos()
    {
        for (auto& [pid, app] : m_apps) {
            if (app.stopped)
                ::kill(pid, SIGCONT);
            tb::kill(pid);
        }
        if (m_wmPid != m_display.windowManagerPid())
            tb::kill(m_wmPid);
    }

    bool ready() const { return m_observer.ok(); }

    // One round; false with m_failure set when an invariant broke.
    bool round(int index, bool wmFaults);
    // Off: windows keep the type they were created with (see docs/reliability.md, open findings).
    bool typeChanges = true;
    bool windowManagerFault(bool replace);

    const std::string& failure() const { return m_failure; }
    const std::string& lastScene() const { return m_lastScene; }
    std::map<std::string, int> faults; // what was injected, how often
    int commandsRun = 0;
    double longestCommandMs = 0;

private:
    int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_rng); }
    bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(m_rng) < p; }
    void fail(const std::string& why)
    {
        if (m_failure.empty())
            m_failure = why;
    }
    // What happened to each app, for the report of a failure that names it.
    void note(int pid, const std::string& what)
    {
        m_history[pid].push_back("round " + std::to_string(m_round) + ": " + what);
    }
    std::string historyOf(int pid) const
    {
        std::string out;
        if (const auto it = m_history.find(pid); it != m_history.end())
            for (const std::string& line : it->second)
                out += "\n    history of " + std::to_string(pid) + ", " + line;
        return out;
    }

    void perturb();
    int spawnApp();
    ChaosApp* randomApp(bool runningOnly);
    void reapAll();
    bool waitForWindows(int pid, std::size_t count, std::chrono::milliseconds deadline);
    void checkProtected();
    void checkList();
    void runCommand(Command command, const RunningAppInfo* app);

    std::uint64_t m_seed;
    std::mt19937_64 m_rng;
    tb::Display& m_display;
    Observer m_observer;
    x11::X11Platform m_linux;
    AppModel m_model;
    int m_wmPid = -1;
    std::string m_windowManagerName = "openbox"; // for failure reports
    std::map<int, ChaosApp> m_apps;
    // Killed by the driver and not yet seen gone: a SIGKILL takes effect in the kernel's own
    // time, on a loaded machine sometimes only in the next round.
    std::set<int> m_killedByChaos;
    std::string m_failure;
    std::string m_lastScene; // the outsider's view before the last command
    // Apps asked to close while stopped: the request waits in their queue and may end
    // them rounds later, once they run again. That is the polite close taking effect.
    std::set<int> m_askedWhileStopped;
    // Apps whose windows a command asked to close: one that has closed its last window ends
    // on its own, and on a loaded machine that may be a round later.
    std::set<int> m_askedToClose;
    int m_spawned = 0;
    int m_round = 0;
    std::map<int, std::vector<std::string>> m_history;
};

void Chaos::reapAll()
{
    for (auto it = m_apps.begin(); it != m_apps.end();) {
        if (tb::reapIfExited(it->first) || !alive(it->first)) {
            tb::reapIfExited(it->first);
            it = m_apps.erase(it);
        } else {
            ++it;
        }
    }
}

int Chaos::spawnApp()
{
    std::vector<std::string> args{tb::testWindowProgram(), "--title", "chaos-" + std::to_string(++m_spawned)};
    ChaosApp app;
    app.title = args.back();
    std::size_t windows = 1;
    switch (pick(8)) {
    case 0:
        windows = 2 + static_cast<std::size_t>(pick(3));
        args.insert(args.end(), {"--windows", std::to_string(windows)});
        break;
    case 1:
        args.push_back("--free-dialog");
        windows = 2;
        break;
    case 2:
        args.push_back("--dialog");
        windows = 2;
        break;
    case 3: args.push_back("--no-delete"); break;
    case 4:
        args.push_back("--skip-taskbar");
        app.accessory = true;
        break;
    case 5:
        args.insert(args.end(), {"--type", "utility"});
        app.accessory = true;
        break;
    case 6: args.insert(args.end(), {"--class", "chaos", "Chaos " + std::to_string(pick(3))}); break;
    default: break;
    }
    app.pid = tb::spawn(args);
    if (app.pid > 0)
        m_apps[app.pid] = app;
    faults["app started"]++;
    std::string line = "started:";
    for (std::size_t i = 1; i < args.size(); ++i)
        line += " " + args[i];
    note(app.pid, line);
    // Every window managed before anything else happens to it: a stop before its first map
    // would leave an app without windows, and a window the manager takes on after the
    // outsider looked would make a command's count differ from what the outsider expects.
    if (app.pid > 0 && !waitForWindows(app.pid, windows, 10s))
        fail("a started app never showed a window: pid " + std::to_string(app.pid));
    return app.pid;
}

ChaosApp* Chaos::randomApp(bool runningOnly)
{
    std::vector<ChaosApp*> candidates;
    for (auto& [pid, app] : m_apps)
        if (!runningOnly || !app.stopped)
            candidates.push_back(&app);
    return candidates.empty() ? nullptr
                              : candidates[static_cast<std::size_t>(pick(static_cast<int>(candidates.size())))];
}

bool Chaos::waitForWindows(int pid, std::size_t count, std::chrono::milliseconds deadline)
{
    return tb::waitUntil([&] { return m_observer.look().windowsOf(pid).size() >= count || !alive(pid); }, deadline);
}

void Chaos::perturb()
{
    const int events = 1 + pick(3);
    for (int e = 0; e < events; ++e) {
        const int choice = m_apps.size() < 4 ? 0 : m_apps.size() > 14 ? 1 + pick(5) : pick(6);
        ChaosApp* app = nullptr;
        switch (choice) {
        case 0: spawnApp(); break;
        case 1:
            if ((app = randomApp(false)) != nullptr) {
                if (app->stopped)
                    ::kill(app->pid, SIGCONT);
                ::kill(app->pid, SIGKILL);
                m_killedByChaos.insert(app->pid);
                faults["process killed"]++;
                note(app->pid, "killed");
            }
            break;
        case 2:
            if ((app = randomApp(true)) != nullptr && !app->stopped) {
                ::kill(app->pid, SIGSTOP);
                app->stopped = true;
                faults["process stopped (SIGSTOP)"]++;
                note(app->pid, "stopped");
            }
            break;
        case 3:
            for (auto& [pid, each] : m_apps)
                if (each.stopped) {
                    ::kill(pid, SIGCONT);
                    each.stopped = false;
                    faults["process continued"]++;
                    note(pid, "continued");
                    break;
                }
            break;
        case 4: {
            const Scene scene = m_observer.look();
            if ((app = randomApp(false)) != nullptr)
                for (const SeenWindow* w : scene.windowsOf(app->pid)) {
                    const std::uint32_t id = w->id;
                    const bool on = !w->skipTaskbar;
                    m_observer.toggleSkipTaskbar(id, on);
                    faults["skip-taskbar toggled"]++;
                    note(app->pid, "window " + std::to_string(id) + (on ? " skip-taskbar on" : " skip-taskbar off"));
                    // The window manager carries the request out in its own time: the round
                    // starts from the state it settles on. (A stopped or dying app's window
                    // may never get there.)
                    tb::waitUntil(
                        [&] {
                            const Scene now = m_observer.look();
                            const auto it = now.windows.find(id);
                            return it == now.windows.end() || it->second.skipTaskbar == on;
                        },
                        3s);
                    break;
                }
            break;
        }
        default: {
            if (!typeChanges)
                break;
            const Scene scene = m_observer.look();
            if ((app = randomApp(false)) != nullptr)
                for (const SeenWindow* w : scene.windowsOf(app->pid)) {
                    static const char* types[] = {"NORMAL", "UTILITY", "DIALOG", "TOOLBAR"};
                    const char* type = types[pick(4)];
                    m_observer.setWindowType(w->id, type);
                    faults["window type changed"]++;
                    note(app->pid, "window " + std::to_string(w->id) + " type " + type);
                    break;
                }
            break;
        }
        }
    }
    // Accessory status is whatever the windows say now, after any type or state change.
    tb::waitUntil(
        [&] {
            for (const int pid : m_killedByChaos)
                tb::reapIfExited(pid);
            return std::none_of(m_killedByChaos.begin(), m_killedByChaos.end(), [](int pid) { return alive(pid); });
        },
        2s);
    reapAll();
}

void Chaos::checkProtected()
{
    if (!alive(m_wmPid))
        fail("the window manager died");
    for (const auto& [pid, app] : m_apps)
        (void)app;
}

// Stowly's list after a refresh equals the outsider's managed processes.
void Chaos::checkList()
{
    std::set<int> expected, listed;
    const bool same = tb::waitUntil(
        [&] {
            reapAll();
            m_model.refreshRunningApps();
            listed.clear();
            for (const RunningAppInfo& info : m_model.runningApps())
                listed.insert(info.id);
            expected = m_observer.look().managedPids(static_cast<int>(getpid()));
            return listed == expected;
        },
        2s);
    if (!same) {
        std::ostringstream why;
        why << "list differs from /proc and the client list: Stowly";
        for (int p : listed)
            why << ' ' << p;
        why << ", outside";
        for (int p : expected)
            why << ' ' << p;
        fail(why.str());
    }
}

void Chaos::runCommand(Command command, const RunningAppInfo* target)
{
    const int self = static_cast<int>(getpid());
    reapAll();
    // The window manager carries out earlier requests (iconify, skip-taskbar, a new map) in
    // its own time: the command starts once the desktop has stood still for a moment, so
    // that Stowly and the outsider look at the same desktop.
    const auto picture = [](const Scene& scene) {
        std::string text;
        for (const auto& [id, w] : scene.windows)
            text += w.describe() + (w.hiddenMark ? ", marked hidden\n" : "\n");
        return text;
    };
    std::string last = picture(m_observer.look());
    tb::waitUntil(
        [&] {
            std::this_thread::sleep_for(50ms);
            std::string now = picture(m_observer.look());
            const bool still = now == last;
            last = std::move(now);
            return still;
        },
        2s);
    m_model.refreshRunningApps();
    const Scene before = m_observer.look();
    const std::set<int> managed = before.managedPids(self);
    m_lastScene.clear();
    for (const auto& [id, w] : before.windows)
        m_lastScene += "\n    " + w.describe() + (managed.count(w.pid) ? " [managed]" : "");
    for (const RunningAppInfo& info : m_model.runningApps())
        m_lastScene += "\n    listed by Stowly: " + std::to_string(info.id) + " " + info.name.toStdString();
    std::set<int> aliveBefore;
    for (const auto& [pid, app] : m_apps)
        if (alive(pid))
            aliveBefore.insert(pid);
    std::map<int, bool> stoppedBefore;
    for (const auto& [pid, app] : m_apps)
        stoppedBefore[pid] = app.stopped;

    // Targets as the outsider reckons them.
    std::set<std::uint32_t> minimizeTargets, closeTargets;
    std::set<int> hideTargets;
    for (const int pid : managed) {
        bool allHidden = true;
        for (const SeenWindow* w : before.windowsOf(pid)) {
            if (!w->dialog && !w->iconic)
                minimizeTargets.insert(w->id);
            if (!w->dialog && w->closable)
                closeTargets.insert(w->id);
            if (!(w->iconic && w->hiddenMark))
                allHidden = false;
        }
        if (!allHidden)
            hideTargets.insert(pid);
    }

    // Now and then something dies while the command runs.
    std::vector<int> killedMidway;
    std::thread midway;
    if (chance(0.25) && !m_apps.empty()) {
        ChaosApp* victim = randomApp(false);
        const int pid = victim->pid;
        const auto delay = std::chrono::microseconds(pick(20000));
        if (victim->stopped)
            ::kill(pid, SIGCONT);
        victim->stopped = false;
        killedMidway.push_back(pid);
        m_killedByChaos.insert(pid);
        faults["process killed during a command"]++;
        note(pid, "killed during the command");
        midway = std::thread([pid, delay] {
            std::this_thread::sleep_for(delay);
            ::kill(pid, SIGKILL);
        });
    }

    for (const std::uint32_t id : closeTargets)
        if (command == Command::close) {
            note(before.windows.at(id).pid, "Close All target: window " + std::to_string(id));
            m_askedToClose.insert(before.windows.at(id).pid);
        }
    if (target != nullptr) {
        note(target->id, std::string("target of ") + nameOf(command));
        if (command == Command::terminate)
            m_askedToClose.insert(target->id);
    }
    // Excused: an app asked before to close whose windows are all gone, ending now.
    auto closedEarlier = [&](int pid) { return m_askedToClose.count(pid) != 0 && before.windowsOf(pid).empty(); };
    const auto started = std::chrono::steady_clock::now();
    switch (command) {
    case Command::minimize: m_model.minimizeAllWindows(); break;
    case Command::hide: m_model.hideAllApps(); break;
    case Command::close: m_model.closeAllWindows(); break;
    case Command::forceQuit: m_model.forceQuitAllApps(); break;
    case Command::open: m_model.openApp(*target); break;
    case Command::terminate: m_model.terminateApp(*target); break;
    case Command::forceTerminate: m_model.forceTerminateApp(*target); break;
    }
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started).count();
    if (midway.joinable())
        midway.join();
    ++commandsRun;
    longestCommandMs = std::max(longestCommandMs, ms);
    if (ms > 2000)
        fail(std::string(nameOf(command)) + " did not answer within 2 s (" + std::to_string(ms) + " ms)");
    const QString message = m_model.lastResultMessage();
    const long long reported = countIn(message);
    const bool quiet = killedMidway.empty();
    if (message.isEmpty())
        fail("no result message");

    // Let the window manager and the apps carry out what was asked.
    std::set<int> died;
    Scene after;
    auto settle = [&](const std::function<bool()>& done, std::chrono::milliseconds deadline = 2s) {
        tb::waitUntil(
            [&] {
                for (const int pid : aliveBefore)
                    tb::reapIfExited(pid);
                after = m_observer.look();
                died.clear();
                for (const int pid : aliveBefore)
                    if (!alive(pid) && m_killedByChaos.count(pid) == 0 && m_askedWhileStopped.count(pid) == 0 &&
                        !closedEarlier(pid))
                        died.insert(pid);
                return done();
            },
            deadline);
    };
    auto iconified = [&] {
        std::set<std::uint32_t> out;
        for (const auto& [id, w] : after.windows)
            if (const auto was = before.windows.find(id);
                was != before.windows.end() && !was->second.iconic && w.iconic)
                out.insert(id);
        return out;
    };
    auto describe = [&](const std::string& what) {
        return std::string(nameOf(command)) + ": " + what + " (message \"" + message.toStdString() + "\")";
    };

    switch (command) {
    case Command::minimize: {
        settle([&] {
            const auto done = iconified();
            return std::all_of(minimizeTargets.begin(), minimizeTargets.end(),
                               [&](std::uint32_t id) { return done.count(id) != 0 || after.windows.count(id) == 0; });
        });
        for (const std::uint32_t id : iconified()) {
            const SeenWindow& w = before.windows.at(id);
            // The window manager iconifies a transient with the window it belongs to.
            if (minimizeTargets.count(id) == 0 && minimizeTargets.count(w.transientFor) == 0)
                fail(describe("a window that was no target was minimized: " + w.describe()));
        }
        if (!died.empty())
            fail(describe("process " + std::to_string(*died.begin()) + " died" +
                          (stoppedBefore[*died.begin()] ? " (it was stopped)" : "")) +
                 historyOf(*died.begin()));
        // Every window before and after, marked, so that a failure says which one.
        auto windowsSeen = [&] {
            std::string seen;
            for (const auto& [id, w] : before.windows)
                seen += "\n    " + w.describe() + (minimizeTargets.count(id) ? " [target]" : "") +
                        (after.windows.count(id) == 0  ? " [gone after]"
                         : after.windows.at(id).iconic ? " [iconic after]"
                                                       : "");
            return seen;
        };
        if (quiet && reported != static_cast<long long>(minimizeTargets.size()))
            fail(describe("reported " + std::to_string(reported) + ", outside saw " +
                          std::to_string(minimizeTargets.size()) + " targets:" + windowsSeen()));
        std::size_t targetsMinimized = 0;
        for (const std::uint32_t id : iconified())
            targetsMinimized += minimizeTargets.count(id);
        if (quiet && targetsMinimized != minimizeTargets.size())
            fail(describe("outside saw " + std::to_string(targetsMinimized) + " windows minimized of " +
                          std::to_string(minimizeTargets.size()) + ":" + windowsSeen() +
                          "\n    window manager: " + m_windowManagerName));
        break;
    }
    case Command::hide: {
        settle([&] { return iconified().size() >= minimizeTargets.size(); });
        for (const std::uint32_t id : iconified()) {
            const SeenWindow& w = before.windows.at(id);
            const auto parent = before.windows.find(w.transientFor);
            const bool parentTarget = parent != before.windows.end() && hideTargets.count(parent->second.pid) != 0;
            if (hideTargets.count(w.pid) == 0 && !parentTarget)
                fail(describe("a window of an app that was no target was hidden: " + w.describe()));
        }
        if (!died.empty())
            fail(describe("process " + std::to_string(*died.begin()) + " died" +
                          (stoppedBefore[*died.begin()] ? " (it was stopped)" : "")) +
                 historyOf(*died.begin()));
        if (quiet && reported != static_cast<long long>(hideTargets.size()))
            fail(describe("reported " + std::to_string(reported) + ", outside saw " +
                          std::to_string(hideTargets.size()) + " apps to hide"));
        break;
    }
    case Command::close: {
        for (const std::uint32_t id : closeTargets)
            if (stoppedBefore[before.windows.at(id).pid])
                m_askedWhileStopped.insert(before.windows.at(id).pid);
        auto closed = [&] {
            std::set<std::uint32_t> out;
            for (const auto& [id, w] : before.windows)
                if (after.windows.count(id) == 0)
                    out.insert(id);
            return out;
        };
        settle([&] {
            const auto gone = closed();
            return std::all_of(closeTargets.begin(), closeTargets.end(), [&](std::uint32_t id) {
                const auto w = before.windows.find(id);
                return gone.count(id) != 0 || stoppedBefore[w->second.pid]; // a stopped app cannot answer
            });
        });
        for (const int pid : died) {
            const auto windows = before.windowsOf(pid);
            const bool hadTarget = std::any_of(windows.begin(), windows.end(),
                                               [&](const SeenWindow* w) { return closeTargets.count(w->id) != 0; });
            if (!hadTarget)
                fail(describe("process " + std::to_string(pid) +
                              " ended though none of its windows was asked to close") +
                     historyOf(pid));
            if (stoppedBefore[pid])
                fail(describe("a stopped process ended: it was killed, not asked"));
        }
        for (const std::uint32_t id : closed()) {
            const auto w = before.windows.find(id);
            const int pid = w->second.pid;
            // openbox under churn now and then drops a window it still manages from its client
            // list (or keeps a destroyed one in it): only a window that no longer exists was closed.
            if (m_observer.exists(id)) {
                faults["window dropped from the client list by the window manager"]++;
                continue;
            }
            // Only our apps' windows count: a window manager's own windows come and go.
            if (aliveBefore.count(pid) != 0 && closeTargets.count(id) == 0 && m_killedByChaos.count(pid) == 0 &&
                died.count(pid) == 0) {
                // Whether its process went on to end tells a window closed by request from an
                // app that ended as a whole.
                const bool ended = tb::waitUntil([&] { return !alive(pid); }, 3s);
                fail(describe(w->second.describe() + " vanished though it was no target" +
                              (ended ? "; its process ended after it" : "; its process lives on")) +
                     historyOf(pid));
            }
        }
        if (quiet && reported != static_cast<long long>(closeTargets.size()))
            fail(describe("reported " + std::to_string(reported) + ", outside saw " +
                          std::to_string(closeTargets.size()) + " closable windows"));
        break;
    }
    case Command::forceQuit: {
        // A signal is certain once sent; a loaded machine only delays the end it brings.
        settle([&] { return std::all_of(managed.begin(), managed.end(), [&](int pid) { return !alive(pid); }); }, 10s);
        for (const int pid : died)
            if (managed.count(pid) == 0)
                fail(describe("process " + std::to_string(pid) + " died though it was no target") + historyOf(pid));
        for (const int pid : managed)
            if (alive(pid))
                fail(describe("target " + std::to_string(pid) + " survived"));
        if (quiet && reported != static_cast<long long>(managed.size()))
            fail(describe("reported " + std::to_string(reported) + ", outside saw " + std::to_string(managed.size()) +
                          " apps"));
        break;
    }
    case Command::open:
        settle([] { return true; });
        if (!died.empty())
            fail(describe("a process died"));
        break;
    case Command::terminate:
        if (stoppedBefore[target->id])
            m_askedWhileStopped.insert(target->id);
        settle([&] { return !alive(target->id) || stoppedBefore[target->id]; });
        for (const int pid : died)
            if (pid != target->id)
                fail(describe("process " + std::to_string(pid) + " died, the command was for " +
                              std::to_string(target->id)) +
                     historyOf(pid));
        break;
    case Command::forceTerminate:
        settle([&] { return !alive(target->id); }, 10s);
        for (const int pid : died)
            if (pid != target->id)
                fail(describe("process " + std::to_string(pid) + " died, the command was for " +
                              std::to_string(target->id)) +
                     historyOf(pid));
        if (alive(target->id) && quiet)
            fail(describe("the app survived"));
        break;
    }
    checkProtected();
}

bool Chaos::round(int index, bool wmFaults)
{
    m_round = index;
    std::erase_if(m_killedByChaos, [](int pid) { return !alive(pid); });
    std::erase_if(m_askedToClose, [](int pid) { return !alive(pid); });
    perturb();
    // Every fourth round the window manager goes away: back as itself or as another one.
    if (wmFaults && index % 4 == 3)
        windowManagerFault((index / 4) % 2 == 1);
    reapAll();
    m_model.refreshRunningApps();
    const auto apps = m_model.runningApps();
    // Bulk force quit empties the desktop: rarer than the rest.
    static const Command bulk[] = {Command::minimize, Command::hide,  Command::close,    Command::minimize,
                                   Command::hide,     Command::close, Command::forceQuit};
    Command command = bulk[pick(7)];
    const RunningAppInfo* target = nullptr;
    if (!apps.empty() && chance(0.4)) {
        static const Command single[] = {Command::open, Command::terminate, Command::forceTerminate};
        command = single[pick(3)];
        target = &apps[static_cast<std::size_t>(pick(static_cast<int>(apps.size())))];
    }
    faults[std::string("command: ") + nameOf(command)]++;
    runCommand(command, target);
    checkList();
    return m_failure.empty();
}

// The window manager killed, absent for a while, then back (the same one or another).
bool Chaos::windowManagerFault(bool replace)
{
    faults[replace ? "window manager replaced" : "window manager killed and restarted"]++;
    tb::kill(m_wmPid);
    if (!tb::waitUntil([&] { return !m_observer.look().windowManager; }, 3s))
        fail("the window manager did not go away");
    // While it is gone: the window commands refuse, nothing busy-loops.
    m_model.minimizeAllWindows();
    if (m_model.hasAccessibilityPermission())
        fail("access still reported while no window manager runs");
    if (m_model.lastResultMessage() !=
        QStringLiteral("Accessibility access is required before minimizing other apps' windows."))
        fail("unexpected message without a window manager: " + m_model.lastResultMessage().toStdString());
    const double cpuBefore = cpuSeconds();
    const auto wallBefore = std::chrono::steady_clock::now();
    for (int tick = 0; tick < 10; ++tick) { // ten refresh ticks, 100 ms apart
        m_model.refreshSnapshot();
        std::this_thread::sleep_for(100ms);
    }
    const double cpu = cpuSeconds() - cpuBefore;
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - wallBefore).count();
    absentCpuShare = std::max(absentCpuShare, cpu / wall);
    if (cpu / wall > 0.25)
        fail("busy while the window manager is absent: " + std::to_string(cpu / wall * 100) + "% CPU");
    const bool useIcewm = replace && system("command -v icewm >/dev/null 2>&1") == 0;
    m_windowManagerName = useIcewm ? "icewm (after a fault)" : "openbox (after a fault)";
    m_wmPid = useIcewm ? tb::spawn({"icewm", "--replace"})
                       : tb::spawn({"env", "XDG_DATA_DIRS=/usr/local/share:/usr/share", "openbox", "--sm-disable"});
    if (!tb::waitUntil([&] { return m_observer.look().windowManager; }, 10s))
        fail("the window manager did not come back");
    // A window manager announces itself before it handles map requests: only a window it
    // manages shows it ready for the apps of the next rounds.
    bool ready = false;
    for (int attempt = 0; attempt < 10 && !ready; ++attempt) {
        const int probe = tb::spawn({tb::testWindowProgram(), "--title", "chaos-wm-probe"});
        ready = tb::waitUntil([&] { return !m_observer.look().windowsOf(probe).empty(); }, 3s);
        tb::kill(probe);
    }
    if (!ready)
        fail("the window manager that came back manages no new window");
    // Stowly notices by itself on its next tick.
    const bool back = tb::waitUntil(
        [&] {
            m_model.refreshSnapshot();
            return m_model.hasAccessibilityPermission();
        },
        5s);
    if (!back)
        fail("access not reported again after the window manager came back");
    // The windows it re-manages are in the list again.
    tb::waitUntil([&] { return m_observer.look().windows.size() >= 1 || m_apps.empty(); }, 5s);
    return m_failure.empty();
}

} // namespace

int main(int argc, char** argv)
{
    int rounds = 40;
    bool wmFaults = false;
    bool typeChanges = true;
    std::uint64_t seed = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--rounds" && i + 1 < argc)
            rounds = std::atoi(argv[++i]);
        else if (a == "--seed" && i + 1 < argc)
            seed = std::strtoull(argv[++i], nullptr, 10);
        else if (a == "--wm-faults")
            wmFaults = true;
        else if (a == "--no-type-changes")
            typeChanges = false;
        else {
            std::fprintf(stderr, "usage: stowly_chaos [--rounds N] [--seed S] [--wm-faults] [--no-type-changes]\n");
            return 2;
        }
    }
    tb::prepareEnvironment(STOWLY_CHAOS_BUILD_DIR);
    QCoreApplication app(argc, argv);
    tb::Display display;
    if (!display.ok()) {
        std::fprintf(stderr, "stowly_chaos: could not start Xvfb with openbox\n");
        return 1;
    }
    std::printf("chaos: seed %llu, %d rounds%s\n", static_cast<unsigned long long>(seed), rounds,
                wmFaults ? ", window manager faults" : "");
    std::fflush(stdout);
    Chaos chaos(seed, display);
    chaos.typeChanges = typeChanges;
    const auto started = std::chrono::steady_clock::now();
    int done = 0;
    for (; done < rounds; ++done) {
        if (!chaos.round(done, wmFaults)) {
            std::printf("chaos: FAILED in round %d: %s\n  before the command:%s\nchaos: replay with --seed %llu "
                        "--rounds %d%s\n",
                        done, chaos.failure().c_str(), chaos.lastScene().c_str(), static_cast<unsigned long long>(seed),
                        done + 1, wmFaults ? " --wm-faults" : "");
            if (!typeChanges)
                std::printf("  (with --no-type-changes)\n");
            return 1;
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    std::printf("chaos: %d rounds passed in %.0f s, %d commands, longest %.0f ms", done, seconds, chaos.commandsRun,
                chaos.longestCommandMs);
    if (wmFaults)
        std::printf(", highest CPU share without a window manager %.1f%%", absentCpuShare * 100);
    std::printf("\n");
    for (const auto& [what, count] : chaos.faults)
        std::printf("  %-40s %d\n", what.c_str(), count);
    return 0;
}
