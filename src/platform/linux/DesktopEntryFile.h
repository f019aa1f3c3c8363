// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <istream>
#include <string>
#include <utility>
#include <vector>

namespace stowly::linuxdesktop {

// The keys of a desktop entry file's "[Desktop Entry]" group, in file order, with the
// blanks around "=" dropped as the XDG Desktop Entry format asks. Other groups,
// comments and lines without "=" are skipped.
std::vector<std::pair<std::string, std::string>> readDesktopEntryGroup(std::istream& in);

} // namespace stowly::linuxdesktop
