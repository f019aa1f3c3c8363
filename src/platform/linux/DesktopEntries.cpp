// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "DesktopEntries.h"

#include "DesktopEntryFile.h"
#include "TextUtil.h"
#include "XdgDirs.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <string_view>

namespace stowly::linuxdesktop {

namespace {

std::string lower(std::string_view s)
{
    std::string out(s);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char ch) { return static_cast<char>(std::tolower(ch)); });
    return out;
}

// Each XDG data directory + "/applications", in precedence order.
std::vector<std::string> applicationDirectories()
{
    std::vector<std::string> dirs = xdgDataDirectories();
    for (std::string& dir : dirs)
        dir += "/applications";
    return dirs;
}

// The Name[...] keys to try, best first, per the Desktop Entry locale matching rules.
std::vector<std::string> localeKeys()
{
    std::string locale;
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            locale = value;
            break;
        }
    }
    std::vector<std::string> keys;
    if (locale.empty() || locale == "C" || locale == "POSIX")
        return keys;
    std::string modifier;
    if (const auto at = locale.find('@'); at != std::string::npos) {
        modifier = locale.substr(at + 1);
        locale.erase(at);
    }
    if (const auto dot = locale.find('.'); dot != std::string::npos)
        locale.erase(dot);
    std::string language = locale, country;
    if (const auto underscore = locale.find('_'); underscore != std::string::npos) {
        language = locale.substr(0, underscore);
        country = locale.substr(underscore + 1);
    }
    if (!country.empty() && !modifier.empty())
        keys.push_back(language + "_" + country + "@" + modifier);
    if (!country.empty())
        keys.push_back(language + "_" + country);
    if (!modifier.empty())
        keys.push_back(language + "@" + modifier);
    keys.push_back(language);
    return keys;
}

std::timespec stampOf(const std::string& path)
{
    struct stat st {};
    if (stat(path.c_str(), &st) != 0)
        return std::timespec{-1, 0};
    return st.st_mtim;
}

} // namespace

DesktopEntries::DesktopEntries()
{
    load();
}

void DesktopEntries::refreshIfChanged()
{
    const std::vector<std::string> dirs = applicationDirectories();
    bool changed = dirs != m_directories || localeKeys() != m_localeKeys;
    for (std::size_t i = 0; !changed && i < dirs.size(); ++i) {
        const std::timespec now = stampOf(dirs[i]);
        changed = now.tv_sec != m_stamps[i].tv_sec || now.tv_nsec != m_stamps[i].tv_nsec;
    }
    if (changed)
        load();
}

void DesktopEntries::load()
{
    m_directories = applicationDirectories();
    m_localeKeys = localeKeys();
    m_stamps.clear();
    m_entries.clear();
    m_byId.clear();
    m_byIdLower.clear();
    m_byWmClass.clear();
    m_byLastComponentLower.clear();
    for (const std::string& dir : m_directories) {
        m_stamps.push_back(stampOf(dir));
        scan(dir, dir, std::string(), 0);
    }
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        const Entry& e = m_entries[i];
        m_byIdLower.emplace(lower(e.id), i);
        if (!e.startupWmClass.empty())
            m_byWmClass.emplace(e.startupWmClass, i);
        const auto dot = e.id.rfind('.');
        m_byLastComponentLower.emplace(lower(dot == std::string::npos ? e.id : e.id.substr(dot + 1)), i);
    }
}

