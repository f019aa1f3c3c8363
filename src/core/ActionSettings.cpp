// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ActionSettings.h"

#include "AppPreferences.h"

#include <algorithm>

namespace stowly::ActionSettings {

namespace {

// Plain string order of the raw values: closeWindows, forceQuit, hide, minimize.
std::vector<DefaultAction> sortedByRawValue(const ActionSet& actions)
{
    std::vector<DefaultAction> sorted(actions.begin(), actions.end());
    std::sort(sorted.begin(), sorted.end(),
              [](DefaultAction a, DefaultAction b) { return a.rawValue().toLatin1() < b.rawValue().toLatin1(); });
    return sorted;
}

std::optional<DefaultAction> firstByRawValue(const ActionSet& actions)
{
    const auto sorted = sortedByRawValue(actions);
    if (sorted.empty())
        return std::nullopt;
    return sorted.front();
}

} // namespace

ActionSet enabledActions(const PreferenceStore& store)
{
    return AppPreferences::parseEnabledActions(AppPreferences::storedEnabledActions(store));
}

void setEnabledActions(PreferenceStore& store, const ActionSet& actions)
{
    AppPreferences::storeEnabledActions(store, actions);
}

DefaultAction selectedAction(const PreferenceStore& store)
{
    return AppPreferences::preferredDefaultAction(store);
}

void toggleAction(PreferenceStore& store, DefaultAction action, bool isSelected)
{
    ActionSet actions = enabledActions(store);
    if (isSelected) {
        if (actions.size() <= 1)
            return; // the last enabled action stays on, silently
        actions.erase(action);
    } else {
        actions.insert(action);
    }
    setEnabledActions(store, actions);

    const DefaultAction currentDefault = AppPreferences::preferredDefaultAction(store);
    if (!actions.count(currentDefault)) {
        if (auto repaired = firstByRawValue(actions))
            AppPreferences::storeDefaultAction(store, repaired->rawValue());
    }
}

DefaultAction pickerSelection(const PreferenceStore& store)
{
    const ActionSet actions = enabledActions(store);
    const DefaultAction stored = AppPreferences::preferredDefaultAction(store);
    if (actions.count(stored))
        return stored;
    return firstByRawValue(actions).value_or(DefaultAction::minimize);
}

void setPickerSelection(PreferenceStore& store, DefaultAction action)
{
    AppPreferences::storeDefaultAction(store, action.rawValue());
}

std::vector<DefaultAction> pickerItems(const PreferenceStore& store)
{
    return sortedByRawValue(enabledActions(store));
}

} // namespace stowly::ActionSettings
