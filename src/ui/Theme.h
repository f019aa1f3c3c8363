#pragma once

#include <QColor>
#include <QObject>
#include <QUrl>

namespace stowly {

// The light desktop palette the views were designed against.
namespace Palette {
inline const QColor accent{0x00, 0x7a, 0xff};
// Orange and green are used for small text, so they are dark enough for 4.5:1 (WCAG AA)
// against the window background and their own badge tint.
inline const QColor orange{0x96, 0x42, 0x00};
inline const QColor green{0x15, 0x66, 0x2b};
inline const QColor primary = QColor::fromRgba(0xe6000000);
inline const QColor secondary = QColor::fromRgba(0x8c000000);
inline const QColor white{0xff, 0xff, 0xff};
inline const QColor controlBackground{0xff, 0xff, 0xff};
inline const QColor control{0xee, 0xee, 0xf0};
inline const QColor windowBackground{0xec, 0xec, 0xec};
inline const QColor separator = QColor::fromRgba(0x1f000000);
} // namespace Palette

// The colours and font sizes of the views (the QML's `theme`), and the URLs of the symbol glyphs.
class Theme : public QObject {
    Q_OBJECT
    Q_PROPERTY(QColor accent MEMBER accent CONSTANT)
    Q_PROPERTY(QColor orange MEMBER orange CONSTANT)
    Q_PROPERTY(QColor green MEMBER green CONSTANT)
    Q_PROPERTY(QColor primary MEMBER primary CONSTANT)
    Q_PROPERTY(QColor secondary MEMBER secondary CONSTANT)
    Q_PROPERTY(QColor white MEMBER white CONSTANT)
    Q_PROPERTY(QColor controlBackground MEMBER controlBackground CONSTANT)
    Q_PROPERTY(QColor control MEMBER control CONSTANT)
    Q_PROPERTY(QColor windowBackground MEMBER windowBackground CONSTANT)
    Q_PROPERTY(QColor separator MEMBER separator CONSTANT)
    Q_PROPERTY(int titleSize MEMBER titleSize CONSTANT)
    Q_PROPERTY(int headlineSize MEMBER headlineSize CONSTANT)
    Q_PROPERTY(int subheadlineSize MEMBER subheadlineSize CONSTANT)
    Q_PROPERTY(int captionSize MEMBER captionSize CONSTANT)
    Q_PROPERTY(int footnoteSize MEMBER footnoteSize CONSTANT)
    Q_PROPERTY(int labelSpacing MEMBER labelSpacing CONSTANT)

public:
    using QObject::QObject;

    // The glyph for a symbol name ("eye.slash"), drawn in one colour.
    Q_INVOKABLE QUrl symbol(const QString& name, const QColor& color) const;

    // A row's badge colour: orange for "Hidden", green for "Active", else secondary.
    static QColor statusColor(const QString& status);

    QColor accent = Palette::accent;
    QColor orange = Palette::orange;
    QColor green = Palette::green;
    QColor primary = Palette::primary;
    QColor secondary = Palette::secondary;
    QColor white = Palette::white;
    QColor controlBackground = Palette::controlBackground;
    QColor control = Palette::control;
    QColor windowBackground = Palette::windowBackground;
    QColor separator = Palette::separator;

    // Pixel sizes of the text styles.
    int titleSize = 20;
    int headlineSize = 14;
    int subheadlineSize = 12;
    int captionSize = 11;
    int footnoteSize = 11;
    // Between a label's symbol and its text (the access warning, "Applied from the menu bar").
    int labelSpacing = 5;
};

} // namespace stowly
