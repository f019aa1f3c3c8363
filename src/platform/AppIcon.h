// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace stowly {

// An application's icon as plain pixels, so that neither the logic nor a backend
// needs a toolkit image type. Pixels are 0xAARRGGBB, not premultiplied, row by row.
struct AppIcon {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> argb;
};

using AppIconRef = std::shared_ptr<const AppIcon>;

} // namespace stowly
