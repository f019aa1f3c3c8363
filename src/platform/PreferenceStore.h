// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>

namespace stowly {

// The user's standard preference store (UserDefaults.standard): plain strings by key.
// Absent keys stay absent; nothing writes defaults.
class PreferenceStore {
public:
    virtual ~PreferenceStore() = default;
    virtual std::optional<std::string> string(const std::string& key) const = 0;
    virtual void setString(const std::string& key, const std::string& value) = 0;
};

} // namespace stowly
