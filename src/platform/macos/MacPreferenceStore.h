// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: code that is not Objective-C++ may include this header.

#include "platform/PreferenceStore.h"

namespace stowly::macos {

// NSUserDefaults standardUserDefaults: the app's own domain in the user's defaults.
class MacPreferenceStore final : public PreferenceStore {
public:
    std::optional<std::string> string(const std::string& key) const override;
    void setString(const std::string& key, const std::string& value) override;
};

} // namespace stowly::macos
