// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ByteCountFormatter.h"

#include <QLocale>

#include <array>
#include <cmath>
#include <cstdlib>

namespace stowly {

namespace {

struct Unit {
    const char* name;
    int fractionDigits; // the adaptive style: KB 0, MB 1, GB and above 2
};

constexpr std::array<Unit, 6> kUnits{{
    {"KB", 0},
    {"MB", 1},
    {"GB", 2},
    {"TB", 2},
    {"PB", 2},
    {"EB", 2},
}};

QString groupedNumber(double value, int fractionDigits)
{
    static const QLocale english(QLocale::English, QLocale::UnitedStates);
    // Ties round to even, as a number formatter does by default: 2.5 KB reads "2 KB".
    const double scale = std::pow(10.0, fractionDigits);
    const double rounded = std::nearbyint(value * scale) / scale;
    QString text = english.toString(rounded, 'f', fractionDigits);
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

    // The unit follows the raw count alone, as the formatter does: just under 1 MB still
    // reads in KB ("1,024 KB" for 1,048,575 bytes).
    double value = magnitude / 1024.0;
    std::size_t unit = 0;
    while (unit + 1 < kUnits.size() && value >= 1024.0) {
        value /= 1024.0;
        ++unit;
    }
    return sign + groupedNumber(value, kUnits[unit].fractionDigits) + QLatin1Char(' ') +
           QLatin1String(kUnits[unit].name);
}

} // namespace stowly
