// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "PlasmaSystemSettings.h"

#include "DetachedProcess.h"

#include <QStandardPaths>

namespace stowly::kwin {

PlasmaSystemSettings::PlasmaSystemSettings(std::function<QString(const QString&)> findExecutable)
    : m_findExecutable(findExecutable ? std::move(findExecutable)
                                      : [](const QString& name) { return QStandardPaths::findExecutable(name); })
{
}

QString PlasmaSystemSettings::executable() const
{
    // Plasma 5 installs it under both names; Plasma 6 only as "systemsettings".
    for (const QString& name : {QStringLiteral("systemsettings"), QStringLiteral("systemsettings5")}) {
        QString path = m_findExecutable(name);
        if (!path.isEmpty())
            return path;
    }
    return {};
}

std::optional<std::string> PlasmaSystemSettings::name()
{
    if (executable().isEmpty())
        return std::nullopt;
    return std::string("System Settings");
}

bool PlasmaSystemSettings::open()
{
    const QString path = executable();
    return !path.isEmpty() && linuxdesktop::startDetachedProcess(path, {});
}

} // namespace stowly::kwin
