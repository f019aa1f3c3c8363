// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Core Foundation ownership and string conversion shared by the backend's .mm files.

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>

namespace stowly::macos {

struct CFReleaser {
    void operator()(CFTypeRef object) const noexcept
    {
        if (object != nullptr)
            CFRelease(object);
    }
};

// Owns one reference to a Core Foundation object (a "Create" or "Copy" result) and
// releases it on every path out of the scope that holds it.
template <typename Ref>
using CFOwned = std::unique_ptr<std::remove_pointer_t<Ref>, CFReleaser>;

template <typename Ref>
CFOwned<Ref> adoptCF(Ref object) noexcept
{
    return CFOwned<Ref>(object);
}

// UTF-8 text to a new CFString; invalid UTF-8 yields null rather than a mangled name.
inline CFOwned<CFStringRef> makeCFString(const std::string& text)
{
    return adoptCF(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                           static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

// A CFString as UTF-8. A character UTF-8 cannot carry (a lone surrogate) becomes '?'.
inline std::string toUtf8(CFStringRef string)
{
    if (string == nullptr)
        return {};
    if (const char* fast = CFStringGetCStringPtr(string, kCFStringEncodingUTF8))
        return fast;

    const CFIndex length = CFStringGetLength(string);
    const CFRange all = CFRangeMake(0, length);
    CFIndex needed = 0;
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false, nullptr, 0, &needed);
    std::string out(static_cast<std::size_t>(needed), '\0');
    CFIndex written = 0;
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false, reinterpret_cast<UInt8*>(out.data()), needed,
                     &written);
    out.resize(static_cast<std::size_t>(written));
    return out;
}

} // namespace stowly::macos
