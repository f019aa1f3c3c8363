// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ActionSettings.h"
#include "FakePlatform.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace stowly {
namespace {

using testing::q;

class ActionSettingsTest : public ::testing::Test {
protected:
    fakes::FakePreferenceStore store;

    std::optional<std::string> stored(const std::string& key) const { return store.string(key); }

    // A click on the card of `action`, drawn with the set as it is stored now.
    void click(DefaultAction action)
    {
        const bool isSelected = ActionSettings::enabledActions(store).count(action) != 0;
        ActionSettings::toggleAction(store, action, isSelected);
    }
};

TEST_F(ActionSettingsTest, NoStoredKeysSelectAllCardsAndMinimizeEverywhere)
{
    EXPECT_EQ(ActionSettings::enabledActions(store),
              (ActionSet{DefaultAction::minimize, DefaultAction::hide, DefaultAction::closeWindows,
                         DefaultAction::forceQuit}));
    EXPECT_EQ(ActionSettings::pickerSelection(store), DefaultAction::minimize);
    EXPECT_EQ(ActionSettings::pickerItems(store),
              (std::vector<DefaultAction>{DefaultAction::closeWindows, DefaultAction::forceQuit, DefaultAction::hide,
                                          DefaultAction::minimize}));
    EXPECT_EQ(ActionSettings::selectedAction(store), DefaultAction::minimize);
    EXPECT_EQ(q("Default: ") + ActionSettings::selectedAction(store).title(), q("Default: Minimize All Windows"));
    EXPECT_EQ(store.writes, 0);
}

TEST_F(ActionSettingsTest, SwitchingOffMinimizeWhileDefaultStoresRestAndMakesCloseWindowsDefault)
{
    ActionSettings::toggleAction(store, DefaultAction::minimize, true);
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>("closeWindows,forceQuit,hide"));
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("closeWindows"));
}

TEST_F(ActionSettingsTest, SwitchingMinimizeBackOnKeepsCloseWindowsDefault)
{
    ActionSettings::toggleAction(store, DefaultAction::minimize, true);
    ActionSettings::toggleAction(store, DefaultAction::minimize, false);
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>("closeWindows,forceQuit,hide,minimize"));
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("closeWindows"));
}

TEST_F(ActionSettingsTest, LastEnabledActionCannotBeSwitchedOffAndNothingIsWritten)
{
    store.values["enabledActions"] = ",hide,";
    store.values["defaultAction"] = "minimize";
    const int writes = store.writes;
    ActionSettings::toggleAction(store, DefaultAction::hide, true);
    EXPECT_EQ(store.writes, writes);
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>(",hide,"));
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("minimize"));
}

TEST_F(ActionSettingsTest, RepeatsUnknownAndEmptyPiecesReadAsHideAloneThenRewriteSorted)
{
    store.values["enabledActions"] = "hide,,hide,bogus,";
    EXPECT_EQ(ActionSettings::enabledActions(store), ActionSet{DefaultAction::hide});
    click(DefaultAction::forceQuit);
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>("forceQuit,hide"));
}

TEST_F(ActionSettingsTest, UnknownStoredDefaultShowsMinimizeInPickerAndBox)
{
    store.values["defaultAction"] = "bogus";
    EXPECT_EQ(ActionSettings::pickerSelection(store), DefaultAction::minimize);
    EXPECT_EQ(ActionSettings::selectedAction(store), DefaultAction::minimize);
}

TEST_F(ActionSettingsTest, UnknownStoredDefaultSurvivesAClickThatKeepsMinimizeEnabled)
{
    store.values["defaultAction"] = "bogus";
    click(DefaultAction::hide);
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>("closeWindows,forceQuit,minimize"));
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("bogus"));
}

TEST_F(ActionSettingsTest, UnknownStoredDefaultIsReplacedWhenMinimizeIsSwitchedOff)
{
    store.values["defaultAction"] = "bogus";
    click(DefaultAction::minimize);
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("closeWindows"));
}

TEST_F(ActionSettingsTest, StoredDefaultThatIsDisabledPicksSmallestRawValueButBoxKeepsIt)
{
    store.values["enabledActions"] = "minimize,hide";
    store.values["defaultAction"] = "forceQuit";
    EXPECT_EQ(ActionSettings::pickerSelection(store), DefaultAction::hide);
    EXPECT_EQ(ActionSettings::selectedAction(store), DefaultAction::forceQuit);
    EXPECT_EQ(store.writes, 0); // the picker getter never writes
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("forceQuit"));
}

TEST_F(ActionSettingsTest, EmptyEnabledSetPickerFallsBackToMinimizeWithNoItems)
{
    store.values["enabledActions"] = "";
    store.values["defaultAction"] = "hide";
    EXPECT_EQ(ActionSettings::pickerSelection(store), DefaultAction::minimize);
    EXPECT_TRUE(ActionSettings::pickerItems(store).empty());
}

TEST_F(ActionSettingsTest, EnablingAnyActionRepairsADefaultOutsideTheSet)
{
    store.values["enabledActions"] = "hide,forceQuit";
    store.values["defaultAction"] = "minimize";
    click(DefaultAction::closeWindows);
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>("closeWindows,forceQuit,hide"));
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("closeWindows"));
}

TEST_F(ActionSettingsTest, SwitchingOffANonDefaultLeavesTheDefault)
{
    store.values["defaultAction"] = "hide";
    click(DefaultAction::closeWindows);
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>("forceQuit,hide,minimize"));
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("hide"));
}

TEST_F(ActionSettingsTest, PickerChoiceStoresTheDefaultOnly)
{
    ActionSettings::setPickerSelection(store, DefaultAction::forceQuit);
    EXPECT_EQ(stored("defaultAction"), std::optional<std::string>("forceQuit"));
    EXPECT_EQ(stored("enabledActions"), std::nullopt);
    EXPECT_EQ(ActionSettings::pickerSelection(store), DefaultAction::forceQuit);
}

TEST_F(ActionSettingsTest, PickerItemsAreTheEnabledActionsByRawValue)
{
    store.values["enabledActions"] = "minimize,forceQuit,hide";
    EXPECT_EQ(ActionSettings::pickerItems(store),
              (std::vector<DefaultAction>{DefaultAction::forceQuit, DefaultAction::hide, DefaultAction::minimize}));
}

TEST_F(ActionSettingsTest, SetEnabledActionsWritesSortedWithoutBlanks)
{
    ActionSettings::setEnabledActions(store, {DefaultAction::minimize, DefaultAction::closeWindows});
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>("closeWindows,minimize"));
    ActionSettings::setEnabledActions(store, {});
    EXPECT_EQ(stored("enabledActions"), std::optional<std::string>(""));
}

TEST_F(ActionSettingsTest, BlankOrWrongCasePiecesAreNotRecognised)
{
    store.values["enabledActions"] = " hide,Minimize,forceQuit ";
    EXPECT_TRUE(ActionSettings::enabledActions(store).empty());
}

} // namespace
} // namespace stowly
