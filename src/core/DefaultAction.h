// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>
#include <set>

namespace stowly {

// The closed catalogue of bulk actions, in catalogue order. Every list of actions
// shown anywhere follows allCases() order.
class DefaultAction {
public:
    enum Case : std::uint8_t { minimize, hide, closeWindows, forceQuit };

    constexpr DefaultAction(Case value) : m_case(value) {}

    static const std::array<DefaultAction, 4>& allCases();
    // Exact, case-sensitive match against the four raw values; anything else is no action.
    static std::optional<DefaultAction> fromRawValue(const QString& rawValue);

    constexpr Case value() const { return m_case; }
    QString rawValue() const;
    QString id() const { return rawValue(); }
    QString title() const;
    QString summary() const;
    QString systemImage() const; // symbol name the views map to an icon
    // The settings window's own labels.
    QString shortTitle() const;
    QString cardSummary() const;

    friend constexpr bool operator==(DefaultAction a, DefaultAction b) { return a.m_case == b.m_case; }
    friend constexpr bool operator<(DefaultAction a, DefaultAction b) { return a.m_case < b.m_case; }

private:
    Case m_case;
};

using ActionSet = std::set<DefaultAction>;

} // namespace stowly
