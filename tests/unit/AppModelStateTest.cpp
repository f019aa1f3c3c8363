// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TestSupport.h"

#include <QSignalSpy>

#include <algorithm>

#include <gtest/gtest.h>

namespace stowly {
namespace {

using testing::q;

class AppModelState : public testing::ModelTest {};

TEST_F(AppModelState, StartWhileTrustedIsGrantedAndReady)
{
    fakes.trust.trusted = true;
    auto& m = makeModel();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Ready to manage windows across open apps."));
}

TEST_F(AppModelState, StartWhileUntrustedKeepsTheGrantMessage)
{
    fakes.trust.trusted = false;
    auto& m = makeModel();
    EXPECT_FALSE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Grant Accessibility access to minimize windows in other apps."));
}

TEST_F(AppModelState, ConstructionChecksTrustSilentlyListsAppsAndReadsLoginStatusOnce)
{
    fakes.workspace.addApp(10, "Notes");
    auto& m = makeModel();
    EXPECT_EQ(fakes.trust.prompts, std::vector<bool>{false});
    EXPECT_EQ(fakes.loginItems.statusQueries, 1);
    ASSERT_EQ(m.runningApps().size(), 1u);
    EXPECT_EQ(m.runningApps()[0].name, q("Notes"));
    EXPECT_EQ(fakes.preferences.writes, 0); // defaults are never written at start
}

// Forwarders that note, in one shared log, the moment each platform query is made.
class QueryOrderLog {
public:
    explicit QueryOrderLog(fakes::FakePlatform& fakes)
        : trust(*this, fakes.trust), workspace(*this, fakes.workspace), loginItems(*this, fakes.loginItems)
    {
    }
    std::vector<std::string> entries;

