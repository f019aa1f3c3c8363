// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: code that is not Objective-C++ may include this header.

#include "platform/AccessSettings.h"
#include "platform/UrlOpener.h"

namespace stowly::macos {

// The Accessibility privacy pane of System Settings, opened through NSWorkspace.
class MacAccessSettings final : public AccessSettings {
public:
    explicit MacAccessSettings(UrlOpener& urlOpener) : m_urlOpener(urlOpener) {}
    std::optional<std::string> name() override { return std::string("System Settings"); }
    bool open() override
    {
        // The opener opens nothing for text that forms no URL.
        return m_urlOpener.openUrl("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
    }

private:
    UrlOpener& m_urlOpener;
};

} // namespace stowly::macos
