// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TestBed.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>
#include <thread>

namespace stowly::testbed {

namespace {

// One flag per possible pid, made once: the bookkeeping of a long soak that starts tens of
// thousands of children must not grow in the process whose memory the soak measures.
class ReapedPids {
public:
    ReapedPids()
    {
        long max = 0;
        if (std::FILE* f = std::fopen("/proc/sys/kernel/pid_max", "r")) {
            if (std::fscanf(f, "%ld", &max) != 1)
                max = 0;
            std::fclose(f);
        }
        m_flags.assign(static_cast<std::size_t>(max > 0 && max <= (1L << 22) ? max : (1L << 22)) + 1, false);
    }
    bool count(int pid) const { return in(pid) && m_flags[static_cast<std::size_t>(pid)]; }
    void insert(int pid)
    {
        if (in(pid))
            m_flags[static_cast<std::size_t>(pid)] = true;
    }
    void erase(int pid)
    {
        if (in(pid))
            m_flags[static_cast<std::size_t>(pid)] = false;
    }

private:
    bool in(int pid) const { return pid > 0 && static_cast<std::size_t>(pid) < m_flags.size(); }
    std::vector<bool> m_flags;
};

ReapedPids& reaped()
{
    static ReapedPids pids;
    return pids;
}

Dirs g_dirs;

} // namespace

int spawn(const std::vector<std::string>& argv, const std::string& logFile)
{
    if (argv.empty())
        return -1;
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid < 0)
        return -1;
    if (pid == 0) {
        // Dies with the test, whatever way the test ends.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(127);
        const int out = open(logFile.empty() ? "/dev/null" : logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        if (out >= 0) {
            dup2(out, 1);
            dup2(out, 2);
        }
        std::vector<char*> args;
        for (const std::string& a : argv)
            args.push_back(const_cast<char*>(a.c_str()));
        args.push_back(nullptr);
        execvp(args[0], args.data());
        _exit(127);
    }
    reaped().erase(pid);
    return pid;
}

bool reapIfExited(int pid)
{
    if (pid <= 0 || reaped().count(pid) != 0)
        return true;
    int status = 0;
    const pid_t r = waitpid(pid, &status, WNOHANG);
    if (r == pid || (r < 0 && errno == ECHILD)) {
        reaped().insert(pid);
        return true;
    }
    return false;
}

void kill(int pid)
{
    if (pid <= 0 || reapIfExited(pid))
        return;
    ::kill(pid, SIGKILL);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    reaped().insert(pid);
}

bool processGone(int pid)
{
    if (reapIfExited(pid))
        return true;
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text;
    if (!std::getline(stat, text))
        return true;
    const auto paren = text.rfind(')');
    return paren != std::string::npos && paren + 2 < text.size() && text[paren + 2] == 'Z';
}

bool waitUntil(const std::function<bool()>& pred, std::chrono::milliseconds deadline)
{
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (true) {
        if (pred())
            return true;
        if (std::chrono::steady_clock::now() >= end)
            return pred();
        std::this_thread::sleep_for(20ms);
    }
}

std::string run(const std::string& command)
{
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return out;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        out.append(buffer, n);
    pclose(pipe);
    return out;
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream out(path);
    out << text;
}

std::string softOpenFileLimit(const std::string& limits)
{
    const std::string field = "Max open files";
    const auto at = limits.find(field);
    if (at == std::string::npos)
        return {};
    std::istringstream fields(limits.substr(at + field.size()));
    std::string soft;
    fields >> soft;
    return soft;
}

std::string readText(const std::string& path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

namespace {

// Display numbers some X server already listens on, by filesystem or abstract socket.
// Lock files alone do not tell: another sandbox may have its own /tmp but share our
// abstract socket namespace, and clients try the abstract socket first.
std::set<int> displaysInUse()
{
    std::set<int> used;
    std::ifstream sockets("/proc/net/unix");
    std::string line;
    const std::string marker = "/tmp/.X11-unix/X";
    while (std::getline(sockets, line)) {
        const auto at = line.find(marker);
        if (at != std::string::npos)
            used.insert(std::atoi(line.c_str() + at + marker.size()));
    }
    for (int n = 0; n < 1000; ++n) {
        struct stat st {};
        if (stat(("/tmp/.X" + std::to_string(n) + "-lock").c_str(), &st) == 0)
            used.insert(n);
    }
    return used;
}

} // namespace

Display::Display(bool withWindowManager, const std::vector<std::string>& serverOptions)
{
    const std::set<int> used = displaysInUse();
    int candidate = 100 + static_cast<int>(getpid() % 700);
    for (int attempt = 0; attempt < 20 && m_name.empty(); ++attempt, ++candidate) {
        while (used.count(candidate) != 0)
            ++candidate;
        int fds[2];
        if (pipe(fds) != 0)
            return;
        const std::string fd = std::to_string(fds[1]);
        const std::string display = ":" + std::to_string(candidate);
        const pid_t parent = getpid();
        m_xvfb = fork();
        if (m_xvfb == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (getppid() != parent)
                _exit(127);
            close(fds[0]);
            const int null = open("/dev/null", O_WRONLY);
            dup2(null, 1);
            dup2(null, 2);
            std::vector<std::string> args = {"Xvfb", display,   "-displayfd", fd,           "-nolisten",
                                             "tcp",  "-screen", "0",          "1280x800x24"};
            args.insert(args.end(), serverOptions.begin(), serverOptions.end());
            std::vector<char*> argv;
            for (auto& a : args)
                argv.push_back(a.data());
            argv.push_back(nullptr);
            execvp("Xvfb", argv.data());
            _exit(127);
        }
        close(fds[1]);
        std::string number;
        char ch;
        // Xvfb writes the display number and a newline once it accepts connections, and
        // closes the pipe without a word when it cannot take that display.
        while (read(fds[0], &ch, 1) == 1 && ch != '\n')
            number += ch;
        close(fds[0]);
        if (number.empty()) {
            kill(m_xvfb);
            m_xvfb = -1;
            continue;
        }
        m_name = ":" + number;
    }
    if (m_name.empty())
        return;
    if (!withWindowManager) {
        m_ok = true;
        return;
    }
    setenv("DISPLAY", m_name.c_str(), 1);
    m_ok = startWindowManager();
}

bool Display::startWindowManager()
{
    // The apps under test see only our own desktop entries; openbox needs the system's
    // data directories for its theme. `env` execs openbox, so the pid stays openbox's.
    // An openbox that has not announced itself within 10 s (seen once, in a sanitizer run)
    // is replaced rather than waited for.
    bool announced = false;
    for (int attempt = 0; attempt < 3 && !announced; ++attempt) {
        if (m_wm > 0)
            kill(m_wm);
        m_wm = spawn({"env", "XDG_DATA_DIRS=/usr/local/share:/usr/share", "openbox", "--sm-disable"});
        announced = waitUntil(
            [&] { return xpropRoot("_NET_SUPPORTING_WM_CHECK").find("window id") != std::string::npos; }, 10s);
    }
    if (!announced)
        return false;
    // openbox announces itself before it handles map requests, and a window mapped in
    // between stays unmapped for good: only a probe window it manages proves it ready.
    for (int attempt = 0; attempt < 10; ++attempt)
        if (probeManaged(3s))
            return true;
    return false;
}

bool Display::probeManaged(std::chrono::milliseconds deadline)
{
    const auto probeVisible = [] {
        for (const auto& w : wmctrlWindows())
            if (w.title == "stowly-wm-probe")
                return true;
        return false;
    };
    const int probe = spawn({testWindowProgram(), "--title", "stowly-wm-probe"});
    const bool managed = waitUntil(probeVisible, deadline);
    kill(probe);
    waitUntil([&] { return !probeVisible(); });
    return managed;
}

bool Display::ensureWindowManager()
{
    if (m_wm <= 0 || m_xvfb <= 0)
        return m_ok;
    if (!processGone(m_wm) && probeManaged(5s))
        return true;
    // Seen once under the sanitizers: openbox alive but no longer managing new windows.
    // Say what state it was in, then start a fresh one so that the following tests
    // measure our code, not a stuck window manager.
    const std::string stat = readText("/proc/" + std::to_string(m_wm) + "/stat");
    const std::string wchan = readText("/proc/" + std::to_string(m_wm) + "/wchan");
    std::fprintf(stderr, "test bed: openbox (pid %d) stopped managing windows; stat: %s wchan: %s; restarting it\n",
                 m_wm, stat.c_str(), wchan.c_str());
    kill(m_wm);
    m_wm = -1;
    m_ok = startWindowManager();
    return m_ok;
}

void Display::killServer()
{
    kill(m_wm);
    kill(m_xvfb);
    m_wm = m_xvfb = -1;
}

Display::~Display()
{
    killServer();
}

const Dirs& dirs()
{
    return g_dirs;
}

void prepareEnvironment(const std::string& buildDir)
{
    char pattern[4096];
    std::snprintf(pattern, sizeof pattern, "%s/stowly-linux-test-XXXXXX", buildDir.c_str());
    const char* root = mkdtemp(pattern);
    g_dirs.root = root != nullptr ? root : "/tmp";
    g_dirs.dataHome = g_dirs.root + "/data-home";
    g_dirs.dataDir = g_dirs.root + "/data";
    g_dirs.configHome = g_dirs.root + "/config";
    for (const std::string& d : {g_dirs.dataHome, g_dirs.dataHome + "/applications", g_dirs.dataDir,
                                 g_dirs.dataDir + "/applications", g_dirs.configHome})
        mkdir(d.c_str(), 0700);
    setenv("XDG_DATA_HOME", g_dirs.dataHome.c_str(), 1);
    setenv("XDG_DATA_DIRS", g_dirs.dataDir.c_str(), 1);
    setenv("XDG_CONFIG_HOME", g_dirs.configHome.c_str(), 1);
    unsetenv("LC_ALL");
    unsetenv("LC_MESSAGES");
    setenv("LANG", "C.UTF-8", 1);
    writeFile(g_dirs.dataDir + "/applications/org.stowly.TestTerminal.desktop",
              "[Desktop Entry]\nType=Application\nName=Test Terminal\nName[de]=Testterminal\n"
              "Name[de_AT]=Testterminal (AT)\nExec=xterm\nStartupWMClass=XTerm\n");
    writeFile(g_dirs.dataDir + "/applications/org.stowly.GtkProbe.desktop",
              "[Desktop Entry]\nType=Application\nName=Gtk Probe\nExec=true\n"
              "[Desktop Action new]\nName=Not this one\n");
    writeFile(g_dirs.dataHome + "/applications/classmatch.desktop",
              "[Desktop Entry]\nType=Application\nName=Class Match\nExec=true\n");
    writeFile(g_dirs.dataDir + "/applications/classmatch.desktop",
              "[Desktop Entry]\nType=Application\nName=Shadowed\nExec=true\n");
}

std::string testWindowProgram()
{
    return STOWLY_TESTWIN_PATH;
}

std::vector<WmctrlWindow> wmctrlWindows(const std::string& display)
{
    std::vector<WmctrlWindow> out;
    const std::string prefix = display.empty() ? "" : "DISPLAY=" + display + " ";
    std::istringstream lines(run(prefix + "wmctrl -lp 2>/dev/null"));
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        WmctrlWindow w;
        std::string desktop, host;
        long long pid = 0; // a client may put any number there
        if (!(fields >> w.id >> desktop >> pid >> host))
            continue;
        w.pid = pid > 0 && pid <= 0x7fffffff ? static_cast<int>(pid) : 0;
        std::getline(fields, w.title);
        if (!w.title.empty() && w.title.front() == ' ')
            w.title.erase(0, 1);
        w.window = static_cast<std::uint32_t>(std::stoul(w.id, nullptr, 16));
        out.push_back(w);
    }
    return out;
}

std::string xprop(std::uint32_t window, const std::string& property, const std::string& display)
{
    const std::string prefix = display.empty() ? "" : "DISPLAY=" + display + " ";
    return run(prefix + "xprop -id " + std::to_string(window) + " " + property + " 2>&1");
}

std::string xpropRoot(const std::string& property, const std::string& display)
{
    const std::string prefix = display.empty() ? "" : "DISPLAY=" + display + " ";
    return run(prefix + "xprop -root " + property + " 2>&1");
}

bool isIconic(std::uint32_t window)
{
    return xprop(window, "WM_STATE").find("window state: Iconic") != std::string::npos;
}

std::uint32_t activeWindow()
{
    const std::string line = xpropRoot("_NET_ACTIVE_WINDOW");
    const auto hash = line.find("# ");
    if (hash == std::string::npos)
        return 0;
    return static_cast<std::uint32_t>(std::strtoul(line.c_str() + hash + 2, nullptr, 16));
}

Apps::~Apps()
{
    killAll();
}

int Apps::start(const std::vector<std::string>& argv)
{
    const int pid = spawn(argv);
    if (pid > 0)
        m_pids.push_back(pid);
    return pid;
}

int Apps::startXterm(const std::string& title)
{
    return start({"xterm", "-T", title, "-class", "XTerm", "-e", "sleep", "100000"});
}

int Apps::startTestWindow(const std::string& title, std::vector<std::string> args)
{
    std::vector<std::string> argv{testWindowProgram(), "--title", title};
    argv.insert(argv.end(), args.begin(), args.end());
    return start(argv);
}

void Apps::killAll()
{
    for (const int pid : m_pids)
        kill(pid);
    m_pids.clear();
}

std::uint32_t waitForWindowTitled(const std::string& title, std::chrono::milliseconds deadline)
{
    std::uint32_t found = 0;
    waitUntil(
        [&] {
            for (const auto& w : wmctrlWindows())
                if (w.title.find(title) != std::string::npos) {
                    found = w.window;
                    return true;
                }
            return false;
        },
        deadline);
    return found;
}

bool waitForWindowCount(const std::string& title, std::size_t count, std::chrono::milliseconds deadline)
{
    return waitUntil(
        [&] {
            std::size_t n = 0;
            for (const auto& w : wmctrlWindows())
                if (w.title.find(title) != std::string::npos)
                    ++n;
            return n == count;
        },
        deadline);
}

std::optional<std::uint64_t> footprintOf(int pid)
{
    std::istringstream lines(readText("/proc/" + std::to_string(pid) + "/status"));
    std::string line;
    std::uint64_t kb = 0;
    bool any = false;
    while (std::getline(lines, line)) {
        for (const char* key : {"RssAnon:", "RssShmem:", "VmSwap:"}) {
            if (line.rfind(key, 0) == 0) {
                kb += std::strtoull(line.c_str() + std::strlen(key), nullptr, 10);
                any = true;
            }
        }
    }
    if (!any)
        return std::nullopt;
    return kb * 1024;
}

int parentOf(int pid)
{
    std::istringstream lines(readText("/proc/" + std::to_string(pid) + "/status"));
    std::string line;
    while (std::getline(lines, line))
        if (line.rfind("PPid:", 0) == 0)
            return std::atoi(line.c_str() + 5);
    return -1;
}

std::vector<int> allProcesses()
{
    std::vector<int> pids;
    DIR* d = opendir("/proc");
    if (d == nullptr)
        return pids;
    while (dirent* e = readdir(d)) {
        char* end = nullptr;
        const long v = std::strtol(e->d_name, &end, 10);
        if (end != e->d_name && *end == '\0' && v > 0)
            pids.push_back(static_cast<int>(v));
    }
    closedir(d);
    return pids;
}

} // namespace stowly::testbed
