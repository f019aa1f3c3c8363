#pragma once

#include "platform/Platform.h"

#include <memory>
#include <string>

namespace stowly::x11 {

class XConnection;

// Owns every Linux service (X11 via xcb, /proc, XDG autostart, QSettings, the desktop's
// URL handler) and hands them out as one Platform. Everything runs on the main thread.
class LinuxPlatform {
public:
    // Empty display: $DISPLAY.
    explicit LinuxPlatform(const std::string& display = {});
    ~LinuxPlatform();
    LinuxPlatform(const LinuxPlatform&) = delete;
    LinuxPlatform& operator=(const LinuxPlatform&) = delete;

    Platform& platform() { return *m_platform; }
    XConnection& connection() { return *m_connection; }

private:
    struct Services;
    std::unique_ptr<XConnection> m_connection;
    std::unique_ptr<Services> m_services;
    std::unique_ptr<Platform> m_platform;
};

} // namespace stowly::x11
