// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MacImageRendering.h"

#include "MacCFHelpers.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace stowly::macos {

AppIconRef renderImage(NSImage* image, int pixelSize)
{
    if (image == nil || pixelSize <= 0 || pixelSize > 1024)
        return nullptr;

    const auto side = static_cast<std::size_t>(pixelSize);
    const std::size_t bytesPerRow = side * 4;
    std::vector<std::uint8_t> rgba(bytesPerRow * side, 0);

    const auto colorSpace = adoptCF(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    if (colorSpace == nullptr)
        return nullptr;
    // R, G, B, A bytes in memory order, premultiplied: the one 8-bit RGBA layout with
    // alpha that Core Graphics draws into.
    const auto context = adoptCF(
        CGBitmapContextCreate(rgba.data(), side, side, 8, bytesPerRow, colorSpace.get(),
                              static_cast<CGBitmapInfo>(kCGImageAlphaPremultipliedLast) | kCGBitmapByteOrder32Big));
    if (context == nullptr)
        return nullptr;

    // The pool lets the AppKit context (which retains the bitmap context) go before
    // the pixel buffer does.
    @autoreleasepool {
        NSGraphicsContext* graphics = [NSGraphicsContext graphicsContextWithCGContext:context.get() flipped:NO];
        [NSGraphicsContext saveGraphicsState];
        NSGraphicsContext.currentContext = graphics;
        graphics.imageInterpolation = NSImageInterpolationHigh;
        [image drawInRect:NSMakeRect(0, 0, pixelSize, pixelSize)
                 fromRect:NSZeroRect
                operation:NSCompositingOperationSourceOver
                 fraction:1.0];
        [graphics flushGraphics];
        [NSGraphicsContext restoreGraphicsState];
    }

    // Core Graphics' first row is the top one, as AppIcon wants. Undo the
    // premultiplication: AppIcon pixels are straight 0xAARRGGBB.
    auto icon = std::make_shared<AppIcon>();
    icon->width = pixelSize;
    icon->height = pixelSize;
    icon->argb.resize(side * side);
    for (std::size_t i = 0; i < side * side; ++i) {
        const std::uint8_t* pixel = &rgba[i * 4];
        const std::uint32_t alpha = pixel[3];
        auto straight = [alpha](std::uint32_t channel) -> std::uint32_t {
            if (alpha == 0)
                return 0;
            const std::uint32_t value = (channel * 255 + alpha / 2) / alpha;
            return value > 255 ? 255 : value;
        };
        icon->argb[i] = (alpha << 24) | (straight(pixel[0]) << 16) | (straight(pixel[1]) << 8) | straight(pixel[2]);
    }
    return icon;
}

int appIconPixelSize()
{
    constexpr int points = 32;
    const CGFloat scale = NSScreen.mainScreen != nil ? NSScreen.mainScreen.backingScaleFactor : 1.0;
    return scale > 1.0 ? points * 2 : points;
}

} // namespace stowly::macos
