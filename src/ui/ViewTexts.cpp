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

QVariantMap asMap()
{
    return {
        {QStringLiteral("productName"), productName},
        {QStringLiteral("accessWarning"), accessWarning},
        {QStringLiteral("noOpenApps"), noOpenApps},
        {QStringLiteral("settings"), settings},
        {QStringLiteral("refresh"), refresh},
        {QStringLiteral("quit"), quit},
        {QStringLiteral("openApp"), openApp},
        {QStringLiteral("closeApp"), closeApp},
        {QStringLiteral("forceQuitApp"), forceQuitApp},
        {QStringLiteral("settingsWindowTitle"), settingsWindowTitle},
        {QStringLiteral("primaryAction"), primaryAction},
        {QStringLiteral("appliedFromMenuBar"), appliedFromMenuBar},
        {QStringLiteral("actionsIntro"), actionsIntro},
        {QStringLiteral("defaultActionPicker"), defaultActionPicker},
        {QStringLiteral("startup"), startup},
        {QStringLiteral("launchAtStartupTitle"), launchAtStartupTitle},
        {QStringLiteral("launchAtStartupSubtitle"), launchAtStartupSubtitle},
        {QStringLiteral("mainShortcutTitle"), mainShortcutTitle},
        {QStringLiteral("mainShortcutSubtitle"), mainShortcutSubtitle},
        {QStringLiteral("accessibility"), accessibility},
        {QStringLiteral("grantAccess"), grantAccess},
        {QStringLiteral("openSystemSettings"), openSystemSettings},
    };
}

} // namespace stowly::ViewTexts
