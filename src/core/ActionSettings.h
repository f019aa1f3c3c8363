// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "DefaultAction.h"

#include <vector>

namespace stowly {

class PreferenceStore;

// The settings window's rules over the two stored preferences.
namespace ActionSettings {

ActionSet enabledActions(const PreferenceStore& store);
void setEnabledActions(PreferenceStore& store, const ActionSet& actions);

// The summary box's action: the stored default, or minimize; ignores the enabled set.
DefaultAction selectedAction(const PreferenceStore& store);

// A click on an action card. The last enabled action cannot be switched off; a default
// left outside the enabled set is repaired to the enabled action whose raw value sorts first.
void toggleAction(PreferenceStore& store, DefaultAction action, bool isSelected);

// The "Default action" picker: its selection, its choice, and its items (by raw value).
DefaultAction pickerSelection(const PreferenceStore& store);
void setPickerSelection(PreferenceStore& store, DefaultAction action);
std::vector<DefaultAction> pickerItems(const PreferenceStore& store);

} // namespace ActionSettings
} // namespace stowly
