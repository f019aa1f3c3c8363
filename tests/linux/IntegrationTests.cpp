// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The real WindowMinimizer and AppModel over the Linux backend, on a private display with
// real apps; every effect is checked from outside (xprop, wmctrl, /proc).

#include "AppModel.h"
#include "AppPreferences.h"
#include "OwnWindow.h"
#include "TestBed.h"
#include "WindowMinimizer.h"
#include "X11Platform.h"
#include "XdgAutostart.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

using namespace stowly;
using namespace stowly::testbed;

namespace stowly::testbed {
Display& sharedDisplay();
}

namespace {

std::uint32_t windowOfTitle(const std::string& title)
{
    for (const auto& w : wmctrlWindows())
        if (w.title == title)
            return w.window;
    return 0;
}

bool supportsDelete(std::uint32_t window)
{
    return xprop(window, "WM_PROTOCOLS").find("WM_DELETE_WINDOW") != std::string::npos;
}

bool hiddenMark(std::uint32_t window)
{
    return xprop(window, "_STOWLY_HIDDEN").find("= 1") != std::string::npos;
}

// The desk every bulk-action test starts from: three terminals, xlogo, an app with a
// dialog, an app whose window cannot be closed politely, and a skip-taskbar accessory.
struct Desk {
    Apps apps;
    int term[3] = {0, 0, 0};
    int logo = 0, dialogApp = 0, noDelete = 0, accessory = 0;
    std::uint32_t termWindow[3] = {0, 0, 0};
    std::uint32_t logoWindow = 0, mainWindow = 0, dialogWindow = 0, noDeleteWindow = 0, accessoryWindow = 0;

    bool start()
    {
        for (int i = 0; i < 3; ++i)
            term[i] = apps.startXterm("desk-term-" + std::to_string(i));
        logo = apps.start({"xlogo", "-title", "desk-logo"});
        // The dialog is not transient for the main window, so that openbox does not iconify
        // it together with its parent: whatever happens to it is our doing.
        dialogApp = apps.startTestWindow("desk-main", {"--free-dialog", "--class", "deskmain", "DeskMain"});
        noDelete = apps.startTestWindow("desk-nodelete", {"--no-delete", "--class", "desknodelete", "DeskNoDelete"});
        accessory =
            apps.startTestWindow("desk-accessory", {"--skip-taskbar", "--class", "deskaccessory", "DeskAccessory"});
        const bool all = waitUntil(
            [&] {
                for (int i = 0; i < 3; ++i)
                    termWindow[i] = windowOfTitle("desk-term-" + std::to_string(i));
                logoWindow = windowOfTitle("desk-logo");
                mainWindow = windowOfTitle("desk-main");
                dialogWindow = windowOfTitle("desk-main dialog");
                noDeleteWindow = windowOfTitle("desk-nodelete");
                accessoryWindow = windowOfTitle("desk-accessory");
                return termWindow[0] && termWindow[1] && termWindow[2] && logoWindow && mainWindow && dialogWindow &&
                       noDeleteWindow && accessoryWindow;
            },
            20s);
        return all;
    }
    // Each test starts the same apps in the same order, so the X server hands the new
    // clients the slots, and so the window ids, of the ones just killed. openbox must have
    // let go of the old windows first: unmanaging one rewrites its _NET_WM_STATE, which
    // would land on the new window of the same id and strip its skip-taskbar state.
    ~Desk()
    {
        apps.killAll();
        const std::vector<std::uint32_t> mine{termWindow[0], termWindow[1], termWindow[2],  logoWindow,
                                              mainWindow,    dialogWindow,  noDeleteWindow, accessoryWindow};
        waitUntil([&] {
            for (const auto& listed : wmctrlWindows())
                if (std::find(mine.begin(), mine.end(), listed.window) != mine.end())
                    return false;
            return true;
        });
    }

    std::vector<std::uint32_t> standardWindows() const
    {
        return {termWindow[0], termWindow[1], termWindow[2], logoWindow, mainWindow, noDeleteWindow};
    }
    std::vector<int> managedPids() const { return {term[0], term[1], term[2], logo, dialogApp, noDelete}; }
};

class Integration : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sharedDisplay().ok());
        ASSERT_TRUE(desk.start()) << "the test apps did not all appear";
    }
    Desk desk;
};

} // namespace

