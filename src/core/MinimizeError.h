// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Accessibility.h"

#include <QString>

#include <exception>
#include <string>

namespace stowly {

// The one failure of the bulk window actions: an accessibility call that changes a
// window answered neither success nor the unsupported code tolerated for that call.
class MinimizeError : public std::exception {
public:
    enum class Kind { axFailure };

    static MinimizeError axFailure(AXError code) { return MinimizeError(code); }

    Kind kind() const { return Kind::axFailure; }
    AXError code() const { return m_code; }
    // "Accessibility call failed with code -25204."
    QString errorDescription() const;
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    explicit MinimizeError(AXError code);
    AXError m_code;
    std::string m_what;
};

} // namespace stowly
