// SPDX-License-Identifier: MIT

#include "model/settings/app_settings.h"

#include <gtest/gtest.h>

#include <vector>

namespace tessarel {
namespace {

TEST(AppSettingsTest, SettingsBesidesZonesAndBindingsHaveTheirDefaults) {
    const AppSettings settings;

    EXPECT_TRUE(settings.userLayouts.empty());
    EXPECT_EQ(settings.gap, 0);
    EXPECT_EQ(settings.margin, 0);
    EXPECT_TRUE(settings.dragEnabled);
    EXPECT_EQ(settings.dragTrigger, "shift");
    EXPECT_FALSE(settings.edgeSnap);
    EXPECT_TRUE(settings.ignoredApps.empty());
    EXPECT_FALSE(settings.hasOnboarded);
    EXPECT_EQ(settings.gridStep, 5);
    EXPECT_EQ(settings.lastUpdateCheck, 0);
    EXPECT_TRUE(settings.rememberApps);
    EXPECT_TRUE(settings.appZones.empty());
}

TEST(AppSettingsTest, TheDefaultZonesAreThreeAboveTwoAndFourDisabledOnes) {
    constexpr double kThird = 33.333333333333336;
    constexpr double kThirds = 66.66666666666667;
    const Zone filler{false, 25, 25, 50, 50};

    EXPECT_EQ(AppSettings().zones, (std::vector<Zone>{{true, 0, 0, kThird, 50},
                                                      {true, kThird, 0, kThird, 50},
                                                      {true, kThirds, 0, kThird, 50},
                                                      {true, 0, 50, 50, 50},
                                                      {true, 50, 50, 50, 50},
                                                      filler,
                                                      filler,
                                                      filler,
                                                      filler}));
}

TEST(AppSettingsTest, TheDefaultBindingsAreOnePerAction) {
    const AppSettings::Bindings expected{
        {"zone1", {18, 6144}},       {"zone2", {19, 6144}},        {"zone3", {20, 6144}},
        {"zone4", {21, 6144}},       {"zone5", {23, 6144}},        {"zone6", {22, 6144}},
        {"zone7", {26, 6144}},       {"zone8", {28, 6144}},        {"zone9", {25, 6144}},
        {"leftHalf", {123, 6144}},   {"rightHalf", {124, 6144}},   {"topHalf", {126, 6144}},
        {"bottomHalf", {125, 6144}}, {"maximize", {36, 6144}},     {"center", {8, 6144}},
        {"restore", {51, 6144}},     {"nextDisplay", {124, 6400}}, {"previousDisplay", {123, 6400}},
        {"arrangeAll", {0, 6144}},
    };

    EXPECT_EQ(AppSettings().bindings, expected);
    EXPECT_EQ(AppSettings::defaultBindings(), expected);
}

} // namespace
} // namespace tessarel
