// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "AccessibilityPermissionChecker.h"
#include "TestSupport.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace stowly {
namespace {

using testing::q;

class LaunchAndAccess : public testing::ModelTest {};

// ---- Trust query ---------------------------------------------------------------------

TEST(AccessibilityPermissionChecker, PassesThePromptFlagAndReturnsTheAnswer)
{
    fakes::FakeTrust trust;
    EXPECT_FALSE(AccessibilityPermissionChecker::isTrusted(trust, false));
    trust.trusted = true;
    EXPECT_TRUE(AccessibilityPermissionChecker::isTrusted(trust, true));
    EXPECT_EQ(trust.prompts, (std::vector<bool>{false, true}));
}

TEST(AccessibilityPermissionChecker, AsksAfreshEveryCall)
{
    fakes::FakeTrust trust;
    trust.trusted = true;
    EXPECT_TRUE(AccessibilityPermissionChecker::isTrusted(trust, false));
    trust.trusted = false;
    EXPECT_FALSE(AccessibilityPermissionChecker::isTrusted(trust, false));
    EXPECT_EQ(trust.prompts.size(), 2u);
}

// ---- Launch at login -----------------------------------------------------------------

TEST_F(LaunchAndAccess, EnableSucceedsLaunchesAtLoginWithMessage)
{
    auto& m = makeModel();
    QSignalSpy loginSpy(&m, &AppModel::launchesAtLoginChanged);
    m.setLaunchAtLogin(true);
    EXPECT_EQ(fakes.loginItems.registerCalls, 1);
    EXPECT_TRUE(m.launchesAtLogin());
    EXPECT_EQ(m.lastResultMessage(), q("Stowly will launch automatically when you sign in."));
    EXPECT_EQ(loginSpy.count(), 1);
}

TEST_F(LaunchAndAccess, DisableSucceedsNoLongerLaunchesWithMessage)
{
    fakes.loginItems.currentStatus = LoginItemStatus::enabled;
    auto& m = makeModel();
    ASSERT_TRUE(m.launchesAtLogin());
    m.setLaunchAtLogin(false);
    EXPECT_EQ(fakes.loginItems.unregisterCalls, 1);
    EXPECT_FALSE(m.launchesAtLogin());
    EXPECT_EQ(m.lastResultMessage(), q("Stowly will no longer launch automatically when you sign in."));
}

TEST_F(LaunchAndAccess, EnableFailsWhileNotRegisteredEndsFalseWithErrorMessage)
{
    fakes.loginItems.registerError = "Operation not permitted";
    auto& m = makeModel();
    const int queries = fakes.loginItems.statusQueries;
    m.setLaunchAtLogin(true);
    EXPECT_FALSE(m.launchesAtLogin());
    EXPECT_TRUE(m.lastResultMessage().startsWith(q("Could not update launch at login: ")));
    EXPECT_EQ(m.lastResultMessage(), q("Could not update launch at login: Operation not permitted"));
    EXPECT_EQ(fakes.loginItems.statusQueries, queries + 1); // re-read before reporting
}

TEST_F(LaunchAndAccess, DisableFailsReReadsTheRealStatus)
{
    fakes.loginItems.currentStatus = LoginItemStatus::enabled;
    fakes.loginItems.unregisterError = "The operation couldn’t be completed.";
    auto& m = makeModel();
    m.setLaunchAtLogin(false);
    EXPECT_TRUE(m.launchesAtLogin());
    EXPECT_EQ(m.lastResultMessage(), q("Could not update launch at login: The operation couldn’t be completed."));
}

TEST_F(LaunchAndAccess, RegisteredButRequiresApprovalStaysTrue)
{
    fakes.loginItems.statusAfterRegister = LoginItemStatus::requiresApproval;
    auto& m = makeModel();
    const int queries = fakes.loginItems.statusQueries;
    m.setLaunchAtLogin(true);
    EXPECT_TRUE(m.launchesAtLogin());
    EXPECT_EQ(fakes.loginItems.currentStatus, LoginItemStatus::requiresApproval);
    m.refreshSnapshot();
    m.refreshSnapshot();
    m.refreshPermissionStatus();
    m.refreshRunningApps();
    EXPECT_TRUE(m.launchesAtLogin());
    EXPECT_EQ(fakes.loginItems.statusQueries, queries); // success never re-reads
}

TEST_F(LaunchAndAccess, RegisteringWhileRegisteredIsPassedToThePlatform)
{
    fakes.loginItems.currentStatus = LoginItemStatus::enabled;
    auto& m = makeModel();
    m.setLaunchAtLogin(true);
    EXPECT_EQ(fakes.loginItems.registerCalls, 1);
    EXPECT_EQ(m.lastResultMessage(), q("Stowly will launch automatically when you sign in."));
}

// ---- Accessibility request -------------------------------------------------------------

TEST_F(LaunchAndAccess, RequestWhileUntrustedExplainsAndStillRefreshesTheList)
{
    auto& m = makeModel();
    fakes.workspace.addApp(10, "Notes");
    fakes.trust.prompts.clear();
    m.requestAccessibilityPermission();
    EXPECT_EQ(fakes.trust.prompts, std::vector<bool>{true});
    EXPECT_FALSE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access is required. Approve Stowly in System Settings > "
                                       "Privacy & Security > Accessibility."));
    ASSERT_EQ(m.runningApps().size(), 1u);
    EXPECT_EQ(m.runningApps()[0].name, q("Notes"));
}

