// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ThemedIcons.h"

#include "XdgDirs.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QImage>
#include <QImageIOHandler>
#include <QImageReader>
#include <QString>

#include <sys/stat.h>

#include <cstdlib>
#include <string_view>
#include <vector>

namespace stowly::linuxdesktop {

namespace {

bool isRegularFile(const std::string& path)
{
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

// Base directories of icon themes, in the order the XDG Icon Theme format gives.
std::vector<std::string> iconBaseDirectories()
{
    std::vector<std::string> bases;
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/')
        bases.push_back(std::string(home) + "/.icons");
    for (const std::string& data : xdgDataDirectories())
        bases.push_back(data + "/icons");
    return bases;
}

// Sizes of hicolor's fixed-size directories, nearest to the drawn size first.
constexpr int kSizesByPreference[] = {48, 64, 32, 96, 128, 256, 24, 22, 16};
constexpr const char* kExtensions[] = {".png", ".svg", ".xpm"};

bool endsWith(const std::string& text, std::string_view suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

AppIconRef decode(const std::string& path)
{
    // Rendering SVG may lay out text, and Qt's fonts exist only in a GUI application:
    // without one, vector icons are skipped rather than risk an abort.
    if (endsWith(path, ".svg") && qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr)
        return nullptr;
    QImageReader reader(QString::fromStdString(path));
    // Vector icons are rendered at the size we draw; large bitmaps are scaled down to it.
    const QSize original = reader.size();
    if (reader.supportsOption(QImageIOHandler::ScaledSize) &&
        (!original.isValid() || original.width() > kWantedIconSize || original.height() > kWantedIconSize))
        reader.setScaledSize(QSize(kWantedIconSize, kWantedIconSize));
    QImage image = reader.read();
    if (image.isNull() || image.width() <= 0 || image.height() <= 0)
        return nullptr;
    if (image.width() > kWantedIconSize || image.height() > kWantedIconSize)
        image = image.scaled(kWantedIconSize, kWantedIconSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    image = image.convertToFormat(QImage::Format_ARGB32);

    auto icon = std::make_shared<AppIcon>();
    icon->width = image.width();
    icon->height = image.height();
    icon->argb.reserve(static_cast<std::size_t>(icon->width) * static_cast<std::size_t>(icon->height));
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        icon->argb.insert(icon->argb.end(), row, row + image.width());
    }
    return icon;
}

} // namespace

std::optional<std::string> ThemedIcons::findFile(const std::string& iconName)
{
    // A name with a path separator is no icon name.
    if (iconName.empty() || iconName.find('/') != std::string::npos)
        return std::nullopt;
    const auto bases = iconBaseDirectories();
    for (const int size : kSizesByPreference) {
        const std::string subdir = "/hicolor/" + std::to_string(size) + "x" + std::to_string(size) + "/apps/";
        for (const std::string& base : bases)
            for (const char* extension : kExtensions)
                if (const std::string path = base + subdir + iconName + extension; isRegularFile(path))
                    return path;
    }
    for (const std::string& base : bases)
        if (const std::string path = base + "/hicolor/scalable/apps/" + iconName + ".svg"; isRegularFile(path))
            return path;
    std::vector<std::string> pixmaps;
    for (const std::string& data : xdgDataDirectories())
        pixmaps.push_back(data + "/pixmaps/");
    for (const std::string& dir : pixmaps)
        for (const char* extension : kExtensions)
            if (const std::string path = dir + iconName + extension; isRegularFile(path))
                return path;
    return std::nullopt;
}

AppIconRef ThemedIcons::lookup(const std::string& iconKey)
{
    if (iconKey.empty())
        return nullptr;
    if (const auto cached = m_cache.find(iconKey); cached != m_cache.end())
        return cached->second;
    AppIconRef icon;
    if (iconKey.front() == '/') {
        if (isRegularFile(iconKey))
            icon = decode(iconKey);
    } else if (const auto path = findFile(iconKey)) {
        icon = decode(*path);
    }
    m_cache.emplace(iconKey, icon);
    return icon;
}

} // namespace stowly::linuxdesktop
