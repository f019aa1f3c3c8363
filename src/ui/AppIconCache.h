// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/AppIcon.h"

#include <QHash>
#include <QImage>
#include <QMutex>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace stowly {

// The app icons the list currently shows, as images, keyed by process id. The list model
// updates it on the main thread; the image provider may read it from Qt Quick's loader.
class AppIconCache {
public:
    // Keeps exactly these pids (so the cache never outgrows the list); converts an icon only when its pixels object
    // changed.
    void update(const std::vector<std::pair<std::int32_t, AppIconRef>>& icons);
    // "image://appicon/<pid>-<generation>", or empty when the app has no icon. The
    // generation changes with the icon, so Qt's image cache never serves a stale one.
    QString url(std::int32_t pid) const;
    // Forgets every image; the next update() converts what it keeps again.
    void clear();
    std::size_t size() const;
    // The image behind an id of url() (what follows "image://appicon/"); null when unknown.
    QImage image(const QString& id) const;

    static QImage toImage(const AppIcon& icon);

private:
    struct Entry {
        AppIconRef source;
        QImage image;
        quint64 generation = 0;
    };
    mutable QMutex m_mutex;
    QHash<std::int32_t, Entry> m_entries;
    quint64 m_nextGeneration = 1;
};

using AppIconCacheRef = std::shared_ptr<AppIconCache>;

} // namespace stowly
