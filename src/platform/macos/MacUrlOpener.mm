// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MacUrlOpener.h"

#import <AppKit/AppKit.h>

namespace stowly::macos {

bool MacUrlOpener::openUrl(const std::string& url)
{
    NSString* text = [[NSString alloc] initWithBytes:url.data() length:url.size() encoding:NSUTF8StringEncoding];
    if (text == nil)
        return false;
    // Text that does not form a URL opens nothing.
    NSURL* target = [NSURL URLWithString:text];
    if (target == nil)
        return false;
    return [NSWorkspace.sharedWorkspace openURL:target];
}

} // namespace stowly::macos
