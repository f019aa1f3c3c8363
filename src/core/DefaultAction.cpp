// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "DefaultAction.h"

namespace stowly {

namespace {

struct ActionTexts {
    const char* rawValue;
    const char* title;
    const char* summary;
    const char* systemImage;
    const char* shortTitle;
    const char* cardSummary;
};

// Indexed by DefaultAction::Case, in catalogue order.
constexpr ActionTexts kTexts[] = {
    {"minimize", "Minimize All Windows", "Minimizes standard windows without closing apps.", "macwindow.badge.minus",
     "Minimize", "Clear the desktop while keeping apps running."},
    {"hide", "Hide All Apps", "Hides open apps without touching their windows.", "eye.slash", "Hide",
     "Hide every app without changing window state."},
    {"closeWindows", "Close All Windows", "Attempts to close standard windows in each app.", "xmark.square",
     "Close Windows", "Ask apps to close visible windows when possible."},
    {"forceQuit", "Force Quit All Apps", "Immediately quits running apps and can cause unsaved work to be lost.",
     "bolt.fill", "Force Quit", "Immediately terminate running apps. Use with care."},
};

const ActionTexts& textsOf(DefaultAction action)
{
    return kTexts[action.value()];
}

} // namespace

const std::array<DefaultAction, 4>& DefaultAction::allCases()
{
    static const std::array<DefaultAction, 4> cases{minimize, hide, closeWindows, forceQuit};
    return cases;
}

std::optional<DefaultAction> DefaultAction::fromRawValue(const QString& rawValue)
{
    for (DefaultAction action : allCases()) {
        if (rawValue == QLatin1String(textsOf(action).rawValue))
            return action;
    }
    return std::nullopt;
}

// One accessor a line: they differ only in the field they read.
// clang-format off
QString DefaultAction::rawValue() const { return QString::fromLatin1(textsOf(*this).rawValue); }
QString DefaultAction::title() const { return QString::fromLatin1(textsOf(*this).title); }
QString DefaultAction::summary() const { return QString::fromLatin1(textsOf(*this).summary); }
QString DefaultAction::systemImage() const { return QString::fromLatin1(textsOf(*this).systemImage); }
QString DefaultAction::shortTitle() const { return QString::fromLatin1(textsOf(*this).shortTitle); }
QString DefaultAction::cardSummary() const { return QString::fromLatin1(textsOf(*this).cardSummary); }
// clang-format on

} // namespace stowly
