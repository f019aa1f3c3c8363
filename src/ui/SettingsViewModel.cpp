// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SettingsViewModel.h"

#include "ActionSettings.h"
#include "AppModel.h"
#include "NotifyingPreferenceStore.h"
#include "ViewTexts.h"

namespace stowly {

SettingsViewModel::SettingsViewModel(AppModel& model, NotifyingPreferenceStore& preferences, QObject* parent)
    : QObject(parent), m_model(model), m_preferences(preferences)
{
    connect(&m_preferences, &NotifyingPreferenceStore::enabledActionsChanged, this, [this] {
        emit selectionChanged();
        emit pickerChanged();
    });
    connect(&m_preferences, &NotifyingPreferenceStore::defaultActionChanged, this, [this] {
        emit pickerChanged();
        emit summaryChanged();
    });
    connect(&m_model, &AppModel::launchesAtLoginChanged, this, &SettingsViewModel::launchesAtLoginChanged);
    connect(&m_model, &AppModel::hasAccessibilityPermissionChanged, this, &SettingsViewModel::accessChanged);
}

QVariantList SettingsViewModel::cards() const
{
    QVariantList list;
    for (DefaultAction action : DefaultAction::allCases()) {
        list.append(QVariantMap{
            {QStringLiteral("rawValue"), action.rawValue()},
            {QStringLiteral("shortTitle"), action.shortTitle()},
            {QStringLiteral("cardSummary"), action.cardSummary()},
            {QStringLiteral("systemImage"), action.systemImage()},
        });
    }
    return list;
}

QVariantMap SettingsViewModel::selection() const
{
    const ActionSet enabled = ActionSettings::enabledActions(m_preferences);
    QVariantMap selected;
    for (DefaultAction action : DefaultAction::allCases())
        selected.insert(action.rawValue(), enabled.count(action) > 0);
    return selected;
}

QStringList SettingsViewModel::pickerItems() const
{
    QStringList items;
    for (DefaultAction action : ActionSettings::pickerItems(m_preferences))
        items.append(action.shortTitle());
    return items;
}

int SettingsViewModel::pickerIndex() const
{
    const DefaultAction selection = ActionSettings::pickerSelection(m_preferences);
    const std::vector<DefaultAction> items = ActionSettings::pickerItems(m_preferences);
    for (std::size_t index = 0; index < items.size(); ++index) {
        if (items[index] == selection)
            return int(index);
    }
    return -1; // nothing enabled: the picker shows no item
}

QString SettingsViewModel::summaryTitle() const
{
    return ViewTexts::defaultActionSummaryTitle(ActionSettings::selectedAction(m_preferences).title());
}

QString SettingsViewModel::summaryText() const
{
    return ActionSettings::selectedAction(m_preferences).summary();
}

bool SettingsViewModel::launchesAtLogin() const
{
    return m_model.launchesAtLogin();
}

bool SettingsViewModel::accessGranted() const
{
    return m_model.hasAccessibilityPermission();
}

bool SettingsViewModel::accessComplete() const
{
    return accessGranted() && !m_model.accessLimitation();
}

QString SettingsViewModel::accessTitle() const
{
    if (!accessGranted())
        return ViewTexts::accessRequired;
    return accessComplete() ? ViewTexts::accessGranted : ViewTexts::accessLimited;
}

QString SettingsViewModel::accessDetail() const
{
    if (!accessGranted())
        return ViewTexts::accessRequiredDetail;
    // Granted access that cannot reach every window says which ones it misses, never "all apps".
    return m_model.accessLimitation().value_or(ViewTexts::accessGrantedDetail);
}

QString SettingsViewModel::accessSymbol() const
{
    return accessComplete() ? QStringLiteral("checkmark.shield.fill") : QStringLiteral("exclamationmark.triangle.fill");
}

bool SettingsViewModel::canOpenAccessSettings() const
{
    // Asked only while the button could show.
    return !accessGranted() && m_model.accessSettingsName().has_value();
}

QString SettingsViewModel::openAccessSettingsTitle() const
{
    const std::optional<QString> name = accessGranted() ? std::nullopt : m_model.accessSettingsName();
    return name ? ViewTexts::openAccessSettings(*name) : ViewTexts::openSystemSettings;
}

void SettingsViewModel::toggleAction(const QString& rawValue, bool isSelected)
{
    if (const std::optional<DefaultAction> action = DefaultAction::fromRawValue(rawValue))
        ActionSettings::toggleAction(m_preferences, *action, isSelected);
}

void SettingsViewModel::choosePickerItem(int index)
{
    const std::vector<DefaultAction> items = ActionSettings::pickerItems(m_preferences);
    if (index >= 0 && std::size_t(index) < items.size())
        ActionSettings::setPickerSelection(m_preferences, items[std::size_t(index)]);
}

void SettingsViewModel::setLaunchAtLogin(bool enabled)
{
    m_model.setLaunchAtLogin(enabled);
}

void SettingsViewModel::requestAccessibilityPermission()
{
    m_model.requestAccessibilityPermission();
}

void SettingsViewModel::openAccessibilitySettings()
{
    m_model.openAccessibilitySettings();
}

void SettingsViewModel::quit()
{
    emit quitRequested();
}

} // namespace stowly
