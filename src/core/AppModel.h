// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "DefaultAction.h"
#include "RunningAppInfo.h"
#include "WindowMinimizer.h"
#include "platform/Platform.h"

#include <QLocale>
#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QTimer;

namespace stowly {

struct BulkCommandTexts;

// The one observable model behind the panel and the settings window. Every assignment
// to a published property emits its change signal, even when the value is unchanged.
// Main thread only.
class AppModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasAccessibilityPermission READ hasAccessibilityPermission NOTIFY hasAccessibilityPermissionChanged)
    Q_PROPERTY(QString lastResultMessage READ lastResultMessage NOTIFY lastResultMessageChanged)
    Q_PROPERTY(bool launchesAtLogin READ launchesAtLogin NOTIFY launchesAtLoginChanged)

public:
    explicit AppModel(Platform& platform, QObject* parent = nullptr);
    ~AppModel() override;

    bool hasAccessibilityPermission() const { return m_hasAccessibilityPermission; }
    QString lastResultMessage() const { return m_lastResultMessage; }
    const std::vector<RunningAppInfo>& runningApps() const { return m_runningApps; }
    bool launchesAtLogin() const { return m_launchesAtLogin; }
    // How the last bulk or per-app command went: true when it acted (a count above zero, or a
    // request the platform accepted); false when access was missing, nothing was found, the
    // platform refused or an error ended it, and before any command. The panel shows only the
    // sentence; the command line turns this into its exit status.
    bool lastCommandSucceeded() const { return m_lastCommandSucceeded; }

    DefaultAction preferredDefaultAction() const;

    // State and refresh.
    Q_INVOKABLE void refreshPermissionStatus();
    Q_INVOKABLE void refreshRunningApps();
    Q_INVOKABLE void refreshLaunchAtLoginStatus();
    Q_INVOKABLE void refreshSnapshot();
    // (Re)creates the one-second refresh timer; never leaves two running.
    void startAutoRefresh();

    // Commands.
    Q_INVOKABLE void minimizeAllWindows();
    Q_INVOKABLE void hideAllApps();
    Q_INVOKABLE void closeAllWindows();
    Q_INVOKABLE void forceQuitAllApps();
    Q_INVOKABLE void performDefaultAction();
    void openApp(const RunningAppInfo& app);
    void terminateApp(const RunningAppInfo& app);
    void forceTerminateApp(const RunningAppInfo& app);

    // Launch at login and accessibility access.
    Q_INVOKABLE void setLaunchAtLogin(bool enabled);
    Q_INVOKABLE void requestAccessibilityPermission();
    Q_INVOKABLE void openAccessibilitySettings();
    // What openAccessibilitySettings() opens, by name ("System Settings"); absent when
    // the platform has nothing to open.
    std::optional<QString> accessSettingsName() const;
    // Which windows stay out of reach even with access granted; absent when none do.
    std::optional<QString> accessLimitation() const;

signals:
    void hasAccessibilityPermissionChanged();
    void lastResultMessageChanged();
    void runningAppsChanged();
    void launchesAtLoginChanged();

private:
    void setHasAccessibilityPermission(bool value);
    void setLastResultMessage(const QString& value);
    void setRunningApps(std::vector<RunningAppInfo> value);
    void setLaunchesAtLogin(bool value);
    // What a timer tick does: queue a refresh, never refresh inside the callback.
    void scheduleRefreshFromTimer();
    // The shape shared by the four bulk commands: optional trust check, the minimizer call,
    // one sentence for the outcome, then a fresh list.
    void runBulkCommand(const BulkCommandTexts& texts, const std::function<std::int64_t()>& operation);
    // The shape shared by the three per-app commands: one sentence either way, then a fresh list.
    void finishAppCommand(bool succeeded, const QString& message);

    // The collator that orders the list, kept from one refresh to the next.
    const NameCollator& nameCollator();

    Platform& m_platform;
    WindowMinimizer m_minimizer;
    std::optional<NameCollator> m_nameCollator;
    QLocale m_nameCollatorLocale;
    QTimer* m_refreshTimer = nullptr;

    bool m_hasAccessibilityPermission = false;
    QString m_lastResultMessage;
    std::vector<RunningAppInfo> m_runningApps;
    bool m_launchesAtLogin = false;
    bool m_lastCommandSucceeded = false;

    friend class AppModelTimerProbe; // lets tests fire a tick without waiting a second
};

} // namespace stowly
