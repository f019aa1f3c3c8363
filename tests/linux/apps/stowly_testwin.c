// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

/* A small X client for the backend tests: windows of any EWMH type and state, with or
 * without WM_DELETE_WINDOW, odd property contents, icons of any size, extra memory and
 * a windowless child process. It exits when its last window was closed by request. */
#define _GNU_SOURCE
#include <xcb/xcb.h>

#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <time.h>
#include <unistd.h>

enum { MAX_WINDOWS = 16 };

static xcb_connection_t* conn;
static xcb_screen_t* screen;

static xcb_atom_t intern(const char* name)
{
    xcb_intern_atom_reply_t* reply =
        xcb_intern_atom_reply(conn, xcb_intern_atom(conn, 0, (uint16_t)strlen(name), name), NULL);
    xcb_atom_t atom = reply ? reply->atom : XCB_NONE;
    free(reply);
    return atom;
}

static void set32(xcb_window_t w, const char* prop, xcb_atom_t type, const uint32_t* values, uint32_t n)
{
    xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, intern(prop), type, 32, n, values);
}

static void set8(xcb_window_t w, xcb_atom_t prop, xcb_atom_t type, const char* bytes, uint32_t n)
{
    xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, prop, type, 8, n, bytes);
}

static void touch_memory(size_t megabytes)
{
    if (megabytes == 0)
        return;
    size_t size = megabytes << 20;
    volatile char* block = malloc(size);
    if (!block)
        return;
    for (size_t i = 0; i < size; i += 4096)
        block[i] = (char)(i >> 12);
}

static void set_icon(xcb_window_t w, const uint32_t* sizes, int count)
{
    size_t total = 0;
    for (int i = 0; i < count; ++i)
        total += 2 + (size_t)sizes[i] * sizes[i];
    uint32_t* data = malloc(total * 4);
    size_t k = 0;
    for (int i = 0; i < count; ++i) {
        data[k++] = sizes[i];
        data[k++] = sizes[i];
        for (size_t p = 0; p < (size_t)sizes[i] * sizes[i]; ++p)
            data[k++] = 0xff000000u | (sizes[i] * 2654435761u);
    }
    xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, intern("_NET_WM_ICON"), XCB_ATOM_CARDINAL, 32, (uint32_t)total,
                        data);
    free(data);
}

static void usage(void)
{
    fprintf(
        stderr,
        "stowly_testwin [--title T] [--class INSTANCE CLASS] [--type normal|dialog|utility|none]\n"
        "  [--windows N] [--dialog] [--free-dialog] [--skip-taskbar] [--no-delete] [--no-pid] [--pid N] [--gtk-id ID]\n"
        "  [--icon N] [--huge-icon] [--pixmap-icon] [--garbage] [--alloc-mb M] [--child-alloc-mb M] [--churn]\n");
    exit(2);
}

