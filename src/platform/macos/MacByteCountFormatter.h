// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: the core's formatter can call it from a .cpp file on macOS.

#include <cstdint>
#include <string>

namespace stowly::macos {

// NSByteCountFormatter in its memory style, in the user's locale: the text the
// system itself shows for a memory figure ("Zero KB", "17 KB", "1.5 MB").
std::string macMemoryByteCountString(std::int64_t byteCount);

} // namespace stowly::macos
