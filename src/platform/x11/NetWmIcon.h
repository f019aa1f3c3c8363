// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/AppIcon.h"

#include <cstddef>
#include <cstdint>

namespace stowly::x11 {

// Picks the image of an EWMH _NET_WM_ICON value (width, height, then width*height ARGB
// pixels, repeated) whose size is nearest `wantedSize`, preferring the larger on a tie.
// Truncated, zero-sized or absurd entries end the walk; what was whole before them counts.
// Images larger than a sane bound are scaled down. Null when nothing usable is there.
AppIconRef decodeNetWmIcon(const std::uint32_t* data, std::size_t count, int wantedSize);

} // namespace stowly::x11
