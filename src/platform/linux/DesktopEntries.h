// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace stowly::linuxdesktop {

// The XDG desktop entries of the user's applications directories, read once and
// re-read when one of those directories changes.
class DesktopEntries {
public:
    struct Entry {
        std::string id;             // desktop file id, e.g. "org.xfce.mousepad"
        std::string name;           // Name, localized for the current locale
        std::string icon;           // Icon key, possibly empty
        std::string startupWmClass; // StartupWMClass, possibly empty
    };

    // What a window says about the application that owns it.
    struct Hints {
        const std::optional<std::string>* gtkApplicationId = nullptr;
        const std::optional<std::string>* kdeDesktopFile = nullptr;
        const std::optional<std::string>* wmClassClass = nullptr;
        const std::optional<std::string>* wmClassInstance = nullptr;
    };

    DesktopEntries();

    // Re-reads the directories when their modification times changed.
    void refreshIfChanged();
    const Entry* match(const Hints& hints) const;
    const Entry* byId(const std::string& id) const;

    // For tests: the directories searched, in precedence order.
    const std::vector<std::string>& directories() const { return m_directories; }

private:
    void load();
    void scan(const std::string& base, const std::string& dir, const std::string& prefix, int depth);

    std::vector<std::string> m_directories;
    std::vector<std::timespec> m_stamps;
    std::vector<std::string> m_localeKeys; // Name[...] keys in preference order
    std::vector<Entry> m_entries;
    std::unordered_map<std::string, std::size_t> m_byId;
    std::unordered_map<std::string, std::size_t> m_byIdLower;
    std::unordered_map<std::string, std::size_t> m_byWmClass;
    std::unordered_map<std::string, std::size_t> m_byLastComponentLower;
};

} // namespace stowly::linuxdesktop
