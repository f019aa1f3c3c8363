// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "XdgDirs.h"

#include <algorithm>
#include <cstdlib>

namespace stowly::linuxdesktop {

namespace {

std::string envOr(const char* name, const std::string& fallback)
{
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? std::string(value) : fallback;
}

bool isAbsolute(const std::string& path)
{
    return !path.empty() && path.front() == '/';
}

} // namespace

std::vector<std::string> xdgDataDirectories()
{
    std::vector<std::string> dirs;
    const std::string home = envOr("HOME", "");
    const std::string dataHome = envOr("XDG_DATA_HOME", home.empty() ? std::string() : home + "/.local/share");
    if (isAbsolute(dataHome))
        dirs.push_back(dataHome);
    const std::string dataDirs = envOr("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    std::size_t start = 0;
    while (start <= dataDirs.size()) {
        const std::size_t end = std::min(dataDirs.find(':', start), dataDirs.size());
        const std::string dir = dataDirs.substr(start, end - start);
        if (isAbsolute(dir))
            dirs.push_back(dir);
        start = end + 1;
    }
    return dirs;
}

std::string xdgConfigHome()
{
    std::string config = envOr("XDG_CONFIG_HOME", "");
    if (isAbsolute(config))
        return config;
    return envOr("HOME", "") + "/.config";
}

} // namespace stowly::linuxdesktop
