// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Soak and scale runs of Stowly's one-second refresh, ticked as fast as it goes.
//
//   stowly_soak [--ticks N] [--apps N] [--csv FILE] [--svg FILE]
//       Apps churn (killed, started, minimized, hidden, reopened) while the model ticks;
//       resident and private memory, open descriptors and the X resources of Stowly's
//       connection are sampled. After warm-up they must stay flat.
//   stowly_soak --scale [--windows 2000] [--processes 300] [--idle 5000]
//       The tick over many windows and processes: its time (a figure, not a test) and
//       whether the list it gives is right.

#include "AppModel.h"
#include "Observer.h"
#include "TestBed.h"
#include "X11Platform.h"
#include "XConnection.h"

#include <QCoreApplication>

#include <xcb/res.h>

#include <dirent.h>
#include <malloc.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace std::chrono_literals;
using namespace stowly;
namespace tb = stowly::testbed;

namespace {

struct Sample {
    long tick = 0;
    double seconds = 0;
    long rssKb = 0;
    long privateKb = 0; // RssAnon
    long heapKb = 0;    // allocated and not freed: grows with a leak, not with fragmentation
    long fds = 0;
    long xResources = 0; // every resource our X client owns
    long processes = 0;  // on the whole machine: the process table keeps a file open per process
    long descriptorsBeyondProcesses = 0;
};

long statusKb(const char* key)
{
    std::ifstream in("/proc/self/status");
    std::string line;
    const std::string prefix = std::string(key) + ":";
    while (std::getline(in, line))
        if (line.rfind(prefix, 0) == 0)
            return std::atol(line.c_str() + prefix.size());
    return -1;
}

long processCount()
{
    long count = 0;
    if (DIR* d = opendir("/proc")) {
        while (dirent* e = readdir(d))
            count += e->d_name[0] >= '0' && e->d_name[0] <= '9';
        closedir(d);
    }
    return count;
}

struct Descriptors {
    long open = 0;
    long keptForProcesses = 0; // /proc/PID files and pidfds the process walk keeps between ticks
};

Descriptors openDescriptors()
{
    Descriptors count;
    if (DIR* d = opendir("/proc/self/fd")) {
        const int own = dirfd(d);
        while (dirent* e = readdir(d)) {
            if (e->d_name[0] == '.' || std::atoi(e->d_name) == own)
                continue;
            ++count.open;
            char target[256];
            const ssize_t n = readlinkat(own, e->d_name, target, sizeof target - 1);
            if (n <= 0)
                continue;
            target[n] = '\0';
            const bool perProcess = (std::strncmp(target, "/proc/", 6) == 0 && target[6] >= '0' && target[6] <= '9') ||
                                    std::strcmp(target, "anon_inode:[pidfd]") == 0;
            count.keptForProcesses += perProcess ? 1 : 0;
        }
        closedir(d);
    }
    return count;
}

// XRes: the resources of the client whose ids start at our connection's base.
long xResourcesOf(xcb_connection_t* c)
{
    if (c == nullptr || xcb_connection_has_error(c))
        return -1;
    const std::uint32_t base = xcb_get_setup(c)->resource_id_base;
    xcb_res_query_clients_reply_t* clients = xcb_res_query_clients_reply(c, xcb_res_query_clients(c), nullptr);
    if (clients == nullptr)
        return -1;
    long total = -1;
    for (auto it = xcb_res_query_clients_clients_iterator(clients); it.rem > 0; xcb_res_client_next(&it)) {
        if (it.data->resource_base != base)
            continue;
        xcb_res_query_client_resources_reply_t* resources =
            xcb_res_query_client_resources_reply(c, xcb_res_query_client_resources(c, base), nullptr);
        if (resources != nullptr) {
            total = 0;
            for (auto r = xcb_res_query_client_resources_types_iterator(resources); r.rem > 0; xcb_res_type_next(&r))
                total += r.data->count;
            std::free(resources);
        }
    }
    std::free(clients);
    return total;
}

void writeSvg(const std::string& path, const std::vector<Sample>& samples)
{
    if (samples.empty())
        return;
    struct Series {
        const char* name;
        const char* colour;
        long Sample::*field;
    };
    const Series series[] = {{"resident kB", "#1f77b4", &Sample::rssKb},
                             {"private kB", "#2ca02c", &Sample::privateKb},
                             {"heap in use kB", "#ff7f0e", &Sample::heapKb},
                             // Raw descriptors follow the machine's process count (the files and
                             // pidfds the process walk keeps per process): the rest is ours.
                             {"descriptors beyond per-process files", "#d62728", &Sample::descriptorsBeyondProcesses},
                             {"X resources", "#9467bd", &Sample::xResources}};
    const int width = 720, rowHeight = 120, left = 70, right = 20;
    std::ofstream out(path);
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\""
        << rowHeight * static_cast<int>(std::size(series)) + 30
        << "\" font-family=\"sans-serif\" font-size=\"11\">\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    const double lastTick = static_cast<double>(std::max<long>(1, samples.back().tick));
    for (std::size_t s = 0; s < std::size(series); ++s) {
        const Series& each = series[s];
        long lo = samples.front().*each.field, hi = lo;
        for (const Sample& x : samples) {
            lo = std::min(lo, x.*each.field);
            hi = std::max(hi, x.*each.field);
        }
        // A flat line still gets a scale: at least ±2 % around it.
        const double span =
            std::max<double>(static_cast<double>(hi - lo), std::max(4.0, 0.04 * static_cast<double>(hi)));
        const double bottom = static_cast<double>(lo) - (span - static_cast<double>(hi - lo)) / 2;
        const int top = 10 + static_cast<int>(s) * rowHeight, plot = rowHeight - 30;
        out << "<text x=\"" << left << "\" y=\"" << top + 8 << "\">" << each.name << " (" << lo << " to " << hi
            << ")</text>\n";
        out << "<line x1=\"" << left << "\" y1=\"" << top + 14 + plot << "\" x2=\"" << width - right << "\" y2=\""
            << top + 14 + plot << "\" stroke=\"#999\"/>\n";
        out << "<polyline fill=\"none\" stroke=\"" << each.colour << "\" stroke-width=\"1.5\" points=\"";
        for (const Sample& x : samples) {
            const double px = left + (width - left - right) * static_cast<double>(x.tick) / lastTick;
            const double py = top + 14 + plot - plot * (static_cast<double>(x.*each.field) - bottom) / span;
            out << px << ',' << py << ' ';
        }
        out << "\"/>\n";
    }
    out << "<text x=\"" << left << "\" y=\"" << rowHeight * static_cast<int>(std::size(series)) + 22 << "\">ticks 0 to "
        << samples.back().tick << " (" << samples.back().seconds << " s)</text>\n</svg>\n";
}

int soak(long ticks, int appCount, const std::string& csvPath, const std::string& svgPath)
{
    tb::Display display;
    if (!display.ok())
        return 1;
    x11::X11Platform linux_(display.name());
    AppModel model(linux_.platform());
    std::mt19937 rng(4242);
    std::vector<int> apps;
    auto startApp = [&] {
        static int n = 0;
        std::vector<std::string> args{tb::testWindowProgram(), "--title", "soak-" + std::to_string(++n)};
        switch (rng() % 5) {
        case 0: args.insert(args.end(), {"--windows", "3"}); break;
        case 1: args.push_back("--free-dialog"); break;
        case 2: args.insert(args.end(), {"--icon", "48"}); break;
        default: break;
        }
        apps.push_back(tb::spawn(args));
    };
    for (int i = 0; i < appCount; ++i)
        startApp();
    tb::waitUntil(
        [&] { return model.refreshSnapshot(), model.runningApps().size() >= static_cast<std::size_t>(appCount); }, 20s);

    std::vector<Sample> samples;
    const long every = std::max<long>(1, ticks / 400);
    samples.reserve(static_cast<std::size_t>(ticks / every) + 2); // the run's own record must not grow
    const auto started = std::chrono::steady_clock::now();
    for (long tick = 0; tick <= ticks; ++tick) {
        model.refreshSnapshot();
        if (rng() % 5 == 0 && !apps.empty()) { // churn
            const std::size_t victim = rng() % apps.size();
            tb::kill(apps[victim]);
            apps.erase(apps.begin() + static_cast<long>(victim));
            startApp();
        }
        if (tick % 97 == 0)
            model.minimizeAllWindows();
        if (tick % 97 == 40)
            model.hideAllApps();
        if (tick % 97 == 70 && !model.runningApps().empty())
            model.openApp(model.runningApps().front());
        if (tick % every == 0) {
            Sample s;
            s.tick = tick;
            s.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
            s.rssKb = statusKb("VmRSS");
            s.privateKb = statusKb("RssAnon");
            const struct mallinfo2 heap = mallinfo2();
            s.heapKb = static_cast<long>((heap.uordblks + heap.hblkhd) / 1024);
            const Descriptors descriptors = openDescriptors();
            s.fds = descriptors.open;
            s.xResources = xResourcesOf(linux_.connection().get());
            s.processes = processCount();
            s.descriptorsBeyondProcesses = descriptors.open - descriptors.keptForProcesses;
            samples.push_back(s);
        }
    }
    for (const int pid : apps)
        tb::kill(pid);

    std::ofstream csv(csvPath);
    csv << "tick,seconds,resident_kb,private_kb,heap_in_use_kb,descriptors,x_resources,processes_on_machine\n";
    for (const Sample& s : samples)
        csv << s.tick << ',' << s.seconds << ',' << s.rssKb << ',' << s.privateKb << ',' << s.heapKb << ',' << s.fds
            << ',' << s.xResources << ',' << s.processes << '\n';
    if (!svgPath.empty())
        writeSvg(svgPath, samples);

    // Warm-up is the first fifth; after it, the last fifth must not sit above the second.
    const std::size_t fifth = std::max<std::size_t>(1, samples.size() / 5);
    auto peak = [&](std::size_t from, std::size_t to, long Sample::*field) {
        long best = 0;
        for (std::size_t i = from; i < std::min(to, samples.size()); ++i)
            best = std::max(best, samples[i].*field);
        return best;
    };
    struct Bound {
        const char* name;
        long Sample::*field;
        long slack;
        long bytesPerExtraProcess; // what follows the machine's process count is not a leak
    };
    // The process walk keeps an entry per process of the machine (a few hundred bytes with
    // its hash node and name): more processes on the machine at the end are allowed for.
    constexpr long kPerProcess = 512;
    const Bound bounds[] = {{"resident kB", &Sample::rssKb, 2048, kPerProcess},
                            {"private kB", &Sample::privateKb, 2048, kPerProcess},
                            {"heap in use kB", &Sample::heapKb, 512, kPerProcess},
                            // The per-process files follow the machine's process count, which
                            // other programs change: the rest must stay flat.
                            {"descriptors beyond per-process files", &Sample::descriptorsBeyondProcesses, 16, 0},
                            {"X resources", &Sample::xResources, 32, 0}};
    bool grew = false;
    const double seconds = samples.empty() ? 0 : samples.back().seconds;
    std::printf("soak: %ld ticks in %.0f s (%.1f days of one-second ticks), %d apps churning\n", ticks, seconds,
                static_cast<double>(ticks) / 86400.0, appCount);
    const long earlyProcesses = peak(fifth, 2 * fifth, &Sample::processes),
               lateProcesses = peak(samples.size() - fifth, samples.size(), &Sample::processes);
    const long extraProcesses = std::max(0L, lateProcesses - earlyProcesses);
    std::printf("  %-28s after warm-up %ld, at the end %ld\n", "processes on the machine", earlyProcesses,
                lateProcesses);
    for (const Bound& b : bounds) {
        const long early = peak(fifth, 2 * fifth, b.field),
                   late = peak(samples.size() - fifth, samples.size(), b.field);
        const long allowed = b.slack + extraProcesses * b.bytesPerExtraProcess / 1024;
        const bool ok = late <= early + allowed;
        grew = grew || !ok;
        std::printf("  %-28s after warm-up %ld, at the end %ld (allowed +%ld) %s\n", b.name, early, late, allowed,
                    ok ? "ok" : "GREW");
    }
    return grew ? 1 : 0;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

int scale(int windows, int processes, int idle)
{
    // Xvfb takes 256 clients by default; every app here is one.
    tb::Display display(true, {"-maxclients", "1024"});
    if (!display.ok())
        return 1;
    x11::X11Platform linux_(display.name());
    AppModel model(linux_.platform());
    std::vector<int> apps;
    for (int i = 0; i < processes; ++i) {
        const int mine = windows / processes + (i < windows % processes ? 1 : 0);
        apps.push_back(tb::spawn({tb::testWindowProgram(), "--title", "scale-" + std::to_string(i), "--windows",
                                  std::to_string(std::clamp(mine, 1, 16))}));
    }
    stowly::chaos::Observer observer(display.name());
    const bool managed =
        tb::waitUntil([&] { return observer.look().windows.size() >= static_cast<std::size_t>(windows); }, 180s);
    const std::size_t seen = observer.look().windows.size();
    auto measure = [&](const char* what) {
        std::vector<double> times;
        for (int i = 0; i < 30; ++i) {
            const auto t0 = std::chrono::steady_clock::now();
            model.refreshSnapshot();
            times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
        }
        const bool right = model.runningApps().size() == static_cast<std::size_t>(processes);
        std::printf("scale: %s: tick median %.1f ms, slowest %.1f ms, %zu apps listed (%s)\n", what, median(times),
                    *std::max_element(times.begin(), times.end()), model.runningApps().size(),
                    right ? "right" : "WRONG");
        return right;
    };
    std::printf("scale: %zu windows managed from %d processes%s\n", seen, processes, managed ? "" : " (not all)");
    bool ok = managed && measure("windows");
    if (idle > 0) {
        // Processes without windows: the process table grows, the list must not.
        const int group =
            tb::spawn({"setsid", "sh", "-c",
                       "i=0; while [ $i -lt " + std::to_string(idle) + " ]; do sleep 100000 & i=$((i+1)); done; wait"});
        tb::waitUntil(
            [&] {
                long count = 0;
                if (DIR* d = opendir("/proc")) {
                    while (dirent* e = readdir(d))
                        count += e->d_name[0] >= '0' && e->d_name[0] <= '9';
                    closedir(d);
                }
                return count >= idle + processes;
            },
            120s);
        ok = measure((std::to_string(idle) + " more processes").c_str()) && ok;
        ::kill(-group, SIGKILL); // the whole group this run started, and nothing else
        tb::kill(group);
    }
    for (const int pid : apps)
        tb::kill(pid);
    return ok ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    long ticks = 20000;
    int apps = 20, windows = 2000, processes = 300, idle = 5000;
    bool scaleRun = false;
    std::string csv = "soak.csv", svg;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool more = i + 1 < argc;
        if (a == "--ticks" && more)
            ticks = std::atol(argv[++i]);
        else if (a == "--apps" && more)
            apps = std::atoi(argv[++i]);
        else if (a == "--csv" && more)
            csv = argv[++i];
        else if (a == "--svg" && more)
            svg = argv[++i];
        else if (a == "--scale")
            scaleRun = true;
        else if (a == "--windows" && more)
            windows = std::atoi(argv[++i]);
        else if (a == "--processes" && more)
            processes = std::atoi(argv[++i]);
        else if (a == "--idle" && more)
            idle = std::atoi(argv[++i]);
        else {
            std::fprintf(stderr, "usage: stowly_soak [--ticks N] [--apps N] [--csv F] [--svg F] | --scale "
                                 "[--windows N] [--processes N] [--idle N]\n");
            return 2;
        }
    }
    tb::prepareEnvironment(STOWLY_CHAOS_BUILD_DIR);
    QCoreApplication app(argc, argv);
    return scaleRun ? scale(windows, processes, idle) : soak(ticks, apps, csv, svg);
}
