// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/PreferenceStore.h"

#include <QSettings>

namespace stowly::linuxdesktop {

// The user's preferences in QSettings: $XDG_CONFIG_HOME/Stowly/Stowly.conf on Linux.
// The file is the user's to edit: a value that is not text reads as absent, a file that
// cannot be read reads as empty, and writing one key keeps every other key in the file.
class SettingsPreferenceStore : public PreferenceStore {
public:
    SettingsPreferenceStore();
    std::optional<std::string> string(const std::string& key) const override;
    void setString(const std::string& key, const std::string& value) override;

    // The text a stored value stands for, or nothing when it is not text.
    static std::optional<std::string> readableText(const QVariant& value);

private:
    mutable QSettings m_settings;
};

} // namespace stowly::linuxdesktop
