// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "AppPreferences.h"

#include "platform/PreferenceStore.h"

#include <QStringList>

#include <algorithm>

namespace stowly::AppPreferences {

QString defaultActionKey()
{
    static const QString key = QStringLiteral("defaultAction");
    return key;
}

QString enabledActionsKey()
{
    static const QString key = QStringLiteral("enabledActions");
    return key;
}

QString defaultEnabledActions()
{
    QStringList rawValues;
    for (DefaultAction action : DefaultAction::allCases())
        rawValues << action.rawValue();
    return rawValues.join(QLatin1Char(','));
}

ActionSet parseEnabledActions(const QString& text)
{
    ActionSet actions;
    // Pieces are taken as they stand: no trimming, no case folding.
    for (const QString& piece : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        if (auto action = DefaultAction::fromRawValue(piece))
            actions.insert(*action);
    }
    return actions;
}

QString serializeEnabledActions(const ActionSet& actions)
{
    QStringList rawValues;
    for (DefaultAction action : actions)
        rawValues << action.rawValue();
    // Plain byte order of the ASCII raw values, so the stored form never depends on clicks.
    std::sort(rawValues.begin(), rawValues.end(),
              [](const QString& a, const QString& b) { return a.toLatin1() < b.toLatin1(); });
    return rawValues.join(QLatin1Char(','));
}

std::vector<DefaultAction> enabledActionsSorted(const ActionSet& actions)
{
    std::vector<DefaultAction> sorted;
    for (DefaultAction action : DefaultAction::allCases()) {
        if (actions.count(action))
            sorted.push_back(action);
    }
    return sorted;
}

QString storedDefaultAction(const PreferenceStore& store)
{
    auto value = store.string(defaultActionKey().toStdString());
    return value ? QString::fromStdString(*value) : QString();
}

QString storedEnabledActions(const PreferenceStore& store)
{
    auto value = store.string(enabledActionsKey().toStdString());
    return value ? QString::fromStdString(*value) : defaultEnabledActions();
}

void storeDefaultAction(PreferenceStore& store, const QString& rawValue)
{
    store.setString(defaultActionKey().toStdString(), rawValue.toStdString());
}

void storeEnabledActions(PreferenceStore& store, const ActionSet& actions)
{
    store.setString(enabledActionsKey().toStdString(), serializeEnabledActions(actions).toStdString());
}

DefaultAction preferredDefaultAction(const PreferenceStore& store)
{
    return DefaultAction::fromRawValue(storedDefaultAction(store)).value_or(DefaultAction::minimize);
}

} // namespace stowly::AppPreferences
