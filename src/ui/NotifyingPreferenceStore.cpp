// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "NotifyingPreferenceStore.h"

#include "AppPreferences.h"

namespace stowly {

NotifyingPreferenceStore::NotifyingPreferenceStore(PreferenceStore& backing, QObject* parent)
    : QObject(parent), m_backing(backing)
{
}

std::optional<std::string> NotifyingPreferenceStore::string(const std::string& key) const
{
    return m_backing.string(key);
}

void NotifyingPreferenceStore::setString(const std::string& key, const std::string& value)
{
    m_backing.setString(key, value);
    const QString name = QString::fromStdString(key);
    emit valueChanged(name);
    if (name == AppPreferences::defaultActionKey())
        emit defaultActionChanged();
    else if (name == AppPreferences::enabledActionsKey())
        emit enabledActionsChanged();
}

} // namespace stowly
