// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "RunningAppInfo.h"

#include "ByteCountFormatter.h"

#include <cstdlib>
#include <limits>

namespace stowly {

QString RunningAppInfo::status() const
{
    if (isHidden)
        return QStringLiteral("Hidden");
    if (isActive)
        return QStringLiteral("Active");
    return QStringLiteral("Open");
}

QString RunningAppInfo::formattedRAM() const
{
    if (!memoryBytes)
        return QStringLiteral("RAM unavailable");
    // A figure beyond the signed range is a programming error, never clamped.
    if (*memoryBytes > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        std::abort();
    return formatMemoryByteCount(static_cast<std::int64_t>(*memoryBytes));
}

} // namespace stowly
