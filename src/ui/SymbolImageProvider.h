// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QQuickImageProvider>

namespace stowly {

// Serves "image://symbol/<name>?color=AARRGGBB": our glyph for a symbol name
// (src/ui/icons/<name>.svg), rendered at the requested pixel size, so it stays crisp at
// every device pixel ratio, and painted in the colour asked for (white details stay white).
class SymbolImageProvider : public QQuickImageProvider {
public:
    SymbolImageProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

    static QString resourcePath(const QString& name); // ":/Stowly/icons/<name>.svg"
    static QImage render(const QString& name, const QSize& pixelSize, const QColor& color);
};

} // namespace stowly
