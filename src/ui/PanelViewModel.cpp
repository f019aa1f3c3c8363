// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "PanelViewModel.h"

#include "ActionAvailability.h"
#include "AppModel.h"
#include "AppPreferences.h"
#include "NotifyingPreferenceStore.h"
#include "ViewTexts.h"

#include <algorithm>

namespace stowly {

PanelViewModel::PanelViewModel(AppModel& model, NotifyingPreferenceStore& preferences, QObject* parent)
    : QObject(parent), m_model(model), m_preferences(preferences)
{
    connect(&m_preferences, &NotifyingPreferenceStore::enabledActionsChanged, this, [this] {
        if (!m_active)
            return;
        emit actionsChanged();
        emit availabilityChanged();
    });
    const auto availability = [this] {
        if (m_active)
            emit availabilityChanged();
    };
    connect(&m_model, &AppModel::hasAccessibilityPermissionChanged, this, availability);
    connect(&m_model, &AppModel::runningAppsChanged, this, availability);
    connect(&m_model, &AppModel::lastResultMessageChanged, this, [this] {
        if (m_active)
            emit resultMessageChanged();
    });
}

static std::vector<DefaultAction> enabledActionsInOrder(const PreferenceStore& preferences)
{
    return AppPreferences::enabledActionsSorted(
        AppPreferences::parseEnabledActions(AppPreferences::storedEnabledActions(preferences)));
}

QVariantList PanelViewModel::actions() const
{
    QVariantList list;
    for (DefaultAction action : enabledActionsInOrder(m_preferences)) {
        list.append(QVariantMap{
            {QStringLiteral("rawValue"), action.rawValue()},
            {QStringLiteral("title"), action.title()},
            {QStringLiteral("systemImage"), action.systemImage()},
        });
    }
    return list;
}

int PanelViewModel::columnCount() const
{
    return int(std::min<std::size_t>(enabledActionsInOrder(m_preferences).size(), 2));
}

QVariantMap PanelViewModel::disabledActions() const
{
    QVariantMap disabled;
    for (DefaultAction action : DefaultAction::allCases()) {
        disabled.insert(action.rawValue(),
                        isActionDisabled(action, m_model.hasAccessibilityPermission(), !m_model.runningApps().empty()));
    }
    return disabled;
}

QString PanelViewModel::resultMessage() const
{
    return m_model.lastResultMessage();
}

bool PanelViewModel::showsAccessWarning() const
{
    return !m_model.hasAccessibilityPermission();
}

QString PanelViewModel::openAppsHeading() const
{
    return ViewTexts::openAppsHeading(m_model.runningApps().size());
}

bool PanelViewModel::hasOpenApps() const
{
    return !m_model.runningApps().empty();
}

void PanelViewModel::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    if (!m_active)
        return;
    emit actionsChanged();
    emit availabilityChanged();
    emit resultMessageChanged();
}

void PanelViewModel::performAction(const QString& rawValue)
{
    const std::optional<DefaultAction> action = DefaultAction::fromRawValue(rawValue);
    if (!action)
        return;
    switch (action->value()) {
    case DefaultAction::minimize: m_model.minimizeAllWindows(); break;
    case DefaultAction::hide: m_model.hideAllApps(); break;
    case DefaultAction::closeWindows: m_model.closeAllWindows(); break;
    case DefaultAction::forceQuit: m_model.forceQuitAllApps(); break;
    }
}

void PanelViewModel::refresh()
{
    m_model.refreshPermissionStatus();
    m_model.refreshRunningApps();
}

void PanelViewModel::openSettings()
{
    emit settingsRequested();
}

void PanelViewModel::quit()
{
    emit quitRequested();
}

void PanelViewModel::dismiss()
{
    emit dismissRequested();
}

QString PanelViewModel::defaultActionRawValue() const
{
    return m_model.preferredDefaultAction().rawValue();
}

} // namespace stowly
