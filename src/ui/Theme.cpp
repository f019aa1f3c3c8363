// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "Theme.h"

#include <QEvent>
#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QPalette>
#include <QUrlQuery>

namespace stowly {

const ColorScheme& ColorScheme::light()
{
    static const ColorScheme scheme{
        .accent = QColor(0x00, 0x7a, 0xff),
        .accentFill = QColor(0x00, 0x6a, 0xe0),
        .orange = QColor(0x96, 0x42, 0x00),
        .green = QColor(0x15, 0x66, 0x2b),
        .primary = QColor::fromRgba(0xe6000000),
        .secondary = QColor::fromRgba(0x99000000),
        .white = QColor(0xff, 0xff, 0xff),
        .controlBackground = QColor(0xff, 0xff, 0xff),
        .control = QColor(0xee, 0xee, 0xf0),
        .windowBackground = QColor(0xec, 0xec, 0xec),
        .separator = QColor::fromRgba(0x1f000000),
    };
    return scheme;
}

const ColorScheme& ColorScheme::dark()
{
    // Controls sit lighter than the window, as the light scheme's white tiles do on grey.
    static const ColorScheme scheme{
        .accent = QColor(0x0a, 0x84, 0xff),
        .accentFill = QColor(0x0a, 0x6f, 0xe0),
        .orange = QColor(0xff, 0xa4, 0x3d),
        .green = QColor(0x4c, 0xd9, 0x64),
        .primary = QColor::fromRgba(0xe6ffffff),
        .secondary = QColor::fromRgba(0x99ffffff),
        .white = QColor(0xff, 0xff, 0xff),
        .controlBackground = QColor(0x2c, 0x2c, 0x2e),
        .control = QColor(0x3a, 0x3a, 0x3c),
        .windowBackground = QColor(0x1e, 0x1e, 0x1e),
        .separator = QColor::fromRgba(0x26ffffff),
    };
    return scheme;
}

bool ColorScheme::prefersDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

const ColorScheme& ColorScheme::current()
{
    return prefersDark(QGuiApplication::palette()) ? dark() : light();
}

QColor ColorScheme::statusColor(const QString& status) const
{
    if (status == QLatin1String("Hidden"))
        return orange;
    if (status == QLatin1String("Active"))
        return green;
    return secondary;
}

bool Theme::hasDistinctWeights(const QString& family)
{
    if (!QFontDatabase::hasFamily(family))
        return false;
    // Ask for each weight and see which face the font database matches to it: a family
    // without a face of that weight answers with a neighbouring one.
    QStringList faces;
    for (const QFont::Weight weight : {QFont::Normal, QFont::Medium, QFont::DemiBold, QFont::Bold}) {
        QFont font(family);
        font.setWeight(weight);
        const QFontInfo info(font);
        if (info.family() != family)
            return false;
        const QString face = info.styleName();
        if (face.isEmpty() || faces.contains(face))
            return false;
        faces.append(face);
    }
    return true;
}

QString Theme::chooseFontFamily(const QStringList& candidates)
{
    for (const QString& family : candidates)
        if (hasDistinctWeights(family))
            return family;
    return QGuiApplication::font().family();
}

Theme::Theme(QObject* parent) : QObject(parent), m_scheme(&ColorScheme::current())
{
    // Chosen once per run: the engine, and this object with it, is made again each time the
    // panel comes back after a release.
    static const QString family = chooseFontFamily({QStringLiteral("Inter")});
    m_fontFamily = family;
    if (qApp)
        qApp->installEventFilter(this);
}

bool Theme::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
        const ColorScheme* now = &ColorScheme::current();
        if (now != m_scheme) {
            m_scheme = now;
            emit schemeChanged();
        }
    }
    return QObject::eventFilter(watched, event);
}

QUrl Theme::symbol(const QString& name, const QColor& color) const
{
    // The colour travels in the URL so that each tint is its own cached image.
    QUrl url(QStringLiteral("image://symbol/") + name);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("color"), color.name(QColor::HexArgb).mid(1));
    url.setQuery(query);
    return url;
}

} // namespace stowly
