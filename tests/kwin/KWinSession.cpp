// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "KWinSession.h"

#include "TestBed.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <set>
#include <sstream>
#include <thread>

namespace stowly::kwintest {

using namespace std::chrono_literals;
namespace tb = stowly::testbed;

namespace {

std::string ownExecutable()
{
    char path[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    return n > 0 ? std::string(path, static_cast<std::size_t>(n)) : std::string();
}

std::string firstLine(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

// dbus-daemon may warn on the same stream (an fd limit it cannot raise); the address is
// the line that names a socket.
std::string busAddress(const std::string& output)
{
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("unix:", 0) == 0)
            return line;
    }
    return {};
}

} // namespace

KWinSession::KWinSession(const std::string& buildDir, bool grantSelf) : m_folder(buildDir, "stowly-kwin")
{
    if (!m_folder.ok()) {
        m_error = "cannot make a temporary folder";
        return;
    }
    const std::string& runtime = m_folder.runtime();
    const std::string dataHome = root() + "/data";
    for (const std::string& dir : {dataHome, dataHome + "/applications", root() + "/config"})
        mkdir(dir.c_str(), 0700);
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    setenv("XDG_DATA_HOME", dataHome.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (root() + "/config").c_str(), 1);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");

    // KWin grants the interface when the entry's Exec is the client's executable, byte for byte.
    if (grantSelf) {
        tb::writeFile(dataHome + "/applications/org.stowly.KWinTests.desktop",
                      "[Desktop Entry]\nType=Application\nName=Stowly KWin tests\nNoDisplay=true\nExec=" +
                          ownExecutable() + "\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n");
    }

    // Qt gives a native window its executable's name as app id when nothing else is set.
    tb::writeFile(dataHome + "/applications/stowly_wltestwin.desktop",
                  "[Desktop Entry]\nType=Application\nName=Wayland Test Window\nExec=stowly_wltestwin\n");
    // GTK reports its application id as the app id.
    tb::writeFile(dataHome + "/applications/org.stowly.GtkTestWindow.desktop",
                  "[Desktop Entry]\nType=Application\nName=GTK Test Window\nExec=gtk_testwin.py\n");

    const std::string busAddressFile = root() + "/bus-address";
    m_dbus = tb::spawn({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"}, busAddressFile);
    if (!tb::waitUntil([&] { return !busAddress(tb::readText(busAddressFile)).empty(); }, 10s)) {
        m_error = "dbus-daemon did not start";
        return;
    }
    setenv("DBUS_SESSION_BUS_ADDRESS", busAddress(tb::readText(busAddressFile)).c_str(), 1);

    // The installed binary carries file capabilities that a sandbox may refuse to exec; a copy
    // carries none.
    const std::string kwin = root() + "/kwin_wayland";
    tb::run("cp /usr/bin/kwin_wayland '" + kwin + "'");
    // KWin starts the positional program inside the session; it reports the Xwayland display.
    const std::string reporter = root() + "/report-display";
    // It stays (KWin's session program) and outlives KWin, so it leaves its pid for the stop.
    tb::writeFile(reporter, "#!/bin/sh\necho $$ > '" + root() + "/reporter-pid'\necho \"$DISPLAY\" > '" + root() +
                                "/x11-display'\nexec sleep 100000\n");
    chmod(reporter.c_str(), 0755);

    m_socket = "stowly-kwin-" + std::to_string(getpid());
    m_kwinLog = root() + "/kwin.log";
    m_kwin = tb::spawn({kwin, "--virtual", "--no-lockscreen", "--xwayland", "--socket", m_socket, "--width", "1280",
                        "--height", "800", reporter},
                       m_kwinLog);
    if (!tb::waitUntil([&] { return access((runtime + "/" + m_socket).c_str(), F_OK) == 0; }, 20s)) {
        m_error = "kwin_wayland did not open its socket; its log: " + tb::readText(m_kwinLog);
        return;
    }
    if (!tb::waitUntil([&] { return !firstLine(tb::readText(root() + "/x11-display")).empty(); }, 20s)) {
        m_error = "Xwayland did not come up; KWin's log: " + tb::readText(m_kwinLog);
        return;
    }
    m_x11Display = firstLine(tb::readText(root() + "/x11-display"));
    // KWin answers on D-Bus once its scripting is up.
    if (!tb::waitUntil(
            [&] {
                return tb::run("dbus-send --session --print-reply --dest=org.kde.KWin /Scripting "
                               "org.freedesktop.DBus.Peer.Ping 2>/dev/null")
                           .find("method return") != std::string::npos;
            },
            20s)) {
        m_error = "KWin is not on the session bus";
        return;
    }
    setenv("WAYLAND_DISPLAY", m_socket.c_str(), 1);
    m_ok = true;
}

void KWinSession::grant(const std::string& program)
{
    const std::string name = "org.stowly.Granted" + std::to_string(++m_scriptSerial) + ".desktop";
    tb::writeFile(root() + "/data/applications/" + name,
                  "[Desktop Entry]\nType=Application\nName=Granted\nNoDisplay=true\nExec=" + program +
                      "\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n");
    std::this_thread::sleep_for(2s);
}

KWinSession::~KWinSession()
{
    for (int pid : m_apps)
        tb::kill(pid);
    stopCompositor();
    tb::kill(m_dbus);
    if (!m_ok)
        m_folder.keep();
}

void KWinSession::stopCompositor()
{
    if (m_kwin <= 0)
        return;
    ::kill(m_kwin, SIGTERM);
    if (!tb::waitUntil([&] { return tb::reapIfExited(m_kwin); }, 5s))
        tb::kill(m_kwin);
    m_kwin = -1;
    // Not our child: it was KWin's. Its name tells that the pid is still the reporter's.
    const int reporter = std::atoi(firstLine(tb::readText(root() + "/reporter-pid")).c_str());
    if (reporter > 0 && tb::readText("/proc/" + std::to_string(reporter) + "/comm") == "sleep\n")
        ::kill(reporter, SIGKILL);
}

void KWinSession::endApps()
{
    const std::set<int> ended(m_apps.begin(), m_apps.end());
    for (const int pid : m_apps)
        tb::kill(pid);
    m_apps.clear();
    if (ended.empty() || m_kwin <= 0)
        return;
    tb::waitUntil([&] {
        for (const ScriptedWindow& window : scriptedWindows()) {
            if (ended.count(window.pid) != 0)
                return false;
        }
        return true;
    });
}

int KWinSession::startNative(const std::string& title, const std::vector<std::string>& extra)
{
    std::vector<std::string> argv{STOWLY_WLTESTWIN_PATH, "--title", title};
    argv.insert(argv.end(), extra.begin(), extra.end());
    setenv("QT_QPA_PLATFORM", "wayland", 1);
    const int pid = tb::spawn(argv, root() + "/apps.log");
    unsetenv("QT_QPA_PLATFORM");
    m_apps.push_back(pid);
    return pid;
}

int KWinSession::startXterm(const std::string& title)
{
    setenv("DISPLAY", m_x11Display.c_str(), 1);
    const int pid = tb::spawn({"xterm", "-T", title, "-e", "sleep", "100000"}, root() + "/apps.log");
    unsetenv("DISPLAY");
    m_apps.push_back(pid);
    return pid;
}

int KWinSession::startGtk(const std::string& title)
{
    setenv("GDK_BACKEND", "wayland", 1);
    const int pid = tb::spawn({"/usr/bin/python3", STOWLY_GTKTESTWIN_PATH, title}, root() + "/apps.log");
    unsetenv("GDK_BACKEND");
    m_apps.push_back(pid);
    return pid;
}

int KWinSession::xwaylandPid() const
{
    for (const int pid : tb::allProcesses()) {
        if (tb::parentOf(pid) == m_kwin && tb::readText("/proc/" + std::to_string(pid) + "/comm") == "Xwayland\n")
            return pid;
    }
    return 0;
}

std::optional<ScriptedWindow> KWinSession::scriptedWindow(const std::string& caption)
{
    for (const ScriptedWindow& window : scriptedWindows()) {
        if (window.caption == caption)
            return window;
    }
    return std::nullopt;
}

int KWinSession::startX11TestWindow(const std::string& title, const std::vector<std::string>& extra)
{
    std::vector<std::string> argv{STOWLY_TESTWIN_PATH, "--title", title};
    argv.insert(argv.end(), extra.begin(), extra.end());
    setenv("DISPLAY", m_x11Display.c_str(), 1);
    const int pid = tb::spawn(argv, root() + "/apps.log");
    unsetenv("DISPLAY");
    m_apps.push_back(pid);
    return pid;
}

std::vector<ScriptedWindow> KWinSession::scriptedWindows()
{
    const std::string marker = "stowly-probe-" + std::to_string(++m_scriptSerial);
    const std::string script = root() + "/" + marker + ".js";
    tb::writeFile(script, "var list = workspace.clientList();\n"
                          "for (var i = 0; i < list.length; ++i) {\n"
                          "    var c = list[i];\n"
                          "    print('" +
                              marker +
                              "|' + c.pid + '|' + c.minimized + '|' + c.active + '|' + c.caption);\n"
                              "}\n"
                              "print('" +
                              marker + "|end');\n");
    const std::string reply = tb::run("dbus-send --session --print-reply --dest=org.kde.KWin /Scripting "
                                      "org.kde.kwin.Scripting.loadScript string:'" +
                                      script + "' string:'" + marker + "' 2>&1");
    const auto at = reply.find("int32 ");
    if (at == std::string::npos)
        return {};
    const std::string id = std::to_string(std::atoi(reply.c_str() + at + 6));
    tb::run("dbus-send --session --print-reply --dest=org.kde.KWin /" + id +
            " org.kde.kwin.Script.run >/dev/null 2>&1");
    std::vector<ScriptedWindow> windows;
    tb::waitUntil([&] { return tb::readText(m_kwinLog).find(marker + "|end") != std::string::npos; }, 5s);
    std::istringstream log(tb::readText(m_kwinLog));
    for (std::string line; std::getline(log, line);) {
        const auto start = line.find(marker + "|");
        if (start == std::string::npos || line.find(marker + "|end") != std::string::npos)
            continue;
        std::istringstream fields(line.substr(start + marker.size() + 1));
        std::string pid, minimized, active, caption;
        std::getline(fields, pid, '|');
        std::getline(fields, minimized, '|');
        std::getline(fields, active, '|');
        std::getline(fields, caption);
        windows.push_back({std::atoi(pid.c_str()), minimized == "true", active == "true", caption});
    }
    tb::run("dbus-send --session --dest=org.kde.KWin /Scripting org.kde.kwin.Scripting.unloadScript string:'" + marker +
            "' >/dev/null 2>&1");
    return windows;
}

} // namespace stowly::kwintest
