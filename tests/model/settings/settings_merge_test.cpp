// SPDX-License-Identifier: MIT

#include "model/settings/settings_merge.h"

#include "model/presets.h"
#include "model/settings/settings_members.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace tessarel {
namespace {

using Apps = std::vector<std::string>;

Layout layoutCalled(const std::string& name, double width = 100) {
    return {name, {Presets::z(0, 0, width, 100)}};
}

class SettingsMergeTest : public testing::Test {
protected:
    AppSettings before;
    AppSettings ours;
    AppSettings theirs;

    /// Makes the same change to all three.
    void given(const std::function<void(AppSettings&)>& change) {
        change(before);
        change(ours);
        change(theirs);
    }
    AppSettings result() const { return merged(before, ours, theirs); }
};

TEST_F(SettingsMergeTest, ChangesOfDifferentSettingsBothSurvive) {
    ours.gap = 5;
    ours.edgeSnap = true;
    theirs.margin = 7;
    theirs.dragTrigger = "control";

    AppSettings expected;
    expected.gap = 5;
    expected.edgeSnap = true;
    expected.margin = 7;
    expected.dragTrigger = "control";
    EXPECT_EQ(result(), expected);
}

TEST_F(SettingsMergeTest, OurChangeOfTheSameSettingWins) {
    ours.gap = 5;
    theirs.gap = 7;

    EXPECT_EQ(result().gap, 5);
}

TEST_F(SettingsMergeTest, ASettingThatWeHaveNotChangedIsTheirs) {
    given([](AppSettings& settings) { settings.gap = 3; });
    theirs.gap = 7;

    EXPECT_EQ(result().gap, 7);
}

TEST_F(SettingsMergeTest, EverySettingOfOursIsApplied) {
    ours.zones[2].x = 1;
    ours.bindings.erase("center");
    ours.userLayouts = {layoutCalled("mine")};
    ours.gap = 1;
    ours.margin = 2;
    ours.dragEnabled = false;
    ours.dragTrigger = "always";
    ours.edgeSnap = true;
    ours.ignoredApps = {"org.example.mine"};
    ours.hasOnboarded = true;
    ours.gridStep = 10;
    ours.lastUpdateCheck = 3;
    ours.rememberApps = false;
    ours.appZones = {{"org.example.mine", 4}};
    // A setting that this test does not know would be equal.
    forEachSetting(
        [this](const char* name, auto member) { EXPECT_FALSE(ours.*member == before.*member) << name; });

    EXPECT_EQ(result(), ours);
}

TEST_F(SettingsMergeTest, BindingsAreMergedByAction) {
    ours.bindings["center"] = {7, 256};
    ours.bindings.erase("restore");
    theirs.bindings["maximize"] = {8, 256};
    theirs.bindings.erase("leftHalf");

    auto expected = AppSettings::defaultBindings();
    expected["center"] = {7, 256};
    expected["maximize"] = {8, 256};
    expected.erase("restore");
    expected.erase("leftHalf");
    EXPECT_EQ(result().bindings, expected);
}

TEST_F(SettingsMergeTest, RememberedZonesAreMergedByApplication) {
    given([](AppSettings& settings) { settings.appZones = {{"a", 1}, {"b", 2}, {"c", 3}}; });
    ours.appZones = {{"a", 5}, {"b", 2}, {"mine", 6}};     // without c
    theirs.appZones = {{"a", 1}, {"c", 3}, {"theirs", 7}}; // without b

    EXPECT_EQ(result().appZones,
              (std::map<std::string, std::int64_t, std::less<>>{{"a", 5}, {"mine", 6}, {"theirs", 7}}));
}

TEST_F(SettingsMergeTest, IgnoredAppsAreMergedByIdentifierInTheirOrder) {
    given([](AppSettings& settings) { settings.ignoredApps = {"a", "b", "c"}; });
    ours.ignoredApps = {"a", "c", "mine"};
    theirs.ignoredApps = {"theirs", "c", "b"};

    EXPECT_EQ(result().ignoredApps, (Apps{"theirs", "c", "mine"}));
}

TEST_F(SettingsMergeTest, AnAppThatBothSidesIgnoreIsListedOnce) {
    ours.ignoredApps = {"a"};
    theirs.ignoredApps = {"b", "a"};

    EXPECT_EQ(result().ignoredApps, (Apps{"b", "a"}));
}

TEST_F(SettingsMergeTest, WithoutAChangeOfTheirsTheListIsOursInOurOrder) {
    given([](AppSettings& settings) { settings.ignoredApps = {"a", "b", "b"}; });
    ours.ignoredApps = {"c", "b", "a"};

    EXPECT_EQ(result().ignoredApps, ours.ignoredApps);
}

TEST_F(SettingsMergeTest, AListWithDuplicatesCountsAsOneSetting) {
    given([](AppSettings& settings) { settings.ignoredApps = {"a", "a"}; });
    theirs.ignoredApps = {"b"};
    EXPECT_EQ(result().ignoredApps, Apps{"b"});

    ours.ignoredApps = {"a"};
    EXPECT_EQ(result().ignoredApps, Apps{"a"});
}

TEST_F(SettingsMergeTest, LayoutsAreMergedByName) {
    given([](AppSettings& settings) {
        settings.userLayouts = {layoutCalled("one"), layoutCalled("two"), layoutCalled("three")};
    });
    ours.userLayouts = {layoutCalled("one", 50), layoutCalled("two"), layoutCalled("mine")};
    theirs.userLayouts = {layoutCalled("one"), layoutCalled("theirs"), layoutCalled("three")};

    EXPECT_EQ(result().userLayouts,
              (std::vector<Layout>{layoutCalled("one", 50), layoutCalled("theirs"), layoutCalled("mine")}));
}

TEST_F(SettingsMergeTest, EditsOfTwoZonesBothSurvive) {
    ours.zones[1].x = 11;
    theirs.zones[3].x = 33;

    auto expected = before.zones;
    expected[1].x = 11;
    expected[3].x = 33;
    EXPECT_EQ(result().zones, expected);
}

TEST_F(SettingsMergeTest, TheEditOfOneZoneIsAppliedToALayoutThatTheyHaveChosen) {
    ours.zones[1].x = 11;
    theirs.zones = Presets::all()[3].zones;

    auto expected = Presets::all()[3].zones;
    expected[1] = ours.zones[1];
    EXPECT_EQ(result().zones, expected);
}

TEST_F(SettingsMergeTest, ALayoutThatWeHaveChosenReplacesAllZones) {
    ours.zones = Presets::all()[2].zones;
    theirs.zones[1].x = 11;
    theirs.zones[8].x = 12;

    EXPECT_EQ(result().zones, Presets::all()[2].zones);
}

} // namespace
} // namespace tessarel
