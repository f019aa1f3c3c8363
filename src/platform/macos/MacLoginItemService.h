// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: code that is not Objective-C++ may include this header.

#include "platform/LoginItemService.h"

namespace stowly::macos {

// SMAppService.mainAppService (ServiceManagement, macOS 13+). Kept in a file of its own:
// it is the one part of the backend that the Linux-side compile check cannot see,
// because the SDK used there has no ServiceManagement framework.
class MacLoginItemService final : public LoginItemService {
public:
    LoginItemStatus status() override;
    std::optional<std::string> registerMainApp() override;
    std::optional<std::string> unregisterMainApp() override;
};

} // namespace stowly::macos
