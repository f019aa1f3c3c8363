// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

namespace stowly::linuxdesktop {

// XDG Base Directory locations, read from the environment on every call so that a
// changed environment (tests, a new session) is honoured.

// $XDG_DATA_HOME (default ~/.local/share), then each of $XDG_DATA_DIRS (default
// /usr/local/share:/usr/share), in precedence order; relative entries are ignored.
std::vector<std::string> xdgDataDirectories();

// $XDG_CONFIG_HOME, default ~/.config.
std::string xdgConfigHome();

} // namespace stowly::linuxdesktop