    struct Trust : AccessibilityTrust {
        Trust(QueryOrderLog& log, AccessibilityTrust& inner) : log(log), inner(inner) {}
        bool isProcessTrusted(bool prompt) override
        {
            log.note("trust");
            return inner.isProcessTrusted(prompt);
        }
        QueryOrderLog& log;
        AccessibilityTrust& inner;
    } trust;
    struct Apps : Workspace {
        Apps(QueryOrderLog& log, Workspace& inner) : log(log), inner(inner) {}
        std::vector<RunningApplicationRef> runningApplications() override
        {
            log.note("apps");
            return inner.runningApplications();
        }
        RunningApplicationRef runningApplication(std::int32_t pid) override { return inner.runningApplication(pid); }
        std::int32_t currentProcessIdentifier() const override { return inner.currentProcessIdentifier(); }
        QueryOrderLog& log;
        Workspace& inner;
    } workspace;
    struct Login : LoginItemService {
        Login(QueryOrderLog& log, LoginItemService& inner) : log(log), inner(inner) {}
        LoginItemStatus status() override
        {
            log.note("login");
            return inner.status();
        }
        std::optional<std::string> registerMainApp() override { return inner.registerMainApp(); }
        std::optional<std::string> unregisterMainApp() override { return inner.unregisterMainApp(); }
        QueryOrderLog& log;
        LoginItemService& inner;
    } loginItems;

private:
    void note(const std::string& what)
    {
        if (std::find(entries.begin(), entries.end(), what) == entries.end())
            entries.push_back(what);
    }
};

TEST_F(AppModelState, ConstructionPublishesPermissionThenAppsThenLoginStatus)
{
    fakes.trust.trusted = true;
    fakes.loginItems.currentStatus = LoginItemStatus::enabled;
    fakes.workspace.addApp(10, "Notes");
    QueryOrderLog log(fakes);
    Platform logged{log.workspace,  fakes.accessibility, log.trust,         fakes.processTable,
                    log.loginItems, fakes.urlOpener,     fakes.preferences, fakes.accessSettings};
    AppModel m(logged);
    EXPECT_EQ(log.entries, (std::vector<std::string>{"trust", "apps", "login"}));
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Ready to manage windows across open apps."));
    ASSERT_EQ(m.runningApps().size(), 1u);
    EXPECT_TRUE(m.launchesAtLogin());
}

TEST_F(AppModelState, SnapshotPublishesPermissionThenMessageThenApps)
{
    auto& m = makeModel();
    std::vector<std::string> order;
    QObject::connect(&m, &AppModel::hasAccessibilityPermissionChanged, [&] { order.push_back("permission"); });
    QObject::connect(&m, &AppModel::lastResultMessageChanged, [&] { order.push_back("message"); });
    QObject::connect(&m, &AppModel::runningAppsChanged, [&] { order.push_back("apps"); });
    QObject::connect(&m, &AppModel::launchesAtLoginChanged, [&] { order.push_back("login"); });
    fakes.trust.trusted = true;
    m.refreshSnapshot();
    EXPECT_EQ(order, (std::vector<std::string>{"permission", "message", "apps"}));
    order.clear();
    m.refreshSnapshot();
    EXPECT_EQ(order, (std::vector<std::string>{"permission", "apps"}));
}

TEST_F(AppModelState, LoginStatusRequiresApprovalMeansNotLaunchingAtLogin)
{
    fakes.loginItems.currentStatus = LoginItemStatus::requiresApproval;
    EXPECT_FALSE(makeModel().launchesAtLogin());
}

TEST_F(AppModelState, LoginStatusEnabledMeansLaunchingAtLogin)
{
    fakes.loginItems.currentStatus = LoginItemStatus::enabled;
    EXPECT_TRUE(makeModel().launchesAtLogin());
}

TEST_F(AppModelState, LoginStatusNotFoundAndNotRegisteredMeanNotLaunchingAtLogin)
{
    fakes.loginItems.currentStatus = LoginItemStatus::notFound;
    EXPECT_FALSE(makeModel().launchesAtLogin());
    fakes.loginItems.currentStatus = LoginItemStatus::enabled;
    model->refreshLaunchAtLoginStatus();
    EXPECT_TRUE(model->launchesAtLogin());
    fakes.loginItems.currentStatus = LoginItemStatus::notRegistered;
    model->refreshLaunchAtLoginStatus();
    EXPECT_FALSE(model->launchesAtLogin());
}

TEST_F(AppModelState, TrustGrantedWhileRunningPostsGrantedOnceThenLeavesCommandMessages)
{
    auto& m = makeModel();
    fakes.trust.trusted = true;
    m.refreshSnapshot();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access granted."));

    m.hideAllApps(); // a command's result message
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be hidden."));
    m.refreshSnapshot();
    m.refreshSnapshot();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be hidden."));
}

TEST_F(AppModelState, TrustRevokedWhileRunningClearsTheFlagAndKeepsTheMessage)
{
    fakes.trust.trusted = true;
    auto& m = makeModel();
    m.hideAllApps();
    const auto before = m.lastResultMessage();
    fakes.trust.trusted = false;
    m.refreshSnapshot();
    EXPECT_FALSE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), before);
}

TEST_F(AppModelState, SnapshotWhileStillTrustedNeverWritesReady)
{
    fakes.trust.trusted = true;
    auto& m = makeModel();
    m.hideAllApps();
    QSignalSpy messageSpy(&m, &AppModel::lastResultMessageChanged);
    m.refreshSnapshot();
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be hidden."));
    EXPECT_EQ(messageSpy.count(), 0);
}

TEST_F(AppModelState, SnapshotDoesNotReReadLoginStatus)
{
    auto& m = makeModel();
    const int queries = fakes.loginItems.statusQueries;
    fakes.loginItems.currentStatus = LoginItemStatus::enabled;
    m.refreshSnapshot();
    EXPECT_EQ(fakes.loginItems.statusQueries, queries);
    EXPECT_FALSE(m.launchesAtLogin());
}

TEST_F(AppModelState, SnapshotChecksTrustWithoutPrompting)
{
    auto& m = makeModel();
    fakes.trust.prompts.clear();
    m.refreshSnapshot();
    EXPECT_EQ(fakes.trust.prompts, std::vector<bool>{false});
}

TEST_F(AppModelState, SnapshotReplacesTheWholeList)
{
    auto& m = makeModel();
    EXPECT_TRUE(m.runningApps().empty());
    fakes.workspace.addApp(11, "Mail");
    fakes.workspace.addApp(12, "Calendar");
    m.refreshSnapshot();
    ASSERT_EQ(m.runningApps().size(), 2u);
    fakes.workspace.apps.clear();
    m.refreshSnapshot();
    EXPECT_TRUE(m.runningApps().empty());
}

