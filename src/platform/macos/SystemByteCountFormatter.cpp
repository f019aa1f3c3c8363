// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// On macOS a memory figure reads exactly as the system writes it elsewhere: the
// platform's byte-count formatter in its memory style stands in for our own.
#include "core/ByteCountFormatter.h"

#include "MacByteCountFormatter.h"

namespace stowly {

QString formatMemoryByteCount(std::int64_t byteCount)
{
    return QString::fromStdString(macos::macMemoryByteCountString(byteCount));
}

} // namespace stowly
