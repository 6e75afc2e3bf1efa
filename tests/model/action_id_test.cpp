// SPDX-License-Identifier: MIT

#include "model/action_id.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace tessarel {
namespace {

struct Row {
    std::string_view rawValue;
    std::string_view title;
    std::optional<std::size_t> zoneIndex;
    std::optional<Zone> fixedZone;
    std::int64_t keyCode;
    std::int64_t mods;
};

// The expected properties of every action.
const std::array<Row, 19> kActions{{
    {"zone1", "Snap to Zone 1", 0, {}, 18, 6144},
    {"zone2", "Snap to Zone 2", 1, {}, 19, 6144},
    {"zone3", "Snap to Zone 3", 2, {}, 20, 6144},
    {"zone4", "Snap to Zone 4", 3, {}, 21, 6144},
    {"zone5", "Snap to Zone 5", 4, {}, 23, 6144},
    {"zone6", "Snap to Zone 6", 5, {}, 22, 6144},
    {"zone7", "Snap to Zone 7", 6, {}, 26, 6144},
    {"zone8", "Snap to Zone 8", 7, {}, 28, 6144},
    {"zone9", "Snap to Zone 9", 8, {}, 25, 6144},
    {"leftHalf", "Left half", {}, Zone{true, 0, 0, 50, 100}, 123, 6144},
    {"rightHalf", "Right half", {}, Zone{true, 50, 0, 50, 100}, 124, 6144},
    {"topHalf", "Top half", {}, Zone{true, 0, 0, 100, 50}, 126, 6144},
    {"bottomHalf", "Bottom half", {}, Zone{true, 0, 50, 100, 50}, 125, 6144},
    {"maximize", "Maximize", {}, Zone{true, 0, 0, 100, 100}, 36, 6144},
    {"center", "Center", {}, {}, 8, 6144},
    {"restore", "Restore previous size", {}, {}, 51, 6144},
    {"nextDisplay", "Move to next display", {}, {}, 124, 6400},
    {"previousDisplay", "Move to previous display", {}, {}, 123, 6400},
    {"arrangeAll", "Arrange windows into zones", {}, {}, 0, 6144},
}};

class ActionIDTest : public testing::TestWithParam<std::size_t> {
protected:
    const Row& row = kActions.at(GetParam());
    const ActionID action = ActionID::allCases.at(GetParam());
};

TEST_P(ActionIDTest, HasTheRawValueOfItsRow) {
    EXPECT_EQ(action.rawValue(), row.rawValue);
}

TEST_P(ActionIDTest, IsFoundByItsRawValue) {
    EXPECT_EQ(ActionID::fromRawValue(row.rawValue), action);
}

TEST_P(ActionIDTest, HasTheTitleOfItsRow) {
    EXPECT_EQ(action.title(), row.title);
}

TEST_P(ActionIDTest, HasTheZoneIndexOfItsRow) {
    EXPECT_EQ(action.zoneIndex(), row.zoneIndex);
}

TEST_P(ActionIDTest, HasTheFixedZoneOfItsRow) {
    EXPECT_EQ(action.fixedZone(), row.fixedZone);
}

TEST_P(ActionIDTest, HasTheDefaultBindingOfItsRow) {
    EXPECT_EQ(action.defaultBinding(), (Binding{row.keyCode, row.mods}));
}

INSTANTIATE_TEST_SUITE_P(Table, ActionIDTest, testing::Range<std::size_t>(0, kActions.size()),
                         [](const auto& instance) {
                             return std::string(kActions.at(instance.param).rawValue);
                         });

TEST(ActionIDsTest, ThereAreNineteenActions) {
    EXPECT_EQ(ActionID::allCases.size(), 19U);
}

TEST(ActionIDsTest, RawValuesAreMatchedExactly) {
    EXPECT_EQ(ActionID::fromRawValue("Zone1"), std::nullopt);
    EXPECT_EQ(ActionID::fromRawValue(""), std::nullopt);
    EXPECT_EQ(ActionID::fromRawValue("zone1 "), std::nullopt);
    EXPECT_EQ(ActionID::fromRawValue("zone10"), std::nullopt);
}

TEST(ActionIDsTest, TheZoneActionsAreTheFirstNineCases) {
    ASSERT_EQ(ActionID::zoneActions.size(), 9U);
    EXPECT_TRUE(
        std::equal(ActionID::zoneActions.begin(), ActionID::zoneActions.end(), ActionID::allCases.begin()));
    EXPECT_EQ(ActionID::zoneActions.front(), ActionID::zone1);
    EXPECT_EQ(ActionID::zoneActions.back(), ActionID::zone9);
}

TEST(ActionIDsTest, NoTwoDefaultBindingsAreEqual) {
    for (const ActionID one : ActionID::allCases) {
        for (const ActionID other : ActionID::allCases)
            EXPECT_EQ(one.defaultBinding() == other.defaultBinding(), one == other)
                << one.rawValue() << " and " << other.rawValue();
    }
}

TEST(ActionIDsTest, AnActionWorksInASwitch) {
    const ActionID action = ActionID::center;
    bool reached = false;

    switch (action) {
    case ActionID::center:
        reached = true;
        break;
    default:
        break;
    }

    EXPECT_TRUE(reached);
}

} // namespace
} // namespace tessarel
