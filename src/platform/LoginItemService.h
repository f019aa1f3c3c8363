// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>

namespace stowly {

// SMAppService.Status.
enum class LoginItemStatus {
    notRegistered,
    enabled,
    requiresApproval,
    notFound,
};

// SMAppService.mainApp: registration of this program as a login item.
class LoginItemService {
public:
    virtual ~LoginItemService() = default;

    virtual LoginItemStatus status() = 0;
    // Each answers nothing on success, or the system's localized error description.
    virtual std::optional<std::string> registerMainApp() = 0;
    virtual std::optional<std::string> unregisterMainApp() = 0;
};

} // namespace stowly
