// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// _NET_WM_ICON as any client may write it: sizes that overflow, lie or run past the end.

#include "FuzzCheck.h"
#include "NetWmIcon.h"

#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    const int wanted = data[0] == 0 ? -1 : data[0]; // 0 stands for a nonsense request
    std::vector<std::uint32_t> longs((size - 1) / 4);
    if (!longs.empty())
        std::memcpy(longs.data(), data + 1, longs.size() * 4);
    const stowly::AppIconRef icon = stowly::x11::decodeNetWmIcon(longs.data(), longs.size(), wanted);
    if (icon) {
        STOWLY_FUZZ_CHECK(icon->width > 0 && icon->height > 0);
        STOWLY_FUZZ_CHECK(icon->argb.size() ==
                          static_cast<std::size_t>(icon->width) * static_cast<std::size_t>(icon->height));
        // Never larger than what was sent, scaled or not.
        STOWLY_FUZZ_CHECK(icon->argb.size() <= longs.size());
    }
    return 0;
}
