// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// -[NSRunningApplication activateFromApplication:options:] came with macOS 14;
// built for macOS 13 without an availability guard it must be refused.
#import <AppKit/AppKit.h>

bool activateFromSelf(NSRunningApplication* app)
{
    return [app activateFromApplication:NSRunningApplication.currentApplication options:0];
}
