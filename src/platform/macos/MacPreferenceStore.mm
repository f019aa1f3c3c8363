// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MacPreferenceStore.h"

#import <Foundation/Foundation.h>

namespace stowly::macos {
namespace {

NSString* toNSString(const std::string& text)
{
    return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

} // namespace

std::optional<std::string> MacPreferenceStore::string(const std::string& key) const
{
    NSString* name = toNSString(key);
    if (name == nil)
        return std::nullopt;
    // stringForKey: answers nil for an absent key and for values that are neither
    // strings nor numbers, the same answer the defaults give any other caller.
    NSString* value = [NSUserDefaults.standardUserDefaults stringForKey:name];
    if (value == nil)
        return std::nullopt;
    const char* utf8 = value.UTF8String;
    return utf8 != nullptr ? std::optional<std::string>(utf8) : std::nullopt;
}

void MacPreferenceStore::setString(const std::string& key, const std::string& value)
{
    NSString* name = toNSString(key);
    NSString* text = toNSString(value);
    if (name == nil || text == nil)
        return;
    [NSUserDefaults.standardUserDefaults setObject:text forKey:name];
}

} // namespace stowly::macos
