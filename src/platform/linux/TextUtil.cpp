// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TextUtil.h"

#include <cstdint>

namespace stowly::linuxdesktop {

namespace {

// Length of the well-formed sequence starting at i, or 0.
std::size_t validSequenceLength(std::string_view s, std::size_t i)
{
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char b0 = byte(i);
    if (b0 < 0x80)
        return 1;
    std::size_t length = 0;
    std::uint32_t lower = 0x80, upper = 0xBF;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        length = 2;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        length = 3;
        if (b0 == 0xE0)
            lower = 0xA0;
        if (b0 == 0xED)
            upper = 0x9F;
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        length = 4;
        if (b0 == 0xF0)
            lower = 0x90;
        if (b0 == 0xF4)
            upper = 0x8F;
    } else {
        return 0;
    }
    if (i + length > s.size())
        return 0;
    const unsigned char b1 = byte(i + 1);
    if (b1 < lower || b1 > upper)
        return 0;
    for (std::size_t k = 2; k < length; ++k) {
        const unsigned char b = byte(i + k);
        if (b < 0x80 || b > 0xBF)
            return 0;
    }
    return length;
}

} // namespace

bool isValidUtf8(std::string_view bytes)
{
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t n = validSequenceLength(bytes, i);
        if (n == 0)
            return false;
        i += n;
    }
    return true;
}

std::string sanitizeUtf8(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t n = validSequenceLength(bytes, i);
        if (n == 0) {
            out += "\xEF\xBF\xBD";
            ++i;
        } else {
            out.append(bytes.substr(i, n));
            i += n;
        }
    }
    return out;
}

std::string latin1OrUtf8ToUtf8(std::string_view bytes)
{
    if (isValidUtf8(bytes))
        return std::string(bytes);
    std::string out;
    out.reserve(bytes.size() * 2);
    for (const char ch : bytes) {
        const auto b = static_cast<unsigned char>(ch);
        if (b < 0x80) {
            out += ch;
        } else {
            out += static_cast<char>(0xC0 | (b >> 6));
            out += static_cast<char>(0x80 | (b & 0x3F));
        }
    }
    return out;
}

} // namespace stowly::linuxdesktop
