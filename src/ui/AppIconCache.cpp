// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "AppIconCache.h"

#include <QMutexLocker>

namespace stowly {

void AppIconCache::update(const std::vector<std::pair<std::int32_t, AppIconRef>>& icons)
{
    QMutexLocker lock(&m_mutex);
    QHash<std::int32_t, Entry> kept;
    for (const auto& [pid, icon] : icons) {
        if (!icon)
            continue;
        auto old = m_entries.constFind(pid);
        if (old != m_entries.constEnd() && old->source == icon) {
            kept.insert(pid, *old);
            continue;
        }
        kept.insert(pid, Entry{icon, toImage(*icon), m_nextGeneration++});
    }
    m_entries = std::move(kept);
}

void AppIconCache::clear()
{
    QMutexLocker lock(&m_mutex);
    QHash<std::int32_t, Entry>().swap(m_entries);
}

std::size_t AppIconCache::size() const
{
    QMutexLocker lock(&m_mutex);
    return std::size_t(m_entries.size());
}

QString AppIconCache::url(std::int32_t pid) const
{
    QMutexLocker lock(&m_mutex);
    auto entry = m_entries.constFind(pid);
    if (entry == m_entries.constEnd() || entry->image.isNull())
        return {};
    return QStringLiteral("image://appicon/%1-%2").arg(pid).arg(entry->generation);
}

QImage AppIconCache::image(const QString& id) const
{
    const QStringList parts = id.split(QLatin1Char('-'));
    if (parts.size() != 2)
        return {};
    bool pidOk = false;
    bool generationOk = false;
    const int pid = parts[0].toInt(&pidOk);
    const quint64 generation = parts[1].toULongLong(&generationOk);
    if (!pidOk || !generationOk)
        return {};
    QMutexLocker lock(&m_mutex);
    auto entry = m_entries.constFind(pid);
    if (entry == m_entries.constEnd() || entry->generation != generation)
        return {};
    return entry->image;
}

QImage AppIconCache::toImage(const AppIcon& icon)
{
    // Pixels arrive as 0xAARRGGBB words, not premultiplied: QImage's ARGB32 exactly.
    if (icon.width <= 0 || icon.height <= 0 || icon.argb.size() < std::size_t(icon.width) * std::size_t(icon.height))
        return {};
    QImage image(icon.width, icon.height, QImage::Format_ARGB32);
    for (int y = 0; y < icon.height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const std::uint32_t* source = icon.argb.data() + std::size_t(y) * std::size_t(icon.width);
        std::copy(source, source + icon.width, line);
    }
    return image;
}

} // namespace stowly
