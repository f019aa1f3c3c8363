// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/LoginItemService.h"

#include <string>

namespace stowly::linuxdesktop {

// The login item as an XDG autostart entry: $XDG_CONFIG_HOME/autostart/app.stowly.Stowly.desktop.
// The entry always names one program: registering replaces whatever entry was there,
// including one under the name earlier versions used.
class XdgAutostart : public LoginItemService {
public:
    // Empty executable: the absolute path of the running binary.
    explicit XdgAutostart(std::string executable = {});

    LoginItemStatus status() override;
    std::optional<std::string> registerMainApp() override;
    std::optional<std::string> unregisterMainApp() override;

    // Where the entry lives, from the environment at the time of the call.
    static std::string entryPath();
    // The name earlier versions wrote, removed when the entry is written or removed.
    static std::string legacyEntryPath();

private:
    std::string m_executable;
};

} // namespace stowly::linuxdesktop
