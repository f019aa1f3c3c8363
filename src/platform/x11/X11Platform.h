// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Platform.h"

#include <memory>
#include <string>

namespace stowly::x11 {

class XConnection;

// Every service for an X11 session (or Xwayland): windows through EWMH and ICCCM over xcb,
// and the parts every Linux session shares. Everything runs on the main thread.
class X11Platform {
public:
    // Empty display: $DISPLAY.
    explicit X11Platform(const std::string& display = {});
    ~X11Platform();
    X11Platform(const X11Platform&) = delete;
    X11Platform& operator=(const X11Platform&) = delete;

    Platform& platform() { return *m_platform; }
    XConnection& connection() { return *m_connection; }

private:
    struct Services;
    std::unique_ptr<XConnection> m_connection;
    std::unique_ptr<Services> m_services;
    std::unique_ptr<Platform> m_platform;
};

} // namespace stowly::x11
