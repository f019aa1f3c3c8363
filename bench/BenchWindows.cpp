// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The test bed's helper on the X side, for scripts/bench:
//
//   stowly_bench_windows windows COUNT dialog|normal   open COUNT idle client windows of that
//        EWMH type (class StowlyBenchWindow), print "ready" once the window manager lists them
//        all, then idle until terminated or the display goes away. A window asked to close
//        (WM_DELETE_WINDOW) is destroyed; the process exits when none is left.
//   stowly_bench_windows wait-class CLASS COUNT [SECONDS]   wait until COUNT clients of that
//        WM_CLASS are listed; prints how many are; exit status 1 on timeout.
//   stowly_bench_windows clients      print the number of clients in _NET_CLIENT_LIST.
//   stowly_bench_windows idle COUNT   keep COUNT idle sleep processes (to grow the process
//        table), print "ready", and end them all when terminated or when our parent dies.

#include "DisplayObserver.h"

#include <xcb/xcb.h>

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

xcb_atom_t intern(xcb_connection_t* c, const char* name)
{
    auto* reply =
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : XCB_NONE;
    std::free(reply);
    return atom;
}

void setProperty(xcb_connection_t* c, xcb_window_t w, xcb_atom_t property, xcb_atom_t type, std::uint8_t format,
                 std::uint32_t count, const void* data)
{
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, property, type, format, count, data);
}

