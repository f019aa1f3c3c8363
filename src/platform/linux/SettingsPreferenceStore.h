#pragma once

#include "platform/PreferenceStore.h"

#include <QSettings>

namespace stowly::linuxdesktop {

// The user's preferences in QSettings: $XDG_CONFIG_HOME/Stowly/Stowly.conf on Linux.
class SettingsPreferenceStore : public PreferenceStore {
public:
    SettingsPreferenceStore();
    std::optional<std::string> string(const std::string& key) const override;
    void setString(const std::string& key, const std::string& value) override;

private:
    mutable QSettings m_settings;
};

} // namespace stowly::linuxdesktop
