// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "PreferenceFileFormat.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <map>
#include <utility>
#include <vector>

namespace stowly::linuxdesktop {

namespace {

// A value in one of QSettings' "@Type(...)" forms: the text as it stood in the file, written
// back the same.
struct UninterpretedValue {
    QString text;
};

// QSettings keeps the keys of its "General" section at the top level.
const QString kTopLevelSection = QStringLiteral("General");

int hexValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

// Reads up to maxDigits digits of the given base from text at i; i ends on the last one read.
char16_t readNumber(QStringView text, qsizetype& i, int base, int maxDigits, char16_t first)
{
    unsigned value = first;
    for (int n = 0; n < maxDigits && i + 1 < text.size(); ++n) {
        const int digit = hexValue(text[i + 1]);
        if (digit < 0 || digit >= base)
            break;
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        ++i;
    }
    return static_cast<char16_t>(value & 0xffffu);
}

// Quotes only group; a comma stays text (an unquoted list is what the user typed). Backslash
// escapes as QSettings writes them.
QString unescapedValue(QStringView raw)
{
    QString out;
    out.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const QChar c = raw[i];
        if (c == u'"')
            continue;
        if (c != u'\\' || i + 1 == raw.size()) {
            out += c;
            continue;
        }
        const QChar e = raw[++i];
        switch (e.unicode()) {
        case 'a': out += u'\a'; break;
        case 'b': out += u'\b'; break;
        case 'f': out += u'\f'; break;
        case 'n': out += u'\n'; break;
        case 'r': out += u'\r'; break;
        case 't': out += u'\t'; break;
        case 'v': out += u'\v'; break;
        case 'x': out += QChar(readNumber(raw, i, 16, 4, 0)); break;
        case '0':
        case '1':
        case '2':
        case '3':
        case '4':
        case '5':
        case '6':
        case '7': out += QChar(readNumber(raw, i, 8, 2, static_cast<char16_t>(e.unicode() - '0'))); break;
        default: out += e; // \\ \" \' \? and anything unknown stand for themselves
        }
    }
    return out;
}

// "%XX" and "%UXXXX" stand for one character; a backslash separates subkeys.
QString unescapedKey(QStringView raw)
{
    QString out;
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const QChar c = raw[i];
        if (c == u'\\') {
            out += u'/';
        } else if (c == u'%' && i + 5 < raw.size() && raw[i + 1] == u'U' && hexValue(raw[i + 2]) >= 0) {
            ++i;
            out += QChar(readNumber(raw, i, 16, 4, 0));
        } else if (c == u'%' && i + 2 < raw.size() && hexValue(raw[i + 1]) >= 0 && hexValue(raw[i + 2]) >= 0) {
            out += QChar(readNumber(raw, i, 16, 2, 0));
        } else {
            out += c;
        }
    }
    return out;
}

QVariant valueOf(QStringView raw)
{
    const QString text = unescapedValue(raw);
    if (text.startsWith(QLatin1String("@@")))
        return text.mid(1);
    if (text.startsWith(u'@'))
        return QVariant::fromValue(UninterpretedValue{raw.toString()});
    return text;
}

QByteArray escapedKey(const QString& key)
{
    QByteArray out;
    for (const QChar c : key) {
        const char16_t u = c.unicode();
        const bool plain = (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' ||
                           u == '-' || u == '.';
        if (plain)
            out += static_cast<char>(u);
        else if (u == '/')
            out += '\\';
        else if (u < 0x100)
            out += '%' + QByteArray::number(static_cast<int>(u), 16).rightJustified(2, '0').toUpper();
        else
            out += "%U" + QByteArray::number(static_cast<int>(u), 16).rightJustified(4, '0').toUpper();
    }
    return out;
}

QByteArray escapedValue(const QVariant& value)
{
    if (value.metaType() == QMetaType::fromType<UninterpretedValue>())
        return value.value<UninterpretedValue>().text.toUtf8();
    QString text = value.toString();
    if (text.startsWith(u'@'))
        text.prepend(u'@');
    bool quote = !text.isEmpty() && (text.front().isSpace() || text.back().isSpace());
    QString out;
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '\\': out += QLatin1String("\\\\"); break;
        case '"': out += QLatin1String("\\\""); break;
        case '\n': out += QLatin1String("\\n"); break;
        case '\r': out += QLatin1String("\\r"); break;
        case '\t': out += QLatin1String("\\t"); break;
        case ',':
        case ';':
        case '=':
        case '#':
            quote = true;
            out += c;
            break;
        default:
            if (c.unicode() < 0x20)
                out += QStringLiteral("\\x%1").arg(static_cast<uint>(c.unicode()), 4, 16, QLatin1Char('0'));
            else
                out += c;
        }
    }
    const QByteArray bytes = out.toUtf8();
    return quote ? '"' + bytes + '"' : bytes;
}

bool readPreferenceFile(QIODevice& device, QSettings::SettingsMap& map)
{
    const QString text = QString::fromUtf8(device.readAll());
    QString prefix;
    for (QStringView line : QStringView(text).split(u'\n')) {
        line = line.trimmed();
        if (line.isEmpty() || line.front() == u';' || line.front() == u'#')
            continue;
        if (line.front() == u'[') {
            const qsizetype close = line.indexOf(u']');
            const QString section = unescapedKey(line.mid(1, close < 0 ? -1 : close - 1).trimmed());
            prefix = section.isEmpty() || section == kTopLevelSection ? QString() : section + u'/';
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals <= 0)
            continue; // a line that is no key: skipped, as QSettings skips it
        const QString key = unescapedKey(line.left(equals).trimmed());
        if (key.isEmpty())
            continue;
        map.insert(prefix + key, valueOf(line.mid(equals + 1).trimmed()));
    }
    return true;
}

bool writePreferenceFile(QIODevice& device, const QSettings::SettingsMap& map)
{
    // The top-level keys first, under "General", then every other section in order.
    std::map<QString, std::vector<std::pair<QString, QVariant>>> sections;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const qsizetype slash = it.key().indexOf(u'/');
        const QString section = slash < 0 ? QString() : it.key().left(slash);
        sections[section].emplace_back(slash < 0 ? it.key() : it.key().mid(slash + 1), it.value());
    }
    QByteArray out;
    for (const auto& [section, entries] : sections) {
        if (!out.isEmpty())
            out += '\n';
        out += '[' + (section.isEmpty() ? kTopLevelSection.toLatin1() : escapedKey(section)) + "]\n";
        for (const auto& [key, value] : entries)
            out += escapedKey(key) + '=' + escapedValue(value) + '\n';
    }
    return device.write(out) == out.size();
}

} // namespace

QSettings::Format preferenceFileFormat()
{
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("conf"), readPreferenceFile, writePreferenceFile);
    return format == QSettings::InvalidFormat ? QSettings::IniFormat : format;
}

} // namespace stowly::linuxdesktop
