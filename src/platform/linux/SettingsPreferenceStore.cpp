// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SettingsPreferenceStore.h"

#include "PreferenceFileFormat.h"

namespace stowly::linuxdesktop {

SettingsPreferenceStore::SettingsPreferenceStore()
    : m_settings(preferenceFileFormat(), QSettings::UserScope, QStringLiteral("Stowly"), QStringLiteral("Stowly"))
{
}

std::optional<std::string> SettingsPreferenceStore::string(const std::string& key) const
{
    const QString qkey = QString::fromStdString(key);
    // Another process (or a test) may have written the file since we last looked.
    m_settings.sync();
    if (!m_settings.contains(qkey))
        return std::nullopt;
    return readableText(m_settings.value(qkey));
}

std::optional<std::string> SettingsPreferenceStore::readableText(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString: return value.toString().toStdString();
    case QMetaType::QStringList:
        // A hand-edited "enabledActions=minimize,hide" without quotes reads back as a list;
        // the text in the file is what the user meant.
        return value.toStringList().join(QLatin1Char(',')).toStdString();
    case QMetaType::QByteArray: return QString::fromUtf8(value.toByteArray()).toStdString();
    default:
        // An "@Variant(...)", an "@Rect(...)": nothing a reader could take for the text, so
        // the reader's default applies. The file keeps the value as it stands.
        return std::nullopt;
    }
}

void SettingsPreferenceStore::setString(const std::string& key, const std::string& value)
{
    m_settings.setValue(QString::fromStdString(key), QString::fromStdString(value));
    // Saved at once: a crash or a kill right after must not lose the change.
    m_settings.sync();
}

} // namespace stowly::linuxdesktop