TEST_F(LaunchAndAccess, RequestWhileTrustedSaysGranted)
{
    auto& m = makeModel();
    fakes.trust.trusted = true;
    m.requestAccessibilityPermission();
    EXPECT_TRUE(m.hasAccessibilityPermission());
    EXPECT_EQ(m.lastResultMessage(), q("Accessibility access granted."));
}

TEST_F(LaunchAndAccess, OpenSettingsOpensThePrivacyPaneAndChangesNothing)
{
    auto& m = makeModel();
    m.hideAllApps();
    QSignalSpy messageSpy(&m, &AppModel::lastResultMessageChanged);
    QSignalSpy permissionSpy(&m, &AppModel::hasAccessibilityPermissionChanged);
    fakes.urlOpener.answer = false; // a failure is silent
    m.openAccessibilitySettings();
    EXPECT_EQ(
        fakes.urlOpener.opened,
        std::vector<std::string>{"x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"});
    EXPECT_EQ(m.lastResultMessage(), q("No apps could be hidden."));
    EXPECT_EQ(messageSpy.count(), 0);
    EXPECT_EQ(permissionSpy.count(), 0);
}

TEST_F(LaunchAndAccess, AccessSettingsAreNamedByThePlatformAndOpenedThroughIt)
{
    auto& m = makeModel();
    EXPECT_EQ(m.accessSettingsName(), std::optional<QString>(q("System Settings")));
    fakes.accessSettings.settingsName = "Openbox Configuration Manager";
    fakes.accessSettings.location = "obconf:";
    EXPECT_EQ(m.accessSettingsName(), std::optional<QString>(q("Openbox Configuration Manager")));
    m.openAccessibilitySettings();
    EXPECT_EQ(fakes.urlOpener.opened, std::vector<std::string>{"obconf:"});
}

TEST_F(LaunchAndAccess, WindowsOutOfReachAreThePlatformsToName)
{
    auto& m = makeModel();
    EXPECT_EQ(m.accessLimitation(), std::nullopt);
    fakes.accessSettings.outOfReach = "Only apps running through Xwayland can be listed and acted on.";
    EXPECT_EQ(m.accessLimitation(),
              std::optional<QString>(q("Only apps running through Xwayland can be listed and acted on.")));
}

TEST_F(LaunchAndAccess, NothingToOpenOpensNothingAndChangesNothing)
{
    auto& m = makeModel();
    fakes.accessSettings.settingsName = std::nullopt;
    const auto message = m.lastResultMessage();
    QSignalSpy messageSpy(&m, &AppModel::lastResultMessageChanged);
    EXPECT_EQ(m.accessSettingsName(), std::nullopt);
    m.openAccessibilitySettings();
    EXPECT_TRUE(fakes.urlOpener.opened.empty());
    EXPECT_EQ(m.lastResultMessage(), message);
    EXPECT_EQ(messageSpy.count(), 0);
}

} // namespace
} // namespace stowly
