// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/AppIcon.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace stowly::linuxdesktop {

// The icon size we look for: twice the 24-point size the panel draws.
inline constexpr int kWantedIconSize = 48;

// The icon a desktop entry names (its Icon key), for apps whose windows carry no
// _NET_WM_ICON. Looked up the way the XDG Icon Theme format asks of its fallback theme:
// hicolor in every XDG data directory (and ~/.icons), then the pixmaps directory.
// Each key is decoded once; misses are remembered too, so a refresh never touches disk
// for an icon it has already looked for.
class ThemedIcons {
public:
    // An absolute path or an icon name; null when nothing usable is found.
    AppIconRef lookup(const std::string& iconKey);

    // The file a name resolves to, for tests; absent when there is none.
    static std::optional<std::string> findFile(const std::string& iconName);

private:
    std::unordered_map<std::string, AppIconRef> m_cache;
};

} // namespace stowly::linuxdesktop
