// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace stowly {

// NSWorkspace.shared.open(_:). The answer is informational; callers may ignore it.
class UrlOpener {
public:
    virtual ~UrlOpener() = default;
    virtual bool openUrl(const std::string& url) = 0;
};

} // namespace stowly
