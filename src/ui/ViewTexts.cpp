// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ViewTexts.h"

namespace stowly::ViewTexts {

QString openAppsHeading(std::size_t count)
{
    return QStringLiteral("Open Apps (") + QString::number(qulonglong(count)) + QStringLiteral(")");
}

QString appStatusLine(const QString& status, const QString& formattedRAM)
{
    return status + QStringLiteral(" \u2022 RAM: ") + formattedRAM;
}

QString defaultActionSummaryTitle(const QString& actionTitle)
{
    return QStringLiteral("Default: ") + actionTitle;
}

QString rowMenuName(const QString& appName)
{
    return QStringLiteral("Actions for ") + appName;
}

QString openAccessSettings(const QString& settingsName)
{
    return QStringLiteral("Open ") + settingsName;
}

} // namespace stowly::ViewTexts
