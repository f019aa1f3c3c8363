// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>

namespace stowly::linuxdesktop {

// True when the bytes are well-formed UTF-8 (no overlongs, no surrogates).
bool isValidUtf8(std::string_view bytes);
// Well-formed UTF-8 from any bytes: invalid sequences become U+FFFD.
std::string sanitizeUtf8(std::string_view bytes);
// ICCCM STRING properties are Latin-1, yet many clients write UTF-8 there: keep valid
// UTF-8 as it is, read anything else as Latin-1.
std::string latin1OrUtf8ToUtf8(std::string_view bytes);

} // namespace stowly::linuxdesktop
