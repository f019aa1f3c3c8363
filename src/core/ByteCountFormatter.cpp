#include "ByteCountFormatter.h"

#include <QLocale>

#include <array>
#include <cmath>
#include <cstdlib>

namespace stowly {

namespace {

struct Unit {
    const char* name;
    int fractionDigits;   // the adaptive style: KB 0, MB 1, GB and above 2
};

constexpr std::array<Unit, 6> kUnits{{
    {"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}, {"EB", 2},
}};

QString groupedNumber(double value, int fractionDigits)
{
    static const QLocale english(QLocale::English, QLocale::UnitedStates);
    QString text = english.toString(value, 'f', fractionDigits);
    // Fraction digits are not zero-padded: "1.5 MB", "1 MB".
    if (fractionDigits > 0) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
    }
    return text;
}

} // namespace

QString formatMemoryByteCount(std::int64_t byteCount)
{
    if (byteCount == 0)
        return QStringLiteral("Zero KB");

    const bool negative = byteCount < 0;
    const double magnitude = std::fabs(static_cast<double>(byteCount));
    const QString sign = negative ? QStringLiteral("-") : QString();

    if (magnitude < 1024.0) {
        const auto count = static_cast<long long>(magnitude);
        return sign + groupedNumber(magnitude, 0) + (count == 1 ? QStringLiteral(" byte") : QStringLiteral(" bytes"));
    }

    // Climb while the value, as it will be shown, still reaches 1,024 of the current unit,
    // so that 1,048,575 bytes reads "1 MB" rather than "1,024 KB".
    double value = magnitude / 1024.0;
    std::size_t unit = 0;
    while (unit + 1 < kUnits.size()) {
        const double scale = std::pow(10.0, kUnits[unit].fractionDigits);
        if (std::round(value * scale) / scale < 1024.0)
            break;
        value /= 1024.0;
        ++unit;
    }
    return sign + groupedNumber(value, kUnits[unit].fractionDigits) + QLatin1Char(' ')
        + QLatin1String(kUnits[unit].name);
}

} // namespace stowly
