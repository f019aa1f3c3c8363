#include "Theme.h"

#include <QUrlQuery>

namespace stowly {

QUrl Theme::symbol(const QString& name, const QColor& color) const
{
    // The colour travels in the URL so that each tint is its own cached image.
    QUrl url(QStringLiteral("image://symbol/") + name);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("color"), color.name(QColor::HexArgb).mid(1));
    url.setQuery(query);
    return url;
}

QColor Theme::statusColor(const QString& status)
{
    if (status == QLatin1String("Hidden"))
        return Palette::orange;
    if (status == QLatin1String("Active"))
        return Palette::green;
    return Palette::secondary;
}

} // namespace stowly
