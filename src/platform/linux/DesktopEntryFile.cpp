// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "DesktopEntryFile.h"

namespace stowly::linuxdesktop {

namespace {

void trimBlanks(std::string& text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos) {
        text.clear();
        return;
    }
    text.erase(text.find_last_not_of(" \t") + 1);
    text.erase(0, first);
}

} // namespace

std::vector<std::pair<std::string, std::string>> readDesktopEntryGroup(std::istream& in)
{
    std::vector<std::pair<std::string, std::string>> entries;
    std::string line;
    bool inMainGroup = false;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line.front() == '#')
            continue;
        if (line.front() == '[') {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        if (!inMainGroup)
            continue;
        const auto eq = line.find('=');
        if (eq == std::string::npos)
            continue;
        std::string key = line.substr(0, eq);
        std::string value = line.substr(eq + 1);
        trimBlanks(key);
        trimBlanks(value);
        entries.emplace_back(std::move(key), std::move(value));
    }
    return entries;
}

} // namespace stowly::linuxdesktop
