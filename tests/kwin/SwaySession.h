// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// A private, headless sway session with Xwayland: a Wayland compositor that offers no window
// management this program speaks. sway refuses to run as root, so it runs in a user namespace
// that maps our user to an ordinary one; its sockets stay ours outside it.

#include "SessionFolder.h"

#include <string>

namespace stowly::kwintest {

class SwaySession {
public:
    explicit SwaySession(const std::string& parentDir);
    ~SwaySession();
    SwaySession(const SwaySession&) = delete;
    SwaySession& operator=(const SwaySession&) = delete;

    bool ok() const { return m_ok; }
    const std::string& error() const { return m_error; }
    // The full path of the Wayland socket (usable as WAYLAND_DISPLAY) and the Xwayland display.
    const std::string& socketPath() const { return m_socketPath; }
    const std::string& x11Display() const { return m_x11Display; }

private:
    bool m_ok = false;
    std::string m_error;
    SessionFolder m_folder;
    std::string m_socketPath;
    std::string m_x11Display;
    int m_sway = -1;
};

} // namespace stowly::kwintest
