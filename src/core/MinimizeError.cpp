// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MinimizeError.h"

namespace stowly {

MinimizeError::MinimizeError(AXError code) : m_code(code), m_what(errorDescription().toStdString()) {}

QString MinimizeError::errorDescription() const
{
    return QStringLiteral("Accessibility call failed with code %1.").arg(m_code);
}

} // namespace stowly
