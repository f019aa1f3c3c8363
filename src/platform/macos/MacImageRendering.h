// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Objective-C++ only: turns AppKit images into the toolkit-free AppIcon pixels.

#include "platform/AppIcon.h"

@class NSImage;

namespace stowly::macos {

// Draws `image` scaled into a square of `pixelSize` pixels (high-quality interpolation,
// source-over onto transparency) and answers its sRGB pixels. Null for a nil image
// or a size that cannot be drawn.
AppIconRef renderImage(NSImage* image, int pixelSize);

// The pixel size of a row icon of 32 points: 32 on standard screens, 64 on Retina ones.
int appIconPixelSize();

} // namespace stowly::macos
