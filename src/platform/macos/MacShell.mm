// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MacShell.h"

#include "MacImageRendering.h"

#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>

namespace stowly::macos {

void useAccessoryActivationPolicy()
{
    NSApplication* application = NSApp;
    if (application == nil) {
        std::fputs("Stowly: the shared application does not exist yet\n", stderr);
        std::abort();
    }
    [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void activateForSettingsWindow()
{
    [NSApp activateIgnoringOtherApps:YES];
}

namespace {

NSImage* statusBarNSImage()
{
    // A bundle without an icon of its own gets the generic application icon here,
    // so the item is never empty.
    NSImage* icon = [NSWorkspace.sharedWorkspace iconForFile:NSBundle.mainBundle.bundlePath];

    const NSSize size = NSMakeSize(18, 18);
    NSImage* image = [[NSImage alloc] initWithSize:size];
    [image lockFocus];
    if (NSGraphicsContext* context = NSGraphicsContext.currentContext)
        context.imageInterpolation = NSImageInterpolationHigh;
    [icon drawInRect:NSMakeRect(1, 1, 16, 16)
            fromRect:NSZeroRect
           operation:NSCompositingOperationSourceOver
            fraction:1.0];
    [image unlockFocus];
    image.size = size;
    [image setTemplate:NO]; // "template" is a C++ keyword, so no dot syntax here
    return image;
}

} // namespace

AppIcon makeStatusBarImage(int scale)
{
    const int pixelsPerPoint = scale >= 2 ? 2 : 1;
    @autoreleasepool {
        const AppIconRef pixels = renderImage(statusBarNSImage(), 18 * pixelsPerPoint);
        return pixels != nullptr ? *pixels : AppIcon{};
    }
}

} // namespace stowly::macos
