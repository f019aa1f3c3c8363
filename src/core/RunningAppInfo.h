// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/AppIcon.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace stowly {

// One open regular app, as the panel lists it. An immutable snapshot; rows are keyed by id.
struct RunningAppInfo {
    std::int32_t id = 0; // process identifier
    QString name;
    AppIconRef icon; // null when the platform has none
    bool isHidden = false;
    bool isActive = false;
    std::optional<std::uint64_t> memoryBytes; // absent when it could not be measured

    // "Hidden", else "Active", else "Open": hidden wins over active.
    QString status() const;
    // "RAM unavailable" when unmeasured, else the memory-style byte count.
    QString formattedRAM() const;
};

} // namespace stowly