TEST_F(Integration, MinimizeAllIconifiesStandardWindowsOnly)
{
    OwnWindow own("desk-own");
    ASSERT_TRUE(waitForWindowTitled("desk-own"));
    x11::X11Platform linux_;
    AppModel model(linux_.platform());
    EXPECT_TRUE(model.hasAccessibilityPermission());

    model.minimizeAllWindows();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Minimized 6 windows."));
    for (const auto w : desk.standardWindows()) {
        EXPECT_TRUE(waitUntil([&] { return isIconic(w); })) << std::hex << w;
        EXPECT_FALSE(hiddenMark(w)) << "minimizing never marks as hidden";
    }
    EXPECT_FALSE(isIconic(desk.dialogWindow));
    EXPECT_FALSE(isIconic(desk.accessoryWindow));
    EXPECT_FALSE(isIconic(own.window()));
    // Minimized apps still read "Open", as they would after the same action on a Mac.
    for (const auto& app : model.runningApps())
        EXPECT_NE(app.status(), QStringLiteral("Hidden")) << app.name.toStdString();

    model.minimizeAllWindows();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("No minimizable windows were found."));
}

TEST_F(Integration, CloseAllClosesWhatCanBeClosedPolitely)
{
    x11::X11Platform linux_;
    AppModel model(linux_.platform());
    const bool logoCloses = supportsDelete(desk.logoWindow);
    ASSERT_FALSE(supportsDelete(desk.noDeleteWindow));
    const int expected = 3 + (logoCloses ? 1 : 0) + 1; // terminals, xlogo, the dialog app's main window

    model.closeAllWindows();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Closed %1 windows.").arg(expected));
    for (const int pid : desk.term)
        EXPECT_TRUE(waitUntil([&] { return processGone(pid); })) << pid;
    if (logoCloses) {
        EXPECT_TRUE(waitUntil([&] { return processGone(desk.logo); }));
    }
    EXPECT_TRUE(waitUntil([&] { return windowOfTitle("desk-main") == 0; }));
    // Untouched: the dialog (not a standard window), the window without WM_DELETE_WINDOW,
    // and the accessory app.
    EXPECT_NE(windowOfTitle("desk-main dialog"), 0u);
    EXPECT_EQ(windowOfTitle("desk-nodelete"), desk.noDeleteWindow);
    EXPECT_FALSE(isIconic(desk.noDeleteWindow));
    EXPECT_FALSE(processGone(desk.noDelete));
    EXPECT_FALSE(processGone(desk.accessory));
    EXPECT_FALSE(processGone(desk.dialogApp));
}

TEST_F(Integration, HideAllThenOpenOneBringsItBackActive)
{
    x11::X11Platform linux_;
    AppModel model(linux_.platform());
    model.hideAllApps();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Hid 6 apps."));
    std::vector<std::uint32_t> managedWindows = desk.standardWindows();
    managedWindows.push_back(desk.dialogWindow);
    for (const auto w : managedWindows) {
        EXPECT_TRUE(waitUntil([&] { return isIconic(w); })) << std::hex << w;
        EXPECT_TRUE(hiddenMark(w)) << std::hex << w;
    }
    EXPECT_FALSE(isIconic(desk.accessoryWindow));
    EXPECT_FALSE(hiddenMark(desk.accessoryWindow));

    EXPECT_TRUE(waitUntil([&] {
        model.refreshRunningApps();
        return std::all_of(model.runningApps().begin(), model.runningApps().end(),
                           [](const RunningAppInfo& a) { return a.status() == QStringLiteral("Hidden"); });
    }));
    EXPECT_EQ(model.runningApps().size(), 6u) << [&] {
        std::string names;
        for (const auto& a : model.runningApps())
            names += a.name.toStdString() + "(" + std::to_string(a.id) + ") ";
        return names + " accessory pid " + std::to_string(desk.accessory) + "\n" + xprop(desk.accessoryWindow, "") +
               run("wmctrl -lp");
    }();
    // Hiding again asks nobody.
    model.hideAllApps();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("No apps could be hidden."));

    const auto row = std::find_if(model.runningApps().begin(), model.runningApps().end(),
                                  [&](const RunningAppInfo& a) { return a.id == desk.term[1]; });
    ASSERT_NE(row, model.runningApps().end());
    const RunningAppInfo chosen = *row;
    model.openApp(chosen);
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Opened Test Terminal."));
    EXPECT_TRUE(waitUntil([&] { return !isIconic(desk.termWindow[1]); }));
    EXPECT_FALSE(hiddenMark(desk.termWindow[1]));
    EXPECT_TRUE(waitUntil([&] { return activeWindow() == desk.termWindow[1]; }));
    EXPECT_TRUE(isIconic(desk.termWindow[0]));
    EXPECT_TRUE(waitUntil([&] {
        model.refreshRunningApps();
        for (const auto& a : model.runningApps())
            if (a.id == desk.term[1])
                return a.status() == QStringLiteral("Active");
        return false;
    }));
}

