// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "AppIconCache.h"

#include <QQuickImageProvider>

namespace stowly {

// Serves "image://appicon/<id>": an app's icon scaled to the requested size with
// high-quality filtering and clipped to the row's rounded square (continuous corners,
// radius 6 of 24).
class AppIconImageProvider : public QQuickImageProvider {
public:
    explicit AppIconImageProvider(AppIconCacheRef cache);
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

private:
    AppIconCacheRef m_cache;
};

} // namespace stowly
