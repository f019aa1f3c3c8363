#include "SettingsPreferenceStore.h"

namespace stowly::linuxdesktop {

SettingsPreferenceStore::SettingsPreferenceStore()
    : m_settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Stowly"), QStringLiteral("Stowly"))
{
}

std::optional<std::string> SettingsPreferenceStore::string(const std::string& key) const
{
    const QString qkey = QString::fromStdString(key);
    // Another process (or a test) may have written the file since we last looked.
    m_settings.sync();
    if (!m_settings.contains(qkey))
        return std::nullopt;
    return m_settings.value(qkey).toString().toStdString();
}

void SettingsPreferenceStore::setString(const std::string& key, const std::string& value)
{
    m_settings.setValue(QString::fromStdString(key), QString::fromStdString(value));
    // Saved at once: a crash or a kill right after must not lose the change.
    m_settings.sync();
}

} // namespace stowly::linuxdesktop
