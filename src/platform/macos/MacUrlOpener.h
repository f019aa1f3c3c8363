// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: code that is not Objective-C++ may include this header.

#include "platform/UrlOpener.h"

namespace stowly::macos {

// NSWorkspace openURL:.
class MacUrlOpener final : public UrlOpener {
public:
    bool openUrl(const std::string& url) override;
};

} // namespace stowly::macos