TEST_F(Integration, ForceQuitAllKillsManagedAppsOnly)
{
    OwnWindow own("desk-own");
    ASSERT_TRUE(waitForWindowTitled("desk-own"));
    x11::X11Platform linux_;
    AppModel model(linux_.platform());
    for (const auto& app : model.runningApps())
        EXPECT_NE(app.id, static_cast<int>(getpid())) << "the program never lists itself";
    model.forceQuitAllApps();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Force quit sent to 6 apps."));
    for (const int pid : desk.managedPids())
        EXPECT_TRUE(waitUntil([&] { return processGone(pid); })) << pid;
    EXPECT_FALSE(processGone(desk.accessory));
    EXPECT_FALSE(processGone(sharedDisplay().windowManagerPid()));
    EXPECT_FALSE(processGone(sharedDisplay().serverPid()));
    EXPECT_NE(windowOfTitle("desk-own"), 0u);
    EXPECT_TRUE(waitUntil([&] {
        model.refreshRunningApps();
        return model.runningApps().empty();
    }));
    model.forceQuitAllApps();
    EXPECT_EQ(model.lastResultMessage(), QStringLiteral("No apps could be force quit."));
}

TEST_F(Integration, WindowsVanishingDuringBulkActions)
{
    const int churn = desk.apps.startTestWindow("desk-churn", {"--churn", "--class", "deskchurn", "DeskChurn"});
    ASSERT_TRUE(waitForWindowTitled("desk-churn"));
    x11::X11Platform linux_;
    AppModel model(linux_.platform());
    const QRegularExpression outcome(QStringLiteral("^(Minimized \\d+ windows?\\.|No minimizable windows were found\\.|"
                                                    "Accessibility call failed with code -25202\\.)$"));
    for (int round = 0; round < 40; ++round) {
        model.minimizeAllWindows();
        EXPECT_TRUE(outcome.match(model.lastResultMessage()).hasMatch()) << model.lastResultMessage().toStdString();
        model.refreshSnapshot();
    }
    EXPECT_FALSE(processGone(churn));
    EXPECT_TRUE(model.hasAccessibilityPermission());
}

