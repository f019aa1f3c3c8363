// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace stowly {

// One sampled process of the machine, matched to apps by WindowMinimizer::totalMemory.
struct ProcessMemoryRecord {
    std::int32_t pid = 0;
    QString normalizedName;                  // trimmed and lower-cased process name
    std::optional<QString> bundleIdentifier; // of the app owning this process, as reported
    std::uint64_t memoryBytes = 0;
};

} // namespace stowly
