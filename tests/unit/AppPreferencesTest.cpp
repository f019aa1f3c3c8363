// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "AppPreferences.h"
#include "FakePlatform.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace stowly {
namespace {

using testing::q;

ActionSet parse(const char* text)
{
    return AppPreferences::parseEnabledActions(q(text));
}

std::vector<DefaultAction> listed(const char* text)
{
    return AppPreferences::enabledActionsSorted(parse(text));
}

const std::vector<DefaultAction> kAllInCatalogueOrder{DefaultAction::minimize, DefaultAction::hide,
                                                      DefaultAction::closeWindows, DefaultAction::forceQuit};

TEST(AppPreferences, KeyStringsAreExact)
{
    EXPECT_EQ(AppPreferences::defaultActionKey(), q("defaultAction"));
    EXPECT_EQ(AppPreferences::enabledActionsKey(), q("enabledActions"));
}

TEST(AppPreferences, DefaultEnabledActionsIsAllCasesJoinedInCatalogueOrder)
{
    EXPECT_EQ(AppPreferences::defaultEnabledActions(), q("minimize,hide,closeWindows,forceQuit"));
}

TEST(AppPreferences, NoDefaultActionKeyPrefersMinimize)
{
    fakes::FakePreferenceStore store;
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
    EXPECT_EQ(AppPreferences::storedDefaultAction(store), q(""));
}

TEST(AppPreferences, StoredForceQuitIsPreferredEvenWhenNotEnabled)
{
    fakes::FakePreferenceStore store;
    store.values["defaultAction"] = "forceQuit";
    store.values["enabledActions"] = "minimize,hide";
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::forceQuit);
}

TEST(AppPreferences, WrongCaseDefaultHideFallsBackToMinimize)
{
    fakes::FakePreferenceStore store;
    store.values["defaultAction"] = "Hide";
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
}

TEST(AppPreferences, TrailingBlankDefaultHideFallsBackToMinimize)
{
    fakes::FakePreferenceStore store;
    store.values["defaultAction"] = "hide ";
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
}

TEST(AppPreferences, ReadingAMalformedDefaultNeverRewritesIt)
{
    fakes::FakePreferenceStore store;
    store.values["defaultAction"] = "hide ";
    (void)AppPreferences::preferredDefaultAction(store);
    (void)AppPreferences::storedEnabledActions(store);
    EXPECT_EQ(store.writes, 0);
    EXPECT_EQ(store.values.at("defaultAction"), "hide ");
    EXPECT_EQ(store.values.count("enabledActions"), 0u);
}

TEST(AppPreferences, NoEnabledActionsKeyEnablesAllFourInCatalogueOrder)
{
    fakes::FakePreferenceStore store;
    EXPECT_EQ(AppPreferences::storedEnabledActions(store), q("minimize,hide,closeWindows,forceQuit"));
    const auto actions = AppPreferences::parseEnabledActions(AppPreferences::storedEnabledActions(store));
    EXPECT_EQ(AppPreferences::enabledActionsSorted(actions), kAllInCatalogueOrder);
}

TEST(AppPreferences, EmptyEnabledActionsEnablesNothing)
{
    fakes::FakePreferenceStore store;
    store.values["enabledActions"] = "";
    EXPECT_EQ(AppPreferences::storedEnabledActions(store), q(""));
    EXPECT_TRUE(AppPreferences::parseEnabledActions(AppPreferences::storedEnabledActions(store)).empty());
}

TEST(AppPreferences, LoneCommaAndLeadingBlankEnableNothing)
{
    EXPECT_TRUE(parse(",").empty());
    EXPECT_TRUE(parse(" hide").empty());
    EXPECT_TRUE(parse("Hide,MINIMIZE").empty());
}

TEST(AppPreferences, DoubledCommaUnknownAndRepeatGiveMinimizeAndForceQuitListedMinimizeFirst)
{
    const auto actions = parse("forceQuit,,minimize,unknown,minimize");
    EXPECT_EQ(actions, (ActionSet{DefaultAction::minimize, DefaultAction::forceQuit}));
    EXPECT_EQ(AppPreferences::enabledActionsSorted(actions),
              (std::vector<DefaultAction>{DefaultAction::minimize, DefaultAction::forceQuit}));
}

TEST(AppPreferences, HideHideBogusGivesHideAlone)
{
    EXPECT_EQ(parse("hide,hide,bogus"), (ActionSet{DefaultAction::hide}));
}

TEST(AppPreferences, SortedListIgnoresStoredOrder)
{
    EXPECT_EQ(listed("forceQuit,closeWindows,hide,minimize"), kAllInCatalogueOrder);
}

TEST(AppPreferences, SerializingMinimizeAndHideYieldsHideMinimize)
{
    EXPECT_EQ(AppPreferences::serializeEnabledActions({DefaultAction::minimize, DefaultAction::hide}),
              q("hide,minimize"));
}

TEST(AppPreferences, SerializingAllFourYieldsAlphabeticalOrder)
{
    EXPECT_EQ(AppPreferences::serializeEnabledActions({DefaultAction::minimize, DefaultAction::hide,
                                                       DefaultAction::closeWindows, DefaultAction::forceQuit}),
              q("closeWindows,forceQuit,hide,minimize"));
}

TEST(AppPreferences, SerializingTheEmptySetYieldsTheEmptyString)
{
    EXPECT_EQ(AppPreferences::serializeEnabledActions({}), q(""));
}

TEST(AppPreferences, StoreEnabledActionsWritesTheSerializedFormUnderItsKey)
{
    fakes::FakePreferenceStore store;
    AppPreferences::storeEnabledActions(store, {DefaultAction::forceQuit, DefaultAction::closeWindows});
    EXPECT_EQ(store.values.at("enabledActions"), "closeWindows,forceQuit");
    AppPreferences::storeDefaultAction(store, q("hide"));
    EXPECT_EQ(store.values.at("defaultAction"), "hide");
}

} // namespace
} // namespace stowly