namespace {

struct ProcInfo {
    int ppid = -1;
    std::string name;
    std::optional<std::uint64_t> memory;
};

// Our own reading of /proc, written apart from the backend's.
std::map<int, ProcInfo> readAllProcesses()
{
    std::map<int, ProcInfo> out;
    for (const int pid : allProcesses()) {
        ProcInfo info;
        const std::string status = readText("/proc/" + std::to_string(pid) + "/status");
        if (status.empty())
            continue;
        info.ppid = parentOf(pid);
        std::string comm = readText("/proc/" + std::to_string(pid) + "/comm");
        if (!comm.empty() && comm.back() == '\n')
            comm.pop_back();
        if (comm.size() == 15) {
            std::string cmdline = readText("/proc/" + std::to_string(pid) + "/cmdline");
            std::string argv0 = cmdline.substr(0, cmdline.find('\0'));
            argv0 = argv0.substr(argv0.rfind('/') == std::string::npos ? 0 : argv0.rfind('/') + 1);
            if (argv0.rfind(comm, 0) == 0)
                comm = argv0;
        }
        info.name = comm;
        info.memory = footprintOf(pid);
        if (info.memory && *info.memory == 0) {
            std::istringstream lines(status);
            std::string line;
            while (std::getline(lines, line))
                if (line.rfind("VmRSS:", 0) == 0)
                    info.memory = std::strtoull(line.c_str() + 6, nullptr, 10) * 1024;
        }
        out[pid] = info;
    }
    return out;
}

std::string lowered(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

} // namespace

TEST(OpenApps, ListNamesStatesOrderAndMemory)
{
    ASSERT_TRUE(sharedDisplay().ok());
    Apps apps;
    const int big = apps.startTestWindow("open-big", {"--alloc-mb", "60", "--class", "bigapp", "BigApp"});
    const int parent = apps.startTestWindow(
        "open-parent", {"--alloc-mb", "10", "--child-alloc-mb", "30", "--class", "parentapp", "ParentApp"});
    const int lower = apps.startTestWindow("open-lower", {"--class", "alpha", "alpha"});
    const int upper = apps.startTestWindow("open-upper", {"--class", "Zeta", "Zeta"});
    const int term1 = apps.startXterm("open-term-1");
    const int term2 = apps.startXterm("open-term-2");
    const int logo = apps.start({"xlogo", "-title", "open-logo"});
    for (const char* t :
         {"open-big", "open-parent", "open-lower", "open-upper", "open-term-1", "open-term-2", "open-logo"})
        ASSERT_NE(waitForWindowTitled(t), 0u) << t;
    // The helper child must have touched its memory before we compare.
    ASSERT_TRUE(waitUntil([&] {
        for (const auto& [pid, info] : readAllProcesses())
            if (info.ppid == parent && info.memory && *info.memory > (29ull << 20))
                return true;
        return false;
    }));

    x11::X11Platform linux_;
    AppModel model(linux_.platform());
    model.refreshSnapshot();
    const auto& list = model.runningApps();
    const auto independent = readAllProcesses();

    // Which app each test pid is, and its id as the test set it up.
    const std::map<int, std::pair<std::string, std::string>> known = {
        {big, {"BigApp", "BigApp"}},
        {parent, {"ParentApp", "ParentApp"}},
        {lower, {"alpha", "alpha"}},
        {upper, {"Zeta", "Zeta"}},
        {term1, {"Test Terminal", "org.stowly.TestTerminal"}},
        {term2, {"Test Terminal", "org.stowly.TestTerminal"}},
        {logo, {"XLogo", "XLogo"}},
    };
    ASSERT_EQ(list.size(), known.size());
    const auto ownerId = [&](int pid) -> std::optional<std::string> {
        for (int p = pid, depth = 0; p > 0 && depth < 128; ++depth) {
            if (const auto it = known.find(p); it != known.end())
                return it->second.second;
            const auto info = independent.find(p);
            if (info == independent.end())
                return std::nullopt;
            p = info->second.ppid;
        }
        return std::nullopt;
    };

    const std::uint32_t active = activeWindow();
    int activeRows = 0;
    for (const RunningAppInfo& row : list) {
        ASSERT_EQ(known.count(row.id), 1u) << row.id;
        const auto& [name, id] = known.at(row.id);
        EXPECT_EQ(row.name.toStdString(), name);
        EXPECT_FALSE(row.isHidden);
        if (row.isActive) {
            ++activeRows;
            EXPECT_EQ(row.status(), QStringLiteral("Active"));
        } else {
            EXPECT_EQ(row.status(), QStringLiteral("Open"));
        }
        // The same rules, over our own reading of /proc.
        std::uint64_t expected = 0;
        const std::string n = lowered(name);
        for (const auto& [pid, info] : independent) {
            if (pid == static_cast<int>(getpid()) || !info.memory)
                continue;
            const auto owner = ownerId(pid);
            const std::string procName = lowered(info.name);
            const bool belongs =
                (owner && lowered(*owner) == lowered(id)) || procName == n || procName.rfind(n + " helper", 0) == 0;
            if (belongs)
                expected += *info.memory;
        }
        ASSERT_TRUE(row.memoryBytes) << name;
        EXPECT_NEAR(static_cast<double>(*row.memoryBytes), static_cast<double>(expected), 0.1 * expected) << name;
    }
    EXPECT_EQ(activeRows,
              active != 0 && std::any_of(list.begin(), list.end(), [](const RunningAppInfo& r) { return r.isActive; })
                  ? 1
                  : 0);
    // Helper processes count for their app; both terminals carry all terminal processes.
    for (const RunningAppInfo& row : list) {
        if (row.id == parent) {
            EXPECT_GT(*row.memoryBytes, 40ull << 20);
        }
        if (row.id == big) {
            EXPECT_GT(*row.memoryBytes, 60ull << 20);
        }
    }
    // Largest memory first; equal figures by name, case-insensitively.
    for (std::size_t i = 1; i < list.size(); ++i) {
        const auto a = list[i - 1].memoryBytes.value_or(0), b = list[i].memoryBytes.value_or(0);
        EXPECT_TRUE(a > b || (a == b && list[i - 1].name.compare(list[i].name, Qt::CaseInsensitive) <= 0))
            << i << ": " << list[i - 1].name.toStdString() << " before " << list[i].name.toStdString();
    }
}

TEST(ModelSettings, PreferencesSurviveARestartOfTheModel)
{
    {
        x11::X11Platform linux_;
        AppModel model(linux_.platform());
        AppPreferences::storeDefaultAction(linux_.platform().preferences, QStringLiteral("closeWindows"));
        AppPreferences::storeEnabledActions(linux_.platform().preferences,
                                            ActionSet{DefaultAction::hide, DefaultAction::closeWindows});
    }
    const std::string file = readText(dirs().configHome + "/Stowly/Stowly.conf");
    EXPECT_NE(file.find("defaultAction=closeWindows"), std::string::npos) << file;
    x11::X11Platform linux_;
    AppModel model(linux_.platform());
    EXPECT_EQ(model.preferredDefaultAction(), DefaultAction::closeWindows);
    EXPECT_EQ(AppPreferences::storedEnabledActions(linux_.platform().preferences), QStringLiteral("closeWindows,hide"));
}

TEST(ModelSettings, LaunchAtLoginWritesAndRemovesTheAutostartEntry)
{
    const std::string path = dirs().configHome + "/autostart/app.stowly.Stowly.desktop";
    struct stat st {};
    {
        x11::X11Platform linux_;
        AppModel model(linux_.platform());
        model.setLaunchAtLogin(true);
        EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Stowly will launch automatically when you sign in."));
        EXPECT_TRUE(model.launchesAtLogin());
        EXPECT_EQ(stat(path.c_str(), &st), 0);
    }
    {
        x11::X11Platform linux_;
        AppModel model(linux_.platform());
        EXPECT_TRUE(model.launchesAtLogin()) << "read back at start";
        model.setLaunchAtLogin(false);
        EXPECT_EQ(model.lastResultMessage(),
                  QStringLiteral("Stowly will no longer launch automatically when you sign in."));
        EXPECT_FALSE(model.launchesAtLogin());
        EXPECT_NE(stat(path.c_str(), &st), 0);
    }
    const std::string saved = getenv("XDG_CONFIG_HOME");
    const std::string broken = dirs().root + "/config-model-broken";
    mkdir(broken.c_str(), 0700);
    std::ofstream(broken + "/autostart") << "not a directory\n";
    setenv("XDG_CONFIG_HOME", broken.c_str(), 1);
    {
        x11::X11Platform linux_;
        AppModel model(linux_.platform());
        model.setLaunchAtLogin(true);
        EXPECT_EQ(model.lastResultMessage(), QStringLiteral("Could not update launch at login: Not a directory"));
        EXPECT_FALSE(model.launchesAtLogin());
    }
    setenv("XDG_CONFIG_HOME", saved.c_str(), 1);
}

namespace {

// Two lists that say the same: apps, order, names, states, icons and memory.
::testing::AssertionResult sameList(const std::vector<RunningAppInfo>& kept, const std::vector<RunningAppInfo>& fresh)
{
    if (kept.size() != fresh.size())
        return ::testing::AssertionFailure() << kept.size() << " rows against " << fresh.size() << " in a fresh read";
    for (std::size_t i = 0; i < kept.size(); ++i) {
        const RunningAppInfo& a = kept[i];
        const RunningAppInfo& b = fresh[i];
        const bool sameIcon = (!a.icon && !b.icon) ||
                              (a.icon && b.icon && a.icon->width == b.icon->width && a.icon->argb == b.icon->argb);
        if (a.id != b.id || a.name != b.name || a.isHidden != b.isHidden || a.isActive != b.isActive || !sameIcon ||
            a.memoryBytes != b.memoryBytes)
            return ::testing::AssertionFailure()
                   << "row " << i << ": " << a.id << " " << a.name.toStdString() << " " << a.status().toStdString()
                   << " " << a.memoryBytes.value_or(0) << (a.icon ? " icon" : "") << " against " << b.id << " "
                   << b.name.toStdString() << " " << b.status().toStdString() << " " << b.memoryBytes.value_or(0)
                   << (b.icon ? " icon" : "");
    }
    return ::testing::AssertionSuccess();
}

// The model's tick (which reuses what it read before) against a backend that has read
// nothing yet. Idle apps' memory can move between two reads: a difference is read again.
::testing::AssertionResult tickEqualsFreshRead(AppModel& model)
{
    ::testing::AssertionResult last = ::testing::AssertionSuccess();
    for (int attempt = 0; attempt < 10; ++attempt) {
        x11::X11Platform freshLinux;
        const AppModel fresh(freshLinux.platform());
        model.refreshSnapshot();
        last = sameList(model.runningApps(), fresh.runningApps());
        if (last)
            return last;
        usleep(100 * 1000);
    }
    return last;
}

} // namespace

TEST(OpenApps, EveryTickEqualsAFreshReadAsTheDesktopChanges)
{
    ASSERT_TRUE(sharedDisplay().ok());
    Apps apps;
    const int first = apps.startTestWindow("tick-first", {"--alloc-mb", "8", "--class", "tickfirst", "TickFirst"});
    const int second = apps.startTestWindow("tick-second", {"--class", "ticksecond", "TickSecond"});
    apps.startXterm("tick-term");
    for (const char* t : {"tick-first", "tick-second", "tick-term"})
        ASSERT_NE(waitForWindowTitled(t), 0u) << t;

    x11::X11Platform linux_;
    AppModel model(linux_.platform());
    EXPECT_TRUE(tickEqualsFreshRead(model)) << "at the start";
    EXPECT_TRUE(tickEqualsFreshRead(model)) << "with nothing changed";

    // A window minimized behind our back, then one hidden by us.
    run("xdotool windowminimize " + std::to_string(windowOfTitle("tick-second")));
    ASSERT_TRUE(waitUntil([] { return isIconic(windowOfTitle("tick-second")); }));
    EXPECT_TRUE(tickEqualsFreshRead(model)) << "after a minimize";
    const auto listed = model.runningApps();
    const auto firstRow =
        std::find_if(listed.begin(), listed.end(), [&](const RunningAppInfo& r) { return r.id == first; });
    ASSERT_NE(firstRow, listed.end());
    model.openApp(*firstRow);
    EXPECT_TRUE(tickEqualsFreshRead(model)) << "after an activation";

    // An app leaves, another arrives (possibly under a reused window id).
    kill(second);
    ASSERT_TRUE(waitUntil([] { return windowOfTitle("tick-second") == 0; }));
    EXPECT_TRUE(tickEqualsFreshRead(model)) << "after an app left";
    apps.startTestWindow("tick-third", {"--class", "tickthird", "TickThird"});
    ASSERT_NE(waitForWindowTitled("tick-third"), 0u);
    EXPECT_TRUE(tickEqualsFreshRead(model)) << "after an app arrived";

    // A window renamed in place: its row's name comes from the class, which stays.
    run("xdotool set_window --name tick-first-renamed " + std::to_string(windowOfTitle("tick-first")));
    ASSERT_TRUE(waitUntil([] { return windowOfTitle("tick-first-renamed") != 0; }));
    EXPECT_TRUE(tickEqualsFreshRead(model)) << "after a rename";

    // A process named like the first app counts into its memory; once it has exited, its
    // pid goes to a process of another name (the kernel is asked for that pid), which
    // must not.
    const std::string bin = dirs().root + "/tick-bin";
    mkdir(bin.c_str(), 0700);
    for (const char* name : {"tickfirst", "tickother"})
        symlink("/bin/sleep", (bin + "/" + name).c_str());
    const int namesake = spawn({bin + "/tickfirst", "1000"});
    ASSERT_GT(namesake, 0);
    ASSERT_TRUE(waitUntil([&] { return readText("/proc/" + std::to_string(namesake) + "/comm") == "tickfirst\n"; }));
    EXPECT_TRUE(tickEqualsFreshRead(model)) << "with a namesake process";
    kill(namesake);
    int successor = -1;
    bool mayChoosePids = true;
    for (int attempt = 0; attempt < 200 && successor != namesake && mayChoosePids; ++attempt) {
        if (successor > 0)
            kill(successor);
        std::ofstream lastPid("/proc/sys/kernel/ns_last_pid");
        lastPid << namesake - 1 << std::flush;
        mayChoosePids = static_cast<bool>(lastPid); // needs CAP_SYS_ADMIN (or CAP_CHECKPOINT_RESTORE)
        lastPid.close();
        successor = spawn({bin + "/tickother", "1000"});
    }
    if (successor == namesake) {
        ASSERT_TRUE(
            waitUntil([&] { return readText("/proc/" + std::to_string(successor) + "/comm") == "tickother\n"; }));
        EXPECT_TRUE(tickEqualsFreshRead(model)) << "after the pid went to another process";
    } else if (mayChoosePids) {
        ADD_FAILURE() << "pid " << namesake << " could not be had again in 200 attempts";
    } else {
        std::printf("[note] /proc/sys/kernel/ns_last_pid is not writable here: the reused pid is not checked\n");
    }
    if (successor > 0)
        kill(successor);
}
