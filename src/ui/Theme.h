// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QPalette;

namespace stowly {

// One set of the views' colours. Orange and green are used for small text, so in both
// schemes they reach 4.5:1 (WCAG AA) against the window, the controls and their own badge
// tint.
struct ColorScheme {
    QColor accent;
    // The accent for surfaces that carry white text (the prominent button, a highlighted
    // menu entry): darker than the accent, so that the text reaches 4.5:1 on it.
    QColor accentFill;
    QColor orange;
    QColor green;
    QColor primary;
    QColor secondary;
    QColor white;
    QColor controlBackground;
    QColor control;
    QColor windowBackground;
    QColor separator;

    // The light scheme the views were designed against, and its dark counterpart.
    static const ColorScheme& light();
    static const ColorScheme& dark();
    // Dark when the desktop's palette is: its window colour is darker than its text.
    static bool prefersDark(const QPalette& palette);
    // The scheme for the application's palette now.
    static const ColorScheme& current();

    // A row's badge colour: orange for "Hidden", green for "Active", else secondary.
    QColor statusColor(const QString& status) const;
};

// The colours and font sizes of the views (the QML singleton `Theme`, one per engine), and
// the URLs of the symbol glyphs. The colours follow the desktop's palette, also when it
// changes while the program runs.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDark READ isDark NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor accent READ accent NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor accentFill READ accentFill NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor orange READ orange NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor green READ green NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor primary READ primary NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor secondary READ secondary NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor white READ white NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor controlBackground READ controlBackground NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor control READ control NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor windowBackground READ windowBackground NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QColor separator READ separator NOTIFY schemeChanged FINAL)
    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT FINAL)
    Q_PROPERTY(int titleSize MEMBER titleSize CONSTANT FINAL)
    Q_PROPERTY(int headlineSize MEMBER headlineSize CONSTANT FINAL)
    Q_PROPERTY(int subheadlineSize MEMBER subheadlineSize CONSTANT FINAL)
    Q_PROPERTY(int captionSize MEMBER captionSize CONSTANT FINAL)
    Q_PROPERTY(int footnoteSize MEMBER footnoteSize CONSTANT FINAL)
    Q_PROPERTY(int labelSpacing MEMBER labelSpacing CONSTANT FINAL)

public:
    explicit Theme(QObject* parent = nullptr);

    // The glyph for a symbol name ("eye.slash"), drawn in one colour.
    Q_INVOKABLE QUrl symbol(const QString& name, const QColor& color) const;

    const ColorScheme& scheme() const { return *m_scheme; }
    bool isDark() const { return m_scheme == &ColorScheme::dark(); }
    QColor accent() const { return m_scheme->accent; }
    QColor accentFill() const { return m_scheme->accentFill; }
    QColor orange() const { return m_scheme->orange; }
    QColor green() const { return m_scheme->green; }
    QColor primary() const { return m_scheme->primary; }
    QColor secondary() const { return m_scheme->secondary; }
    QColor white() const { return m_scheme->white; }
    QColor controlBackground() const { return m_scheme->controlBackground; }
    QColor control() const { return m_scheme->control; }
    QColor windowBackground() const { return m_scheme->windowBackground; }
    QColor separator() const { return m_scheme->separator; }

    // The views' font family: Inter when installed, whose Medium and SemiBold are weights of
    // their own (DejaVu, the usual fallback, has only Book and Bold, so medium and semibold
    // text would fall back to them); otherwise the desktop's default family.
    QString fontFamily() const { return m_fontFamily; }
    // The first of `candidates` that is installed with distinct regular, medium, semibold
    // and bold faces, or the application font's family when none is.
    static QString chooseFontFamily(const QStringList& candidates);
    // Whether `family` is installed with those four weights as faces of their own.
    static bool hasDistinctWeights(const QString& family);

    // Pixel sizes of the text styles.
    int titleSize = 20;
    int headlineSize = 14;
    int subheadlineSize = 12;
    int captionSize = 11;
    int footnoteSize = 11;
    // Between a label's symbol and its text (the access warning, "Applied from the menu bar").
    int labelSpacing = 5;

signals:
    void schemeChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const ColorScheme* m_scheme;
    QString m_fontFamily;
};

} // namespace stowly
