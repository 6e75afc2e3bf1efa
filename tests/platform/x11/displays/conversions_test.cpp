// SPDX-License-Identifier: MIT

#include "platform/x11/displays/conversions.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessarel::x11 {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(ConversionsTest, AccessibilityCoordinatesStartAtThePrimaryMonitor) {
    EXPECT_EQ(axFromRoot({1500, 40, 300, 200}, {1440, 0}), (Rect{60, 40, 300, 200}));
    EXPECT_EQ(rootFromAx(Point{60, 40}, {1440, 0}), (Point{1500, 40}));
}

TEST(ConversionsTest, ScreenCoordinatesRiseFromTheBottomOfThePrimaryMonitor) {
    const Rect primary{1440, 100, 1120, 800};

    EXPECT_EQ(screenFromRoot(primary, primary), (Rect{0, 0, 1120, 800}));
    EXPECT_EQ(screenFromRoot({0, 0, 1440, 900}, primary), (Rect{-1440, 0, 1440, 900}));
    EXPECT_EQ(screenFromRoot({1440, 900, 10, 24}, primary), (Rect{0, -24, 10, 24}));
}

TEST(ConversionsTest, ConvertingToScreenCoordinatesAndBackKeepsTheFrame) {
    const Rect primary{1440, 100, 1120, 800};

    for (const Rect& root : {primary, Rect{0, 0, 1440, 900}, Rect{1440, 900, 10, 24}})
        EXPECT_EQ(rootFromScreen(screenFromRoot(root, primary), primary), root);
}

TEST(ConversionsTest, FractionsAreRoundedHalvesAwayFromZero) {
    EXPECT_EQ(rootFromAx(Point{10.5, -10.5}, {}), (Point{11, -11}));
    EXPECT_EQ(rootFromAx(Point{10.4, -10.4}, {}), (Point{10, -10}));
    EXPECT_EQ(rootFromAx(Size{99.5, 0.4}), (Size{100, 0}));
}

TEST(ConversionsTest, PositionsOutsideTheProtocolsRangeAreRejected) {
    EXPECT_TRUE(rootFromAx(Point{32767, -32768}, {}));
    EXPECT_FALSE(rootFromAx(Point{32768, 0}, {}));
    EXPECT_FALSE(rootFromAx(Point{0, -32769}, {}));
    EXPECT_FALSE(rootFromAx(Point{32767, 0}, {1, 0})) << "relative to the primary monitor";
}

TEST(ConversionsTest, SizesOutsideTheProtocolsRangeAreRejected) {
    EXPECT_TRUE(rootFromAx(Size{0, 65535}));
    EXPECT_FALSE(rootFromAx(Size{65536, 10}));
    EXPECT_FALSE(rootFromAx(Size{10, -1}));
}

TEST(ConversionsTest, NonFiniteValuesAreRejected) {
    for (const double bad : {kInfinity, -kInfinity, kNotANumber}) {
        EXPECT_FALSE(rootFromAx(Point{bad, 0}, {}));
        EXPECT_FALSE(rootFromAx(Point{0, bad}, {}));
        EXPECT_FALSE(rootFromAx(Size{bad, 10}));
        EXPECT_FALSE(rootFromAx(Size{10, bad}));
    }
}

} // namespace
} // namespace tessarel::x11
