// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ActionAvailability.h"

#include <gtest/gtest.h>

namespace stowly {
namespace {

TEST(ActionAvailability, WindowActionsDependOnPermissionOnly)
{
    for (const bool hasApps : {false, true}) {
        EXPECT_TRUE(isActionDisabled(DefaultAction::minimize, false, hasApps));
        EXPECT_TRUE(isActionDisabled(DefaultAction::closeWindows, false, hasApps));
        EXPECT_FALSE(isActionDisabled(DefaultAction::minimize, true, hasApps));
        EXPECT_FALSE(isActionDisabled(DefaultAction::closeWindows, true, hasApps));
    }
}

TEST(ActionAvailability, AppActionsDependOnTheListOnly)
{
    for (const bool permission : {false, true}) {
        EXPECT_TRUE(isActionDisabled(DefaultAction::hide, permission, false));
        EXPECT_TRUE(isActionDisabled(DefaultAction::forceQuit, permission, false));
        EXPECT_FALSE(isActionDisabled(DefaultAction::hide, permission, true));
        EXPECT_FALSE(isActionDisabled(DefaultAction::forceQuit, permission, true));
    }
}

TEST(ActionAvailability, WithoutAccessWindowActionsDisabledEvenWithAppsOpenAppActionsEnabled)
{
    EXPECT_TRUE(isActionDisabled(DefaultAction::minimize, false, true));
    EXPECT_TRUE(isActionDisabled(DefaultAction::closeWindows, false, true));
    EXPECT_FALSE(isActionDisabled(DefaultAction::hide, false, true));
    EXPECT_FALSE(isActionDisabled(DefaultAction::forceQuit, false, true));
}

TEST(ActionAvailability, WithAccessButNoAppsOnlyAppActionsDisabled)
{
    EXPECT_FALSE(isActionDisabled(DefaultAction::minimize, true, false));
    EXPECT_FALSE(isActionDisabled(DefaultAction::closeWindows, true, false));
    EXPECT_TRUE(isActionDisabled(DefaultAction::hide, true, false));
    EXPECT_TRUE(isActionDisabled(DefaultAction::forceQuit, true, false));
}

} // namespace
} // namespace stowly
