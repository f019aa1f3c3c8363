// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "AppModel.h"

#include "AccessibilityPermissionChecker.h"
#include "AppPreferences.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

namespace stowly {

namespace {

const QString kInitialMessage = QStringLiteral("Grant Accessibility access to minimize windows in other apps.");
const QString kReadyMessage = QStringLiteral("Ready to manage windows across open apps.");
const QString kGrantedMessage = QStringLiteral("Accessibility access granted.");

// "Minimized 1 window.", "Minimized 12 windows.": plain decimal, an "s" for every count but 1.
QString countMessage(const char* prefix, std::int64_t count, const char* noun)
{
    return QString::fromLatin1(prefix) + QString::number(count) + QString::fromLatin1(noun) +
           (count == 1 ? QString() : QStringLiteral("s")) + QLatin1Char('.');
}

QString nameMessage(const char* prefix, const RunningAppInfo& app)
{
    return QString::fromLatin1(prefix) + app.name + QLatin1Char('.');
}

} // namespace

// How one bulk command reports itself.
struct BulkCommandTexts {
    const char* untrusted; // null: the command does not check trust
    const char* none;
    const char* prefix;
    const char* noun;
};

namespace {

constexpr BulkCommandTexts kMinimizeTexts{"Accessibility access is required before minimizing other apps' windows.",
                                          "No minimizable windows were found.", "Minimized ", " window"};
constexpr BulkCommandTexts kCloseTexts{"Accessibility access is required before closing other apps' windows.",
                                       "No closable windows were found.", "Closed ", " window"};
constexpr BulkCommandTexts kHideTexts{nullptr, "No apps could be hidden.", "Hid ", " app"};
constexpr BulkCommandTexts kForceQuitTexts{nullptr, "No apps could be force quit.", "Force quit sent to ", " app"};

} // namespace

AppModel::AppModel(Platform& platform, QObject* parent)
    : QObject(parent), m_platform(platform),
      m_minimizer(platform.workspace, platform.accessibility, platform.processTable),
      m_lastResultMessage(kInitialMessage)
{
    refreshPermissionStatus();
    refreshRunningApps();
    refreshLaunchAtLoginStatus();
    startAutoRefresh();
}

AppModel::~AppModel() = default;

DefaultAction AppModel::preferredDefaultAction() const
{
    return AppPreferences::preferredDefaultAction(m_platform.preferences);
}

// ---- Published properties: every assignment notifies --------------------------------

void AppModel::setHasAccessibilityPermission(bool value)
{
    m_hasAccessibilityPermission = value;
    emit hasAccessibilityPermissionChanged();
}

void AppModel::setLastResultMessage(const QString& value)
{
    m_lastResultMessage = value;
    emit lastResultMessageChanged();
}

void AppModel::setRunningApps(std::vector<RunningAppInfo> value)
{
    m_runningApps = std::move(value);
    emit runningAppsChanged();
}

void AppModel::setLaunchesAtLogin(bool value)
{
    m_launchesAtLogin = value;
    emit launchesAtLoginChanged();
}

// ---- State and refresh ------------------------------------------------------------

void AppModel::refreshPermissionStatus()
{
    setHasAccessibilityPermission(AccessibilityPermissionChecker::isTrusted(m_platform.trust, false));
    if (m_hasAccessibilityPermission)
        setLastResultMessage(kReadyMessage);
}

void AppModel::refreshRunningApps()
{
    setRunningApps(m_minimizer.runningApps(nameCollator()));
}

void AppModel::refreshLaunchAtLoginStatus()
{
    setLaunchesAtLogin(m_platform.loginItems.status() == LoginItemStatus::enabled);
}

void AppModel::refreshSnapshot()
{
    const bool wasTrusted = m_hasAccessibilityPermission;
    setHasAccessibilityPermission(AccessibilityPermissionChecker::isTrusted(m_platform.trust, false));
    // Only a false-to-true change speaks; a revoked permission leaves the message alone.
    if (m_hasAccessibilityPermission && !wasTrusted)
        setLastResultMessage(kGrantedMessage);
    setRunningApps(m_minimizer.runningApps(nameCollator()));
}

const NameCollator& AppModel::nameCollator()
{
    // Made again when the user's locale changes rather than once a second.
    const QLocale locale;
    if (!m_nameCollator || locale != m_nameCollatorLocale) {
        m_nameCollator.emplace(locale);
        m_nameCollatorLocale = locale;
    }
    return *m_nameCollator;
}

void AppModel::startAutoRefresh()
{
    if (m_refreshTimer) {
        m_refreshTimer->stop();
        delete m_refreshTimer;
    }
    m_refreshTimer = new QTimer(this);
    m_refreshTimer->setInterval(1000);
    // A coarse timer may fire up to 5% late, and the lateness adds up tick after tick.
    m_refreshTimer->setTimerType(Qt::PreciseTimer);
    connect(m_refreshTimer, &QTimer::timeout, this, &AppModel::scheduleRefreshFromTimer);
    m_refreshTimer->start();
}

void AppModel::scheduleRefreshFromTimer()
{
    auto* application = QCoreApplication::instance();
    if (!application)
        return;
    // The refresh runs as its own main-thread task, reached through a weak reference,
    // so a model destroyed in between turns the tick into nothing.
    QMetaObject::invokeMethod(
        application,
        [model = QPointer<AppModel>(this)] {
            if (model)
                model->refreshSnapshot();
        },
        Qt::QueuedConnection);
}

// ---- Commands -----------------------------------------------------------------------

void AppModel::runBulkCommand(const BulkCommandTexts& texts, const std::function<std::int64_t()>& operation)
{
    m_lastCommandSucceeded = false;
    if (texts.untrusted) {
        // Asked afresh: the published flag may be a second old.
        const bool trusted = AccessibilityPermissionChecker::isTrusted(m_platform.trust, false);
        setHasAccessibilityPermission(trusted);
        if (!trusted) {
            setLastResultMessage(QString::fromLatin1(texts.untrusted));
            return;
        }
    }
    try {
        const std::int64_t count = operation();
        m_lastCommandSucceeded = count > 0;
        setLastResultMessage(count == 0 ? QString::fromLatin1(texts.none)
                                        : countMessage(texts.prefix, count, texts.noun));
    } catch (const MinimizeError& error) {
        setLastResultMessage(error.errorDescription());
    }
    refreshRunningApps();
}

void AppModel::minimizeAllWindows()
{
    runBulkCommand(kMinimizeTexts, [this] { return m_minimizer.minimizeAllWindows(); });
}

void AppModel::closeAllWindows()
{
    runBulkCommand(kCloseTexts, [this] { return m_minimizer.closeAllWindows(); });
}

void AppModel::hideAllApps()
{
    runBulkCommand(kHideTexts, [this] { return m_minimizer.hideAllApps(); });
}

void AppModel::forceQuitAllApps()
{
    runBulkCommand(kForceQuitTexts, [this] { return m_minimizer.forceTerminateAllApps(); });
}

void AppModel::performDefaultAction()
{
    // The enabled set is not consulted: a disabled default still runs.
    switch (preferredDefaultAction().value()) {
    case DefaultAction::minimize: minimizeAllWindows(); break;
    case DefaultAction::hide: hideAllApps(); break;
    case DefaultAction::closeWindows: closeAllWindows(); break;
    case DefaultAction::forceQuit: forceQuitAllApps(); break;
    }
}

void AppModel::finishAppCommand(bool succeeded, const QString& message)
{
    // Set before the message so that a listener of the message reads the matching flag.
    m_lastCommandSucceeded = succeeded;
    setLastResultMessage(message);
    refreshRunningApps();
}

void AppModel::openApp(const RunningAppInfo& app)
{
    const bool opened = m_minimizer.openApp(app.id);
    finishAppCommand(opened, opened ? nameMessage("Opened ", app) : nameMessage("Could not open ", app));
}

void AppModel::terminateApp(const RunningAppInfo& app)
{
    const bool requested = m_minimizer.terminateApp(app.id);
    finishAppCommand(requested, requested ? nameMessage("Requested normal close for ", app)
                                          : nameMessage("Could not close ", app));
}

void AppModel::forceTerminateApp(const RunningAppInfo& app)
{
    const bool sent = m_minimizer.forceTerminateApp(app.id);
    finishAppCommand(sent, sent ? nameMessage("Force quit sent to ", app) : nameMessage("Could not force quit ", app));
}

// ---- Launch at login and accessibility access ------------------------------------

void AppModel::setLaunchAtLogin(bool enabled)
{
    auto& loginItems = m_platform.loginItems;
    const auto error = enabled ? loginItems.registerMainApp() : loginItems.unregisterMainApp();
    if (!error) {
        // The wanted state, not a re-read status.
        setLaunchesAtLogin(enabled);
        setLastResultMessage(enabled ? QStringLiteral("Stowly will launch automatically when you sign in.")
                                     : QStringLiteral("Stowly will no longer launch automatically when you sign in."));
        return;
    }
    refreshLaunchAtLoginStatus();
    setLastResultMessage(QStringLiteral("Could not update launch at login: ") + QString::fromStdString(*error));
}

void AppModel::requestAccessibilityPermission()
{
    setHasAccessibilityPermission(AccessibilityPermissionChecker::isTrusted(m_platform.trust, true));
    setLastResultMessage(m_hasAccessibilityPermission
                             ? kGrantedMessage
                             : QStringLiteral("Accessibility access is required. Approve Stowly in System Settings > "
                                              "Privacy & Security > Accessibility."));
    refreshRunningApps();
}

std::optional<QString> AppModel::accessSettingsName() const
{
    const std::optional<std::string> name = m_platform.accessSettings.name();
    return name ? std::optional<QString>(QString::fromStdString(*name)) : std::nullopt;
}

std::optional<QString> AppModel::accessLimitation() const
{
    const std::optional<std::string> limitation = m_platform.accessSettings.limitation();
    return limitation ? std::optional<QString>(QString::fromStdString(*limitation)) : std::nullopt;
}

void AppModel::openAccessibilitySettings()
{
    // What opens is the platform's: the privacy pane's URL on macOS, a window manager's
    // settings program on Linux. Nothing here changes, whatever the answer.
    m_platform.accessSettings.open();
}

} // namespace stowly
