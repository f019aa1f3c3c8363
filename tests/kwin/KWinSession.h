// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// A private, headless KWin Wayland session for the KWin backend tests: its own D-Bus session
// bus, XDG_RUNTIME_DIR (0700) and XDG data folder, a copy of kwin_wayland on a virtual output
// with Xwayland, and a desktop entry that grants this test program the window-management
// interface. Every process started here is our child and is ended when the session ends.

#include "SessionFolder.h"

#include <optional>
#include <string>
#include <vector>

namespace stowly::kwintest {

struct ScriptedWindow {
    int pid = 0;
    bool minimized = false;
    bool active = false;
    std::string caption;
};

class KWinSession {
public:
    // grantSelf: write the desktop entry that grants our own executable the interface.
    explicit KWinSession(const std::string& buildDir, bool grantSelf = true);
    ~KWinSession();
    KWinSession(const KWinSession&) = delete;
    KWinSession& operator=(const KWinSession&) = delete;

    bool ok() const { return m_ok; }
    const std::string& error() const { return m_error; }
    const std::string& socketName() const { return m_socket; }
    const std::string& x11Display() const { return m_x11Display; }
    int kwinPid() const { return m_kwin; }
    // The Xwayland server KWin started (its child); 0 when none runs.
    int xwaylandPid() const;
    const std::string& root() const { return m_folder.root(); }

    // Writes a desktop entry that grants `program` the window-management interface. KWin
    // reads its desktop entries again at most every 1.5 s: this waits that long.
    void grant(const std::string& program);

    // Ends KWin (SIGTERM, then SIGKILL) and waits for it.
    void stopCompositor();
    // Ends every app started here since the last call and waits until KWin has let go of their
    // windows: a test that stopped early leaves nothing for the next one to count.
    void endApps();

    // KWin's own view of its windows, asked through a KWin script over D-Bus: an observer
    // that shares no code with ours.
    std::vector<ScriptedWindow> scriptedWindows();
    // The window with this caption in KWin's own list, if any.
    std::optional<ScriptedWindow> scriptedWindow(const std::string& caption);

    // Starts an app inside the session (WAYLAND_DISPLAY, DISPLAY, the session bus); its pid.
    int startNative(const std::string& title, const std::vector<std::string>& extra = {});
    int startXterm(const std::string& title);
    // A GTK 3 window running natively on Wayland (GDK_BACKEND=wayland), app id
    // org.stowly.GtkTestWindow, named "GTK Test Window" by its desktop entry.
    int startGtk(const std::string& title);
    // Our X11 test client through Xwayland (see tests/linux/apps); --title is added.
    int startX11TestWindow(const std::string& title, const std::vector<std::string>& extra = {});

private:
    bool m_ok = false;
    std::string m_error;
    SessionFolder m_folder;
    std::string m_socket;
    std::string m_x11Display;
    std::string m_kwinLog;
    int m_dbus = -1;
    int m_kwin = -1;
    int m_scriptSerial = 0;
    std::vector<int> m_apps;
};

// The session the whole test program shares (started by main's test environment).
KWinSession& sharedSession();

} // namespace stowly::kwintest
