// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "NameCollator.h"

#include <algorithm>

namespace stowly {

namespace {

QCollator caseInsensitiveCollator(const QLocale& locale)
{
    QCollator collator(locale);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

// A collator that really collates: letters by alphabet whatever their case, accents
// after the plain letter. Qt's C-locale and no-ICU paths fail this.
bool collates(const QCollator& collator)
{
    const auto before = [&](const char16_t* a, const char16_t* b) {
        return collator.compare(QString::fromUtf16(a), QString::fromUtf16(b)) < 0;
    };
    return before(u"alpha", u"Zeta") && before(u"Beta", u"gamma") && before(u"\u00e9t\u00e9", u"zoo") &&
           collator.compare(QStringLiteral("Mail"), QStringLiteral("mail")) == 0;
}

} // namespace

NameCollator::NameCollator() : NameCollator(QLocale()) {}

NameCollator::NameCollator(const QLocale& locale)
{
    // The C/POSIX locale names no language; English carries no tailoring of the Unicode
    // collation order, so it stands for the language-neutral order here.
    const QLocale effective =
        locale.language() == QLocale::C ? QLocale(QLocale::English, QLocale::UnitedStates) : locale;
    QCollator collator = caseInsensitiveCollator(effective);
    if (collates(collator))
        m_collator = std::move(collator);
}

int NameCollator::compare(const QString& a, const QString& b) const
{
    return m_collator ? m_collator->compare(a, b) : compareCaseFolded(a, b);
}

int NameCollator::compareCaseFolded(const QString& a, const QString& b)
{
    // Qt folds one character to one: upper-casing first brings in the folds to several
    // characters ("ß" to "SS", then "ss") that full Unicode case folding makes.
    const auto key = [](const QString& text) {
        return text.normalized(QString::NormalizationForm_C).toUpper().toCaseFolded().toUcs4();
    };
    const QList<uint> ka = key(a);
    const QList<uint> kb = key(b);
    const auto mismatch = std::mismatch(ka.begin(), ka.end(), kb.begin(), kb.end());
    if (mismatch.first == ka.end() && mismatch.second == kb.end())
        return 0;
    if (mismatch.first == ka.end())
        return -1;
    if (mismatch.second == kb.end())
        return 1;
    return *mismatch.first < *mismatch.second ? -1 : 1;
}

} // namespace stowly
