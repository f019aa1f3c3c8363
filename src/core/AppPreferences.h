// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "DefaultAction.h"

#include <QString>

#include <vector>

namespace stowly {

class PreferenceStore;

// The two preference keys and the enabled-actions text format.
namespace AppPreferences {

QString defaultActionKey();  // "defaultAction"
QString enabledActionsKey(); // "enabledActions"

// What a reader uses while "enabledActions" is absent: allCases raw values joined by ",".
QString defaultEnabledActions();

// Splits at ",", drops empty pieces, keeps exact raw values only; a set, so repeats count once.
ActionSet parseEnabledActions(const QString& text);
// Raw values sorted in byte order, joined by ","; the empty set gives "".
QString serializeEnabledActions(const ActionSet& actions);
// allCases() filtered by membership: catalogue order whatever the stored order.
std::vector<DefaultAction> enabledActionsSorted(const ActionSet& actions);

// Stored texts, with the readers' defaults applied for absent keys.
QString storedDefaultAction(const PreferenceStore& store);  // absent: ""
QString storedEnabledActions(const PreferenceStore& store); // absent: defaultEnabledActions()
void storeDefaultAction(PreferenceStore& store, const QString& rawValue);
void storeEnabledActions(PreferenceStore& store, const ActionSet& actions);

// The stored default action, or minimize when absent or unknown; ignores the enabled set.
DefaultAction preferredDefaultAction(const PreferenceStore& store);

} // namespace AppPreferences
} // namespace stowly