int main(int argc, char** argv)
{
    const char* title = "stowly test window";
    const char* instance = "stowlytest";
    const char* klass = "StowlyTest";
    const char* type = "normal";
    const char* gtk_id = NULL;
    int windows = 1, dialog = 0, free_dialog = 0, skip_taskbar = 0, no_delete = 0, no_pid = 0, garbage = 0,
        huge_icon = 0, churn = 0;
    int pixmap_icon = 0;
    uint32_t icon = 0;
    uint32_t claimed_pid = 0; /* a _NET_WM_PID that lies, when given */
    size_t alloc_mb = 0, child_alloc_mb = 0;

    for (int i = 1; i < argc; ++i) {
        const char* a = argv[i];
        const int more = i + 1 < argc;
        /* One option a line reads as a table. */
        /* clang-format off */
        if (!strcmp(a, "--title") && more) title = argv[++i];
        else if (!strcmp(a, "--class") && i + 2 < argc) { instance = argv[++i]; klass = argv[++i]; }
        else if (!strcmp(a, "--type") && more) type = argv[++i];
        else if (!strcmp(a, "--windows") && more) windows = atoi(argv[++i]);
        else if (!strcmp(a, "--dialog")) dialog = 1;
        else if (!strcmp(a, "--free-dialog")) dialog = free_dialog = 1;
        else if (!strcmp(a, "--skip-taskbar")) skip_taskbar = 1;
        else if (!strcmp(a, "--no-delete")) no_delete = 1;
        else if (!strcmp(a, "--no-pid")) no_pid = 1;
        else if (!strcmp(a, "--pid") && more) claimed_pid = (uint32_t)strtoul(argv[++i], NULL, 10);
        else if (!strcmp(a, "--gtk-id") && more) gtk_id = argv[++i];
        else if (!strcmp(a, "--icon") && more) icon = (uint32_t)atoi(argv[++i]);
        else if (!strcmp(a, "--huge-icon")) huge_icon = 1;
        else if (!strcmp(a, "--pixmap-icon")) pixmap_icon = 1;
        else if (!strcmp(a, "--garbage")) garbage = 1;
        else if (!strcmp(a, "--alloc-mb") && more) alloc_mb = (size_t)atoi(argv[++i]);
        else if (!strcmp(a, "--child-alloc-mb") && more) child_alloc_mb = (size_t)atoi(argv[++i]);
        else if (!strcmp(a, "--churn")) churn = 1;
        else usage();
        /* clang-format on */
    }
    if (windows < 1 || windows > MAX_WINDOWS)
        usage();
    /* Never outlive the test that started us. */
    prctl(PR_SET_PDEATHSIG, SIGKILL);

    if (child_alloc_mb > 0) {
        pid_t child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            touch_memory(child_alloc_mb);
            for (;;)
                pause();
        }
    }
    touch_memory(alloc_mb);

    conn = xcb_connect(NULL, NULL);
    if (xcb_connection_has_error(conn)) {
        fprintf(stderr, "stowly_testwin: cannot connect to the X server\n");
        return 1;
    }
    screen = xcb_setup_roots_iterator(xcb_get_setup(conn)).data;
    const xcb_atom_t wm_protocols = intern("WM_PROTOCOLS");
    const xcb_atom_t wm_delete = intern("WM_DELETE_WINDOW");
    const xcb_atom_t utf8 = intern("UTF8_STRING");

    xcb_window_t ids[MAX_WINDOWS + 1];
    int count = windows + (dialog ? 1 : 0);
    for (int i = 0; i < count; ++i) {
        const int is_dialog = dialog && i == windows;
        xcb_window_t w = xcb_generate_id(conn);
        ids[i] = w;
        const uint32_t values[] = {screen->white_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
        xcb_create_window(conn, XCB_COPY_FROM_PARENT, w, screen->root, 20 + 30 * i, 20 + 30 * i, 200, 120, 1,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK,
                          values);
        char name[512];
        snprintf(name, sizeof name, "%s%s", title, is_dialog ? " dialog" : (i > 0 ? " more" : ""));
        set8(w, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, name, (uint32_t)strlen(name));
        set8(w, intern("_NET_WM_NAME"), utf8, name, (uint32_t)strlen(name));
        char class_bytes[512];
        int n = snprintf(class_bytes, sizeof class_bytes, "%s%c%s", instance, 0, klass);
        set8(w, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, class_bytes, (uint32_t)n + 1);
        if (!no_pid) {
            const uint32_t pid = claimed_pid != 0 ? claimed_pid : (uint32_t)getpid();
            set32(w, "_NET_WM_PID", XCB_ATOM_CARDINAL, &pid, 1);
        }
        if (!no_delete)
            xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, wm_protocols, XCB_ATOM_ATOM, 32, 1, &wm_delete);
        const char* t = is_dialog ? "dialog" : type;
        if (strcmp(t, "none") != 0) {
            char atom_name[64];
            snprintf(atom_name, sizeof atom_name, "_NET_WM_WINDOW_TYPE_%s",
                     !strcmp(t, "dialog")    ? "DIALOG"
                     : !strcmp(t, "utility") ? "UTILITY"
                                             : "NORMAL");
            const uint32_t atom = intern(atom_name);
            set32(w, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, &atom, 1);
        }
        if (is_dialog && !free_dialog)
            xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 32, 1,
                                &ids[0]);
        if (skip_taskbar) {
            const uint32_t states[] = {intern("_NET_WM_STATE_SKIP_TASKBAR"), intern("_NET_WM_STATE_SKIP_PAGER")};
            set32(w, "_NET_WM_STATE", XCB_ATOM_ATOM, states, 2);
        }
        if (gtk_id)
            set8(w, intern("_GTK_APPLICATION_ID"), utf8, gtk_id, (uint32_t)strlen(gtk_id));
        if (icon > 0) {
            const uint32_t sizes[] = {16, icon};
            set_icon(w, sizes, 2);
        }
        if (pixmap_icon) {
            /* An old-style ICCCM icon (WM_HINTS icon_pixmap) and no _NET_WM_ICON, as xterm has:
               openbox then publishes no _NET_WM_ICON of its own for the window. */
            const xcb_pixmap_t pixmap = xcb_generate_id(conn);
            xcb_create_pixmap(conn, screen->root_depth, pixmap, screen->root, 16, 16);
            const uint32_t hints[9] = {1u << 2 /* IconPixmapHint */, 0, 0, pixmap, 0, 0, 0, 0, 0};
            xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32, 9, hints);
        }
        if (huge_icon) {
            /* A real 1200x1200 image after a small one, then a header claiming far more. */
            const uint32_t sizes[] = {32, 1200};
            set_icon(w, sizes, 2);
            const uint32_t lie[] = {100000, 100000, 0xffffffff};
            xcb_change_property(conn, XCB_PROP_MODE_APPEND, w, intern("_NET_WM_ICON"), XCB_ATOM_CARDINAL, 32, 3, lie);
        }
        if (garbage) {
            /* Every property we read, with the wrong type, format or contents. */
            const char junk[] = "\xff\xfe\x00\x80garbage\x00\x00\xc3";
            set8(w, intern("_NET_WM_WINDOW_TYPE"), XCB_ATOM_STRING, junk, sizeof junk);
            set8(w, intern("_NET_WM_STATE"), XCB_ATOM_ATOM, junk, 7);
            set8(w, intern("WM_STATE"), intern("WM_STATE"), junk, 3);
            set8(w, wm_protocols, XCB_ATOM_ATOM, junk, 5);
            set8(w, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, "\xff\xfe\xfd", 3);
            set8(w, intern("_GTK_APPLICATION_ID"), utf8, junk, sizeof junk);
            set8(w, intern("_KDE_NET_WM_DESKTOP_FILE"), XCB_ATOM_STRING, junk, sizeof junk);
            set8(w, intern("_STOWLY_HIDDEN"), XCB_ATOM_STRING, junk, 2);
            const uint32_t bad_icon[] = {0xffffffff, 0xffffffff, 1, 2, 3};
            set32(w, "_NET_WM_ICON", XCB_ATOM_CARDINAL, bad_icon, 5);
            const uint16_t pid16[] = {1, 2};
            xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, intern("_NET_WM_PID"), XCB_ATOM_CARDINAL, 16, 2, pid16);
            const uint32_t bad_transient = 0x7fffffff;
            xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_CARDINAL, 32, 1,
                                &bad_transient);
        }
        xcb_map_window(conn, w);
    }
    xcb_flush(conn);

    int open = count;
    struct timespec tick = {0, 5 * 1000 * 1000};
    xcb_window_t churned = XCB_NONE;
    for (;;) {
        xcb_generic_event_t* event = churn ? xcb_poll_for_event(conn) : xcb_wait_for_event(conn);
        if (!event) {
            if (xcb_connection_has_error(conn))
                return 0;
            /* Windows that come and go while others walk the client list. */
            if (churned != XCB_NONE) {
                xcb_destroy_window(conn, churned);
                churned = XCB_NONE;
            } else {
                churned = xcb_generate_id(conn);
                const uint32_t values[] = {screen->black_pixel};
                xcb_create_window(conn, XCB_COPY_FROM_PARENT, churned, screen->root, 300, 300, 50, 50, 0,
                                  XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL, values);
                set8(churned, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, "churn", 5);
                xcb_map_window(conn, churned);
            }
            xcb_flush(conn);
            nanosleep(&tick, NULL);
            continue;
        }
        if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE) {
            xcb_client_message_event_t* message = (xcb_client_message_event_t*)event;
            if (message->type == wm_protocols && message->data.data32[0] == wm_delete) {
                xcb_destroy_window(conn, message->window);
                xcb_flush(conn);
                if (--open <= 0) {
                    free(event);
                    xcb_disconnect(conn);
                    return 0;
                }
            }
        }
        free(event);
    }
}
