// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MacByteCountFormatter.h"

#import <Foundation/Foundation.h>

namespace stowly::macos {

std::string macMemoryByteCountString(std::int64_t byteCount)
{
    @autoreleasepool {
        NSString* text = [NSByteCountFormatter stringFromByteCount:byteCount
                                                        countStyle:NSByteCountFormatterCountStyleMemory];
        const char* utf8 = text.UTF8String;
        return utf8 != nullptr ? std::string(utf8) : std::string();
    }
}

} // namespace stowly::macos