void DesktopEntries::scan(const std::string& base, const std::string& dir, const std::string& prefix, int depth)
{
    if (depth > 4)
        return;
    DIR* d = opendir(dir.c_str());
    if (d == nullptr)
        return;
    std::vector<std::string> names;
    while (dirent* entry = readdir(d)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        const std::string path = dir + "/" + name;
        struct stat st {};
        if (stat(path.c_str(), &st) != 0)
            continue;
        if (S_ISDIR(st.st_mode)) {
            // Desktop file ids join subdirectories with '-'.
            scan(base, path, prefix + name + "-", depth + 1);
            continue;
        }
        constexpr std::string_view suffix = ".desktop";
        if (!S_ISREG(st.st_mode) || name.size() <= suffix.size() ||
            name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0 || st.st_size > (1 << 20))
            continue;
        const std::string id = prefix + name.substr(0, name.size() - suffix.size());
        if (m_byId.count(id) != 0)
            continue; // an earlier directory takes precedence
        std::ifstream in(path);
        if (!in)
            continue;
        std::string type, plainName, icon, wmClass;
        bool hidden = false;
        std::size_t bestLocale = m_localeKeys.size();
        std::string localizedName;
        for (const auto& [key, value] : readDesktopEntryGroup(in)) {
            if (key == "Type")
                type = value;
            else if (key == "Name")
                plainName = value;
            else if (key == "Icon")
                icon = value;
            else if (key == "StartupWMClass")
                wmClass = value;
            else if (key == "Hidden")
                hidden = value == "true";
            else if (key.rfind("Name[", 0) == 0 && key.back() == ']') {
                const std::string locale = key.substr(5, key.size() - 6);
                for (std::size_t k = 0; k < bestLocale; ++k) {
                    if (m_localeKeys[k] == locale) {
                        bestLocale = k;
                        localizedName = value;
                        break;
                    }
                }
            }
        }
        // A Hidden entry is a deleted one; it still masks lower-precedence files of its id.
        m_byId.emplace(id, hidden || type != "Application" ? static_cast<std::size_t>(-1) : m_entries.size());
        if (hidden || type != "Application" || plainName.empty())
            continue;
        m_byId[id] = m_entries.size();
        // The format asks for UTF-8, but nothing enforces it: the name reaches the panel as text.
        m_entries.push_back(Entry{id, sanitizeUtf8(localizedName.empty() ? plainName : localizedName), icon, wmClass});
    }
}

const DesktopEntries::Entry* DesktopEntries::byId(const std::string& id) const
{
    const auto it = m_byId.find(id);
    if (it == m_byId.end() || it->second >= m_entries.size())
        return nullptr;
    return &m_entries[it->second];
}

const DesktopEntries::Entry* DesktopEntries::match(const Hints& hints) const
{
    const auto present = [](const std::optional<std::string>* value) {
        return value != nullptr && value->has_value() && !(*value)->empty();
    };
    if (present(hints.gtkApplicationId))
        if (const Entry* e = byId(**hints.gtkApplicationId))
            return e;
    if (present(hints.kdeDesktopFile)) {
        std::string id = **hints.kdeDesktopFile;
        constexpr std::string_view suffix = ".desktop";
        if (id.size() > suffix.size() && id.compare(id.size() - suffix.size(), suffix.size(), suffix) == 0)
            id.resize(id.size() - suffix.size());
        if (const Entry* e = byId(id))
            return e;
    }
    if (present(hints.wmClassClass)) {
        const std::string& wmClass = **hints.wmClassClass;
        if (const auto it = m_byWmClass.find(wmClass); it != m_byWmClass.end())
            return &m_entries[it->second];
        if (const auto it = m_byIdLower.find(lower(wmClass)); it != m_byIdLower.end())
            return &m_entries[it->second];
        if (const auto it = m_byLastComponentLower.find(lower(wmClass)); it != m_byLastComponentLower.end())
            return &m_entries[it->second];
    }
    if (present(hints.wmClassInstance)) {
        const std::string& instance = **hints.wmClassInstance;
        if (const auto it = m_byWmClass.find(instance); it != m_byWmClass.end())
            return &m_entries[it->second];
        if (const auto it = m_byIdLower.find(lower(instance)); it != m_byIdLower.end())
            return &m_entries[it->second];
    }
    return nullptr;
}

} // namespace stowly::linuxdesktop
