// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "DefaultAction.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace stowly {
namespace {

using testing::q;

TEST(DefaultAction, AllCasesIdsAreMinimizeHideCloseWindowsForceQuitInOrder)
{
    const auto& all = DefaultAction::allCases();
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all[0].id(), q("minimize"));
    EXPECT_EQ(all[1].id(), q("hide"));
    EXPECT_EQ(all[2].id(), q("closeWindows"));
    EXPECT_EQ(all[3].id(), q("forceQuit"));
}

TEST(DefaultAction, AllCasesFollowCatalogueOrder)
{
    const auto& all = DefaultAction::allCases();
    EXPECT_EQ(all[0], DefaultAction::minimize);
    EXPECT_EQ(all[1], DefaultAction::hide);
    EXPECT_EQ(all[2], DefaultAction::closeWindows);
    EXPECT_EQ(all[3], DefaultAction::forceQuit);
}

TEST(DefaultAction, IdIsTheRawValue)
{
    for (const auto action : DefaultAction::allCases())
        EXPECT_EQ(action.id(), action.rawValue());
}

TEST(DefaultAction, TitlesAreExact)
{
    EXPECT_EQ(DefaultAction(DefaultAction::minimize).title(), q("Minimize All Windows"));
    EXPECT_EQ(DefaultAction(DefaultAction::hide).title(), q("Hide All Apps"));
    EXPECT_EQ(DefaultAction(DefaultAction::closeWindows).title(), q("Close All Windows"));
    EXPECT_EQ(DefaultAction(DefaultAction::forceQuit).title(), q("Force Quit All Apps"));
}

TEST(DefaultAction, SummariesAreExact)
{
    EXPECT_EQ(DefaultAction(DefaultAction::minimize).summary(), q("Minimizes standard windows without closing apps."));
    EXPECT_EQ(DefaultAction(DefaultAction::hide).summary(), q("Hides open apps without touching their windows."));
    EXPECT_EQ(DefaultAction(DefaultAction::closeWindows).summary(),
              q("Attempts to close standard windows in each app."));
    EXPECT_EQ(DefaultAction(DefaultAction::forceQuit).summary(),
              q("Immediately quits running apps and can cause unsaved work to be lost."));
}

TEST(DefaultAction, SystemImagesAreExact)
{
    EXPECT_EQ(DefaultAction(DefaultAction::minimize).systemImage(), q("macwindow.badge.minus"));
    EXPECT_EQ(DefaultAction(DefaultAction::hide).systemImage(), q("eye.slash"));
    EXPECT_EQ(DefaultAction(DefaultAction::closeWindows).systemImage(), q("xmark.square"));
    EXPECT_EQ(DefaultAction(DefaultAction::forceQuit).systemImage(), q("bolt.fill"));
}

TEST(DefaultAction, SettingsShortTitlesAndCardSummariesAreExact)
{
    EXPECT_EQ(DefaultAction(DefaultAction::minimize).shortTitle(), q("Minimize"));
    EXPECT_EQ(DefaultAction(DefaultAction::hide).shortTitle(), q("Hide"));
    EXPECT_EQ(DefaultAction(DefaultAction::closeWindows).shortTitle(), q("Close Windows"));
    EXPECT_EQ(DefaultAction(DefaultAction::forceQuit).shortTitle(), q("Force Quit"));
    EXPECT_EQ(DefaultAction(DefaultAction::minimize).cardSummary(), q("Clear the desktop while keeping apps running."));
    EXPECT_EQ(DefaultAction(DefaultAction::hide).cardSummary(), q("Hide every app without changing window state."));
    EXPECT_EQ(DefaultAction(DefaultAction::closeWindows).cardSummary(),
              q("Ask apps to close visible windows when possible."));
    EXPECT_EQ(DefaultAction(DefaultAction::forceQuit).cardSummary(),
              q("Immediately terminate running apps. Use with care."));
}

TEST(DefaultAction, FromRawValueRoundTripsEveryCase)
{
    for (const auto action : DefaultAction::allCases()) {
        const auto parsed = DefaultAction::fromRawValue(action.rawValue());
        ASSERT_TRUE(parsed.has_value()) << action.rawValue().toStdString();
        EXPECT_EQ(*parsed, action);
    }
}

TEST(DefaultAction, FromRawValueRejectsEmptyBlankAndWrongCase)
{
    EXPECT_FALSE(DefaultAction::fromRawValue(q("")).has_value());
    EXPECT_FALSE(DefaultAction::fromRawValue(q(" minimize")).has_value());
    EXPECT_FALSE(DefaultAction::fromRawValue(q("minimize ")).has_value());
    EXPECT_FALSE(DefaultAction::fromRawValue(q("Minimize")).has_value());
    EXPECT_FALSE(DefaultAction::fromRawValue(q("closewindows")).has_value());
    EXPECT_FALSE(DefaultAction::fromRawValue(q("minimize,hide")).has_value());
}

} // namespace
} // namespace stowly
