// SPDX-License-Identifier: MIT

#include "snap/edge_zones.h"

#include <gtest/gtest.h>

#include <vector>

namespace tessarel {
namespace {

/// A screen whose edges are all different: from (100, 200) to (1540, 1100).
constexpr Rect kScreen{100, 200, 1440, 900};
constexpr double kLeft = 100;
constexpr double kTop = 200;
constexpr double kRight = 1540;
constexpr double kBottom = 1100;
constexpr double kMiddleX = 820;
constexpr double kMiddleY = 650;

const std::optional<Zone> kNothing;
const std::optional<Zone> kWhole = Zone{true, 0, 0, 100, 100};
const std::optional<Zone> kLeftHalf = Zone{true, 0, 0, 50, 100};
const std::optional<Zone> kRightHalf = Zone{true, 50, 0, 50, 100};
const std::optional<Zone> kTopLeft = Zone{true, 0, 0, 50, 50};
const std::optional<Zone> kTopRight = Zone{true, 50, 0, 50, 50};
const std::optional<Zone> kBottomLeft = Zone{true, 0, 50, 50, 50};
const std::optional<Zone> kBottomRight = Zone{true, 50, 50, 50, 50};

struct Case {
    Point pointer;
    std::optional<Zone> zone;
};

void expectAll(const std::vector<Case>& cases) {
    for (const Case& one : cases)
        EXPECT_EQ(edgeZone(kScreen, one.pointer), one.zone) << one.pointer.x << ", " << one.pointer.y;
}

TEST(EdgeZonesTest, EachEdgeAndCornerOffersItsZone) {
    expectAll({
        {{kLeft + 40, kTop}, kTopLeft},
        {{kRight - 40, kTop}, kTopRight},
        {{kMiddleX, kTop}, kWhole},
        {{kLeft + 40, kBottom - 1}, kBottomLeft},
        {{kRight - 40, kBottom - 1}, kBottomRight},
        {{kMiddleX, kBottom - 1}, kNothing},
        {{kLeft, kTop + 40}, kTopLeft},
        {{kLeft, kBottom - 40}, kBottomLeft},
        {{kLeft, kMiddleY}, kLeftHalf},
        {{kRight - 1, kTop + 40}, kTopRight},
        {{kRight - 1, kBottom - 40}, kBottomRight},
        {{kRight - 1, kMiddleY}, kRightHalf},
    });
}

TEST(EdgeZonesTest, TheBandsAreSixPointsAtLeftAndTopAndSevenAtRightAndBottom) {
    expectAll({
        {{kLeft + 6, kMiddleY}, kLeftHalf},
        {{kLeft + 6.01, kMiddleY}, kNothing},
        {{kMiddleX, kTop + 6}, kWhole},
        {{kMiddleX, kTop + 6.01}, kNothing},
        {{kRight - 7, kMiddleY}, kRightHalf},
        {{kRight - 7.01, kMiddleY}, kNothing},
        {{kLeft + 40, kBottom - 7}, kBottomLeft},
        {{kLeft + 40, kBottom - 7.01}, kNothing},
    });
}

TEST(EdgeZonesTest, CornersReachEightyPointsAlongEachEdge) {
    expectAll({
        {{kLeft + 80, kTop}, kTopLeft},
        {{kLeft + 80.01, kTop}, kWhole},
        {{kRight - 80, kTop}, kTopRight},
        {{kRight - 80.01, kTop}, kWhole},
        {{kLeft + 80, kBottom}, kBottomLeft},
        {{kLeft + 80.01, kBottom}, kNothing},
        {{kRight - 80, kBottom}, kBottomRight},
        {{kRight - 80.01, kBottom}, kNothing},
        {{kLeft, kTop + 80}, kTopLeft},
        {{kLeft, kTop + 80.01}, kLeftHalf},
        {{kLeft, kBottom - 80}, kBottomLeft},
        {{kLeft, kBottom - 80.01}, kLeftHalf},
        {{kRight, kTop + 80}, kTopRight},
        {{kRight, kTop + 80.01}, kRightHalf},
        {{kRight, kBottom - 80}, kBottomRight},
        {{kRight, kBottom - 80.01}, kRightHalf},
    });
}

TEST(EdgeZonesTest, AwayFromAllEdgesNothingIsOffered) {
    expectAll({{{kMiddleX, kMiddleY}, kNothing},
               {{kLeft + 7, kTop + 7}, kNothing},
               {{kRight - 8, kBottom - 8}, kNothing}});
}

TEST(EdgeZonesTest, OnAScreenSmallerThanItsCornersTheLeftAndTopCornersWin) {
    const Rect narrow{0, 0, 100, 100};

    EXPECT_EQ(edgeZone(narrow, {50, 0}), kTopLeft);
    EXPECT_EQ(edgeZone(narrow, {50, 99}), kBottomLeft);
    EXPECT_EQ(edgeZone(narrow, {99, 50}), kTopRight);
}

} // namespace
} // namespace tessarel
