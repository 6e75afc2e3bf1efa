// SPDX-License-Identifier: MIT

#include "model/presets.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel {
namespace {

constexpr double kT = 33.333333333333336;
constexpr double kTt = 66.66666666666667;
constexpr Zone kFiller{false, 25, 25, 50, 50};

Zone zone(double x, double y, double w, double h) {
    return {true, x, y, w, h};
}

std::vector<Zone> ninth(std::vector<Zone> zones) {
    while (zones.size() < 9)
        zones.push_back(kFiller);
    return zones;
}

TEST(ZoneTest, TwoZonesThatDifferInOneFieldAreNotEqual) {
    const Zone zone{true, 1, 2, 3, 4};

    EXPECT_EQ(zone, (Zone{true, 1, 2, 3, 4}));
    EXPECT_NE(zone, (Zone{false, 1, 2, 3, 4}));
    EXPECT_NE(zone, (Zone{true, 9, 2, 3, 4}));
    EXPECT_NE(zone, (Zone{true, 1, 9, 3, 4}));
    EXPECT_NE(zone, (Zone{true, 1, 2, 9, 4}));
    EXPECT_NE(zone, (Zone{true, 1, 2, 3, 9}));
}

TEST(ZoneTest, EqualityHasNoTolerance) {
    EXPECT_NE((Zone{true, 33.333333333333336, 0, 1, 1}), (Zone{true, 33.33333333333333, 0, 1, 1}));
}

TEST(LayoutTest, EqualityComparesTheNameTheNumberOfZonesAndEveryZone) {
    const Layout layout{"Mine", {zone(0, 0, 50, 100), zone(50, 0, 50, 100)}};

    EXPECT_EQ(layout, (Layout{"Mine", {zone(0, 0, 50, 100), zone(50, 0, 50, 100)}}));
    EXPECT_NE(layout, (Layout{"mine", {zone(0, 0, 50, 100), zone(50, 0, 50, 100)}}));
    EXPECT_NE(layout, (Layout{"Mine", {zone(0, 0, 50, 100)}}));
    EXPECT_NE(layout, (Layout{"Mine", {zone(50, 0, 50, 100), zone(0, 0, 50, 100)}}));
}

TEST(PresetsTest, ZReturnsAnEnabledZone) {
    EXPECT_EQ(Presets::z(1, 2, 3, 4), (Zone{true, 1, 2, 3, 4}));
}

TEST(PresetsTest, PaddingAnEmptyListGivesNineDisabledCentredZones) {
    EXPECT_EQ(Presets::pad({}), std::vector<Zone>(9, kFiller));
}

TEST(PresetsTest, PaddingKeepsTheExistingZones) {
    const Zone disabled{false, 1, 2, 3, 4};

    const auto padded = Presets::pad({zone(0, 0, 10, 10), disabled});

    EXPECT_EQ(padded, ninth({zone(0, 0, 10, 10), disabled}));
}

TEST(PresetsTest, PaddingTwelveZonesKeepsTheFirstNineInOrder) {
    std::vector<Zone> twelve;
    for (int number = 0; number < 12; ++number)
        twelve.push_back(zone(number, 0, 1, 1));

    const auto padded = Presets::pad(twelve);

    EXPECT_EQ(padded, std::vector<Zone>(twelve.begin(), twelve.begin() + 9));
}

TEST(PresetsTest, PaddingNineZonesChangesNothing) {
    const std::vector<Zone> nine(9, zone(1, 2, 3, 4));

    EXPECT_EQ(Presets::pad(nine), nine);
}

TEST(PresetsTest, TheBuiltInLayoutsMatchTheTable) {
    const std::vector<Layout> table{
        {"3 top + 2 bottom", ninth({zone(0, 0, kT, 50), zone(kT, 0, kT, 50), zone(kTt, 0, kT, 50),
                                    zone(0, 50, 50, 50), zone(50, 50, 50, 50)})},
        {"Halves", ninth({zone(0, 0, 50, 100), zone(50, 0, 50, 100)})},
        {"Thirds", ninth({zone(0, 0, kT, 100), zone(kT, 0, kT, 100), zone(kTt, 0, kT, 100)})},
        {"Quarters",
         ninth({zone(0, 0, 50, 50), zone(50, 0, 50, 50), zone(0, 50, 50, 50), zone(50, 50, 50, 50)})},
        {"Two thirds + one third", ninth({zone(0, 0, kTt, 100), zone(kTt, 0, kT, 100)})},
        {"One third + two thirds", ninth({zone(0, 0, kT, 100), zone(kT, 0, kTt, 100)})},
        {"Grid 3 x 2", ninth({zone(0, 0, kT, 50), zone(kT, 0, kT, 50), zone(kTt, 0, kT, 50),
                              zone(0, 50, kT, 50), zone(kT, 50, kT, 50), zone(kTt, 50, kT, 50)})},
        {"Main + two stacked", ninth({zone(0, 0, 60, 100), zone(60, 0, 40, 50), zone(60, 50, 40, 50)})},
        {"Ultrawide 25 / 50 / 25", ninth({zone(0, 0, 25, 100), zone(25, 0, 50, 100), zone(75, 0, 25, 100)})},
    };

    ASSERT_EQ(Presets::all().size(), table.size());
    for (std::size_t index = 0; index < table.size(); ++index)
        EXPECT_EQ(Presets::all()[index], table[index]) << table[index].name;
}

TEST(PresetsTest, TheListIsBuiltOnce) {
    EXPECT_EQ(&Presets::all(), &Presets::all());
}

TEST(PresetsTest, ATagNamesABuiltInLayoutOrOneOfTheUser) {
    const std::vector<Layout> users{{"Mine", {}}, {"Other", {}}};

    EXPECT_EQ(Presets::layout(0, users), &Presets::all().front());
    EXPECT_EQ(Presets::layout(8, users), &Presets::all().back());
    EXPECT_EQ(Presets::layout(1001, users), &users[1]);
    for (const int tag : {-1, 9, 999, 1002})
        EXPECT_EQ(Presets::layout(tag, users), nullptr) << tag;
}

} // namespace
} // namespace tessarel
