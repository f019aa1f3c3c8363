#pragma once

#include "platform/LoginItemService.h"

#include <string>

namespace stowly::x11 {

// The login item as an XDG autostart entry: $XDG_CONFIG_HOME/autostart/stowly.desktop.
class XdgAutostart : public LoginItemService {
public:
    // Empty executable: the absolute path of the running binary.
    explicit XdgAutostart(std::string executable = {});

    LoginItemStatus status() override;
    std::optional<std::string> registerMainApp() override;
    std::optional<std::string> unregisterMainApp() override;

    // Where the entry lives, from the environment at the time of the call.
    static std::string entryPath();

private:
    std::string m_executable;
};

} // namespace stowly::x11
