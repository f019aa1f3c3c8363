// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: main() includes it from a .cpp file.

#include "platform/Platform.h"

#include <memory>

namespace stowly::macos {

// Owns one instance of every macOS service and hands them out as a stowly::Platform.
// Build it on the main thread after the toolkit's application object exists, and keep
// it alive for as long as anything uses the platform (in main(), before the model).
class MacPlatform {
public:
    MacPlatform();
    ~MacPlatform();
    MacPlatform(const MacPlatform&) = delete;
    MacPlatform& operator=(const MacPlatform&) = delete;

    Platform& platform() { return m_platform; }

private:
    struct Services;
    std::unique_ptr<Services> m_services;
    Platform m_platform;
};

} // namespace stowly::macos