int openWindows(int count, bool dialog)
{
    int screenNumber = 0;
    xcb_connection_t* c = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(c) != 0) {
        std::fprintf(stderr, "stowly_bench_windows: cannot connect to the display\n");
        return 1;
    }
    auto it = xcb_setup_roots_iterator(xcb_get_setup(c));
    for (int i = 0; i < screenNumber && it.rem > 0; ++i)
        xcb_screen_next(&it);
    const xcb_screen_t* screen = it.data;

    const xcb_atom_t wmProtocols = intern(c, "WM_PROTOCOLS");
    const xcb_atom_t wmDelete = intern(c, "WM_DELETE_WINDOW");
    const xcb_atom_t netPid = intern(c, "_NET_WM_PID");
    const xcb_atom_t netType = intern(c, "_NET_WM_WINDOW_TYPE");
    const xcb_atom_t typeValue = intern(c, dialog ? "_NET_WM_WINDOW_TYPE_DIALOG" : "_NET_WM_WINDOW_TYPE_NORMAL");
    const xcb_atom_t clientList = intern(c, "_NET_CLIENT_LIST");

    const std::uint32_t rootMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(c, screen->root, XCB_CW_EVENT_MASK, &rootMask);

    static const char wmClass[] = "stowly-bench-window\0StowlyBenchWindow";
    const std::uint32_t pid = static_cast<std::uint32_t>(getpid());
    std::vector<xcb_window_t> windows;
    for (int i = 0; i < count; ++i) {
        const xcb_window_t w = xcb_generate_id(c);
        const std::uint32_t values[] = {screen->white_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
        xcb_create_window(c, XCB_COPY_FROM_PARENT, w, screen->root, static_cast<std::int16_t>(20 + (i % 20) * 8),
                          static_cast<std::int16_t>(20 + (i % 20) * 8), 160, 90, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        const std::string title = "bench window " + std::to_string(i + 1);
        setProperty(c, w, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(title.size()), title.data());
        setProperty(c, w, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, sizeof wmClass, wmClass);
        setProperty(c, w, wmProtocols, XCB_ATOM_ATOM, 32, 1, &wmDelete);
        setProperty(c, w, netPid, XCB_ATOM_CARDINAL, 32, 1, &pid);
        setProperty(c, w, netType, XCB_ATOM_ATOM, 32, 1, &typeValue);
        xcb_map_window(c, w);
        windows.push_back(w);
    }
    xcb_flush(c);

    auto allListed = [&] {
        auto* reply = xcb_get_property_reply(
            c, xcb_get_property(c, 0, screen->root, clientList, XCB_ATOM_WINDOW, 0, 1u << 16), nullptr);
        if (reply == nullptr)
            return false;
        const auto* listed = static_cast<const xcb_window_t*>(xcb_get_property_value(reply));
        const int n = xcb_get_property_value_length(reply) / 4;
        const bool all = std::all_of(windows.begin(), windows.end(),
                                     [&](xcb_window_t w) { return std::find(listed, listed + n, w) != listed + n; });
        std::free(reply);
        return all;
    };
    bool announced = false;
    if (allListed()) {
        std::printf("ready\n");
        std::fflush(stdout);
        announced = true;
    }

    while (xcb_generic_event_t* event = xcb_wait_for_event(c)) {
        const int type = event->response_type & 0x7f;
        if (type == XCB_CLIENT_MESSAGE) {
            const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
            if (message->type == wmProtocols && message->data.data32[0] == wmDelete) {
                xcb_destroy_window(c, message->window);
                windows.erase(std::remove(windows.begin(), windows.end(), message->window), windows.end());
                xcb_flush(c);
            }
        } else if (type == XCB_PROPERTY_NOTIFY && !announced && allListed()) {
            std::printf("ready\n");
            std::fflush(stdout);
            announced = true;
        }
        std::free(event);
        if (windows.empty())
            break;
    }
    xcb_disconnect(c);
    return 0;
}

volatile sig_atomic_t g_stop = 0;

int keepIdleProcesses(int count)
{
    // Our own parent dying ends us too, so the test bed cannot leak processes.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    struct sigaction stop {};
    stop.sa_handler = [](int) { g_stop = 1; };
    sigaction(SIGTERM, &stop, nullptr);
    sigaction(SIGINT, &stop, nullptr);
    sigaction(SIGHUP, &stop, nullptr);

    std::vector<pid_t> children;
    for (int i = 0; i < count && !g_stop; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            // A plain sleep, as an idle process of any desktop looks; the death signal
            // survives the exec.
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            signal(SIGTERM, SIG_DFL);
            if (getppid() == 1)
                _exit(0);
            execlp("sleep", "sleep", "infinity", static_cast<char*>(nullptr));
            for (;;)
                pause();
        }
        if (child > 0)
            children.push_back(child);
    }
    std::printf("ready\n");
    std::fflush(stdout);
    while (!g_stop)
        pause();
    for (pid_t child : children)
        kill(child, SIGKILL);
    for (pid_t child : children)
        waitpid(child, nullptr, 0);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "windows" && argc >= 3) {
        const int count = std::atoi(argv[2]);
        const bool dialog = argc < 4 || std::strcmp(argv[3], "normal") != 0;
        return openWindows(count, dialog);
    }
    if (mode == "idle" && argc >= 3)
        return keepIdleProcesses(std::atoi(argv[2]));
    try {
        if (mode == "wait-class" && argc >= 4) {
            stowly::bench::DisplayObserver observer;
            const std::size_t count = static_cast<std::size_t>(std::atoi(argv[3]));
            const int seconds = argc >= 5 ? std::atoi(argv[4]) : 60;
            const bool ok = observer.waitClientsOfClass(argv[2], count, std::chrono::seconds(seconds));
            std::printf("%zu\n", observer.clientsOfClass(argv[2]).size());
            return ok ? 0 : 1;
        }
        if (mode == "clients") {
            stowly::bench::DisplayObserver observer;
            std::printf("%zu\n", observer.clientList().size());
            return 0;
        }
    } catch (const std::exception& e) {
        std::fprintf(stderr, "stowly_bench_windows: %s\n", e.what());
        return 1;
    }
    std::fprintf(stderr, "usage: stowly_bench_windows windows COUNT [dialog|normal] | wait-class CLASS COUNT [SECONDS] "
                         "| clients | idle COUNT\n");
    return 2;
}
