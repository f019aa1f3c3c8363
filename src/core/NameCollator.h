// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QCollator>
#include <QLocale>
#include <QString>

#include <optional>

namespace stowly {

// The localized, case-insensitive comparison that breaks name ties in the app list
// (localizedCaseInsensitiveCompare). It holds in every locale: where the locale is the
// C/POSIX one, which Qt would compare by raw code points (capitals before every small
// letter), names are collated by the language-neutral Unicode order that ICU uses for
// English; where Qt has no working collation at all, by case-folded code points.
class NameCollator {
public:
    NameCollator(); // the user's locale (QLocale())
    explicit NameCollator(const QLocale& locale);

    // Negative, zero or positive, as a comes before, ties with or comes after b.
    int compare(const QString& a, const QString& b) const;
    bool operator()(const QString& a, const QString& b) const { return compare(a, b) < 0; }

    // False when Qt gave no usable collation and case folding decides.
    bool usesCollation() const { return m_collator.has_value(); }

    // The fallback: case folding (with the folds to several characters), then code points (not UTF-16 units, so
    // that names beyond the Basic Multilingual Plane sort by their scalar values).
    static int compareCaseFolded(const QString& a, const QString& b);

private:
    std::optional<QCollator> m_collator;
};

} // namespace stowly
