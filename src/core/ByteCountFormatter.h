// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <cstdint>

namespace stowly {

// Memory-style byte counts: binary (1,024) multiples, the unit chosen by magnitude,
// written the way the macOS byte-count formatter writes them in its memory style
// for an English locale ("Zero KB", "512 bytes", "17 KB", "1.5 MB", "2.25 GB").
QString formatMemoryByteCount(std::int64_t byteCount);

} // namespace stowly
