// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Uses an Objective-C class that no framework exports; the interface below lets
// it compile, so only the link can refuse _OBJC_CLASS_$_NSRunningApplications.
#import <AppKit/AppKit.h>

@interface NSRunningApplications : NSObject
+ (instancetype)current;
@end

bool haveCurrent()
{
    return [NSRunningApplications current] != nil;
}
