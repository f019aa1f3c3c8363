// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "NetWmIcon.h"

#include <algorithm>
#include <cstdlib>

namespace stowly::x11 {

namespace {

constexpr std::uint64_t kMaxSide = 16384; // beyond this an entry is garbage
constexpr int kMaxKeptSide = 256;         // we never keep more pixels than this per side

// Box-filter down-scaling so a huge icon costs little to keep and to draw.
AppIconRef scaledDown(const std::uint32_t* pixels, int width, int height)
{
    const int longest = std::max(width, height);
    const int outWidth = std::max(1, static_cast<int>(static_cast<std::int64_t>(width) * kMaxKeptSide / longest));
    const int outHeight = std::max(1, static_cast<int>(static_cast<std::int64_t>(height) * kMaxKeptSide / longest));
    auto icon = std::make_shared<AppIcon>();
    icon->width = outWidth;
    icon->height = outHeight;
    icon->argb.resize(static_cast<std::size_t>(outWidth) * static_cast<std::size_t>(outHeight));
    for (int y = 0; y < outHeight; ++y) {
        const int y0 = static_cast<int>(static_cast<std::int64_t>(y) * height / outHeight);
        const int y1 = std::max(y0 + 1, static_cast<int>(static_cast<std::int64_t>(y + 1) * height / outHeight));
        for (int x = 0; x < outWidth; ++x) {
            const int x0 = static_cast<int>(static_cast<std::int64_t>(x) * width / outWidth);
            const int x1 = std::max(x0 + 1, static_cast<int>(static_cast<std::int64_t>(x + 1) * width / outWidth));
            std::uint64_t sum[4] = {0, 0, 0, 0};
            std::uint64_t n = 0;
            for (int yy = y0; yy < y1; ++yy) {
                for (int xx = x0; xx < x1; ++xx) {
                    const std::uint32_t p = pixels[static_cast<std::size_t>(yy) * static_cast<std::size_t>(width) +
                                                   static_cast<std::size_t>(xx)];
                    for (int c = 0; c < 4; ++c)
                        sum[c] += (p >> (8 * c)) & 0xFF;
                    ++n;
                }
            }
            std::uint32_t out = 0;
            for (int c = 0; c < 4; ++c)
                out |= static_cast<std::uint32_t>(sum[c] / n) << (8 * c);
            icon->argb[static_cast<std::size_t>(y) * static_cast<std::size_t>(outWidth) + static_cast<std::size_t>(x)] =
                out;
        }
    }
    return icon;
}

} // namespace

AppIconRef decodeNetWmIcon(const std::uint32_t* data, std::size_t count, int wantedSize)
{
    if (data == nullptr)
        return nullptr;
    std::size_t best = count; // offset of the chosen entry
    std::uint64_t bestWidth = 0, bestHeight = 0;
    long bestDistance = 0;
    std::size_t i = 0;
    while (i + 2 <= count) {
        const std::uint64_t width = data[i];
        const std::uint64_t height = data[i + 1];
        if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide)
            break;
        const std::uint64_t pixels = width * height;
        if (pixels > count - i - 2)
            break;
        const long side = static_cast<long>(std::max(width, height));
        const long distance = std::labs(side - wantedSize);
        if (best == count || distance < bestDistance ||
            (distance == bestDistance && side > static_cast<long>(std::max(bestWidth, bestHeight)))) {
            best = i;
            bestWidth = width;
            bestHeight = height;
            bestDistance = distance;
        }
        i += 2 + static_cast<std::size_t>(pixels);
    }
    if (best == count)
        return nullptr;
    const std::uint32_t* pixels = data + best + 2;
    const int width = static_cast<int>(bestWidth);
    const int height = static_cast<int>(bestHeight);
    if (width > kMaxKeptSide || height > kMaxKeptSide)
        return scaledDown(pixels, width, height);
    auto icon = std::make_shared<AppIcon>();
    icon->width = width;
    icon->height = height;
    icon->argb.assign(pixels, pixels + static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    return icon;
}

} // namespace stowly::x11