TEST_F(AppModelState, RefreshPermissionStatusWhileTrustedResetsTheMessageToReady)
{
    auto& m = makeModel();
    m.hideAllApps();
    fakes.trust.trusted = true;
    m.refreshPermissionStatus();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Ready to manage windows across open apps."));
}

TEST_F(AppModelState, RefreshPermissionStatusWhileUntrustedLeavesTheMessage)
{
    fakes.trust.trusted = true;
    auto& m = makeModel();
    m.hideAllApps();
    fakes.trust.trusted = false;
    m.refreshPermissionStatus();
    EXPECT_FALSE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be hidden."));
}

TEST_F(AppModelState, TwoSnapshotsEachAnnounceBothPropertiesEvenWhenUnchanged)
{
    auto& m = makeModel();
    QSignalSpy permissionSpy(&m, &AppModel::hasAccessibilityPermissionChanged);
    QSignalSpy appsSpy(&m, &AppModel::runningAppsChanged);
    m.refreshSnapshot();
    m.refreshSnapshot();
    EXPECT_EQ(permissionSpy.count(), 2);
    EXPECT_EQ(appsSpy.count(), 2);
}

TEST_F(AppModelState, RefreshPermissionStatusAnnouncesAnEqualValueAndTheReadyMessage)
{
    fakes.trust.trusted = true;
    auto& m = makeModel();
    QSignalSpy permissionSpy(&m, &AppModel::hasAccessibilityPermissionChanged);
    QSignalSpy messageSpy(&m, &AppModel::lastResultMessageChanged);
    m.refreshPermissionStatus();
    EXPECT_EQ(permissionSpy.count(), 1);
    EXPECT_EQ(messageSpy.count(), 1); // "Ready..." assigned again, unchanged
}

TEST_F(AppModelState, RefreshRunningAppsAnnouncesAnEqualEmptyList)
{
    auto& m = makeModel();
    QSignalSpy appsSpy(&m, &AppModel::runningAppsChanged);
    m.refreshRunningApps();
    m.refreshRunningApps();
    EXPECT_EQ(appsSpy.count(), 2);
}

TEST_F(AppModelState, RefreshLaunchAtLoginStatusAnnouncesAnEqualValue)
{
    auto& m = makeModel();
    QSignalSpy loginSpy(&m, &AppModel::launchesAtLoginChanged);
    m.refreshLaunchAtLoginStatus();
    EXPECT_EQ(loginSpy.count(), 1);
    EXPECT_FALSE(m.launchesAtLogin());
}

TEST_F(AppModelState, RepeatedCommandAnnouncesItsEqualMessageEachTime)
{
    auto& m = makeModel();
    QSignalSpy messageSpy(&m, &AppModel::lastResultMessageChanged);
    m.hideAllApps();
    m.hideAllApps();
    EXPECT_EQ(messageSpy.count(), 2);
}

TEST_F(AppModelState, PreferredDefaultActionReadsTheStoreEachTime)
{
    auto& m = makeModel();
    EXPECT_EQ(m.preferredDefaultAction(), DefaultAction::minimize);
    fakes.preferences.values["defaultAction"] = "hide";
    EXPECT_EQ(m.preferredDefaultAction(), DefaultAction::hide);
    fakes.preferences.values["defaultAction"] = "HIDE";
    EXPECT_EQ(m.preferredDefaultAction(), DefaultAction::minimize);
}

TEST_F(AppModelState, PropertiesAreReadableThroughTheMetaObject)
{
    fakes.trust.trusted = true;
    fakes.loginItems.currentStatus = LoginItemStatus::enabled;
    auto& m = makeModel();
    EXPECT_TRUE(m.property("hasAccessibilityPermission").toBool());
    EXPECT_TRUE(m.property("launchesAtLogin").toBool());
    EXPECT_EQ(m.property("lastResultMessage").toString(), q("Ready to manage windows across open apps."));
}

} // namespace
} // namespace stowly
