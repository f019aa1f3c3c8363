// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Platform.h"

#include <memory>
#include <string>

namespace stowly::kwin {

class PlasmaWindowManagement;

// Every service for a KDE Plasma Wayland session: windows through KWin's window-management
// protocol, and the parts every Linux session shares (/proc, desktop entries, XDG autostart,
// QSettings, the desktop's URL handler). Everything runs on the main thread.
class KWinPlatform {
public:
    // Empty socket name: $WAYLAND_DISPLAY.
    explicit KWinPlatform(const std::string& socketName = {});
    ~KWinPlatform();
    KWinPlatform(const KWinPlatform&) = delete;
    KWinPlatform& operator=(const KWinPlatform&) = delete;

    Platform& platform() { return *m_platform; }
    PlasmaWindowManagement& windows() { return *m_windows; }

private:
    struct Services;
    std::unique_ptr<PlasmaWindowManagement> m_windows;
    std::unique_ptr<Services> m_services;
    std::unique_ptr<Platform> m_platform;
};

} // namespace stowly::kwin
