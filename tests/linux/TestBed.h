// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// A private X display for the backend tests: Xvfb on a display number it picks itself,
// openbox as the EWMH window manager, and the apps each test starts. Every process
// started here is our child with a known pid, dies with us (PR_SET_PDEATHSIG) and is
// ended and reaped by the test that started it.

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace stowly::testbed {

using namespace std::chrono_literals;

// Starts argv[0] with PATH lookup; stdout/stderr go to logFile (or /dev/null).
// Returns the child's pid, or -1.
int spawn(const std::vector<std::string>& argv, const std::string& logFile = {});
// SIGKILL (if still running) and reap. Safe on pids that already exited.
void kill(int pid);
// Reaps the child if it exited; true when it is gone (reaped now or before).
bool reapIfExited(int pid);
// A process is gone when it no longer exists or is a zombie.
bool processGone(int pid);

// Polls pred every 20 ms until it holds or the deadline passes; answers the last result.
bool waitUntil(const std::function<bool()>& pred, std::chrono::milliseconds deadline = 10s);

// Runs a command line through /bin/sh and answers its standard output.
std::string run(const std::string& command);
// The whole file, or "" when it cannot be read.
std::string readText(const std::string& path);
void writeFile(const std::string& path, const std::string& text);
// The soft "Max open files" of a /proc/PID/limits text; "" when absent.
std::string softOpenFileLimit(const std::string& limits);

// A private display with openbox; DISPLAY is set for this process and its children.
class Display {
public:
    // withWindowManager false: a bare X server (for trust and lost-connection tests).
    // serverOptions are added to Xvfb's command line (e.g. "-extension", "X-Resource").
    explicit Display(bool withWindowManager = true, const std::vector<std::string>& serverOptions = {});
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    bool ok() const { return m_ok; }
    const std::string& name() const { return m_name; }
    int serverPid() const { return m_xvfb; }
    int windowManagerPid() const { return m_wm; }
    void killServer();
    // Proves with a probe window that the window manager still manages new windows, and
    // starts a fresh one when it does not; false when no working one could be had.
    bool ensureWindowManager();

private:
    bool startWindowManager();
    bool probeManaged(std::chrono::milliseconds deadline);

    bool m_ok = false;
    std::string m_name;
    int m_xvfb = -1;
    int m_wm = -1;
};

// The test-owned temporary tree: XDG data (desktop entries), config (autostart, settings).
struct Dirs {
    std::string root, dataHome, dataDir, configHome;
};
const Dirs& dirs();
// Builds the tree and points the XDG variables at it; call before any QSettings use.
void prepareEnvironment(const std::string& buildDir);

// The path of our test client program.
std::string testWindowProgram();

// ---- Looking at the display from outside our code --------------------------------

struct WmctrlWindow {
    std::string id; // hex, as wmctrl prints it
    std::uint32_t window = 0;
    int pid = 0; // _NET_WM_PID or 0
    std::string title;
};
// wmctrl -lp: the managed windows in client-list order.
std::vector<WmctrlWindow> wmctrlWindows(const std::string& display = {});
// xprop -id W -notype PROP: the raw line, empty when unset.
std::string xprop(std::uint32_t window, const std::string& property, const std::string& display = {});
std::string xpropRoot(const std::string& property, const std::string& display = {});
bool isIconic(std::uint32_t window); // ICCCM WM_STATE says Iconic
std::uint32_t activeWindow();

// Apps a test started, ended when the owner goes away.
class Apps {
public:
    ~Apps();
    int start(const std::vector<std::string>& argv);
    // xterm running `sleep`, with a unique title.
    int startXterm(const std::string& title);
    // Our test client; --title is added.
    int startTestWindow(const std::string& title, std::vector<std::string> args = {});
    void killAll();
    const std::vector<int>& pids() const { return m_pids; }

private:
    std::vector<int> m_pids;
};

// Waits until the WM manages a window whose title contains `title`; its X id, or 0.
std::uint32_t waitForWindowTitled(const std::string& title, std::chrono::milliseconds deadline = 15s);
// Waits until `count` windows whose title contains `title` are managed.
bool waitForWindowCount(const std::string& title, std::size_t count, std::chrono::milliseconds deadline = 15s);

// Independent memory reading: RssAnon + RssShmem + VmSwap of /proc/PID/status, in bytes.
std::optional<std::uint64_t> footprintOf(int pid);
int parentOf(int pid);
std::vector<int> allProcesses();

} // namespace stowly::testbed
