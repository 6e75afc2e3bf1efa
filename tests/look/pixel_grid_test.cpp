// SPDX-License-Identifier: MIT

#include "look/pixel_grid.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tessarel {
namespace {

PixelGrid gridAt(double scale, double dx = 0, double dy = 0) {
    return PixelGrid(QTransform(scale, 0, 0, scale, dx, dy));
}

bool isWhole(double value) {
    return std::abs(value - std::round(value)) < 1e-9;
}

TEST(PixelGridTest, ALineOfOnePixelRunsThroughTheCentreOfAPixel) {
    EXPECT_EQ(gridAt(1).lineX(0.5, 1), 0.5);
    EXPECT_EQ(gridAt(1).lineX(125, 0.5), 125.5);
    EXPECT_EQ(gridAt(1).lineY(166.67, 1.2), 166.5);
}

TEST(PixelGridTest, ALineOfTwoPixelsRunsBetweenPixels) {
    EXPECT_EQ(gridAt(2).lineX(0.5, 1), 0.5);
    EXPECT_EQ(gridAt(2).lineX(166.67, 1.2), 166.5);
    EXPECT_EQ(gridAt(2).lineX(166.8, 1.2), 167);
}

TEST(PixelGridTest, LinesOfWholeWidthCoverWholePixelsAtEveryScale) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        const PixelGrid grid = gridAt(scale, 7.25, 3.5);
        for (const double width : {0.5, 1.0, 1.2, 1.5, 2.5}) {
            const double whole = grid.wholeWidth(width);
            EXPECT_TRUE(isWhole(whole * scale)) << scale << ' ' << width;
            EXPECT_GE(whole * scale, 1);
            for (double at = 0; at < 10; at += 0.3) {
                EXPECT_TRUE(isWhole((grid.lineX(at, width) - whole / 2) * scale + 7.25));
                EXPECT_TRUE(isWhole((grid.lineY(at, width) - whole / 2) * scale + 3.5));
            }
        }
    }
}

TEST(PixelGridTest, HalvesAreRoundedUpOnBothSidesOfZero) {
    for (int at = -3; at <= 3; ++at) {
        EXPECT_EQ(gridAt(1).lineX(at, 1), at + 0.5) << "midway between the middles of two pixels";
        EXPECT_EQ(gridAt(1).lineY(at + 0.5, 2), at + 1) << "midway between two pixels";
    }
}

TEST(PixelGridTest, AWidthIsRoundedToWholePixelsAndIsAtLeastOne) {
    EXPECT_EQ(gridAt(1).wholeWidth(0), 1);
    EXPECT_EQ(gridAt(1).wholeWidth(1.49), 1);
    EXPECT_EQ(gridAt(1).wholeWidth(1.5), 2);
    EXPECT_EQ(gridAt(2).wholeWidth(0.2), 0.5);
    EXPECT_EQ(gridAt(2).wholeWidth(1.2), 1);
}

TEST(PixelGridTest, NothingMovesByMoreThanHalfAPixel) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        for (double at = -3; at < 10; at += 0.07) {
            EXPECT_LE(std::abs(gridAt(scale, 0.3).lineX(at, 1) - at) * scale, 0.5 + 1e-9);
        }
    }
}

TEST(PixelGridTest, WidthsAreRoundedToWholePixelsAtFractionalScalesOnly) {
    EXPECT_EQ(gridAt(1).sharpWidth(1.2), 1.2);
    EXPECT_EQ(gridAt(2).sharpWidth(2.5), 2.5);
    EXPECT_EQ(gridAt(1.5).sharpWidth(1.2), 2 / 1.5);
    EXPECT_EQ(gridAt(1.25).sharpWidth(0.1), 1 / 1.25);
}

TEST(PixelGridTest, TheInsideOfARectangleIsTheWholePixelsInIt) {
    EXPECT_EQ(gridAt(1).inside({1, 2, 3, 4}), QRectF(1, 2, 3, 4));
    EXPECT_EQ(gridAt(1).inside({1.2, 2.2, 3, 4}), QRectF(2, 3, 2, 3));
    const QRectF inside = gridAt(1.5, 0.5, 0.25).inside({1, 1, 4, 4});
    EXPECT_TRUE(isWhole(inside.left() * 1.5 + 0.5));
    EXPECT_TRUE(isWhole(inside.right() * 1.5 + 0.5));
    EXPECT_TRUE(isWhole(inside.top() * 1.5 + 0.25));
    EXPECT_TRUE(isWhole(inside.bottom() * 1.5 + 0.25));
    EXPECT_TRUE(QRectF(1, 1, 4, 4).contains(inside));
    EXPECT_GT(inside.width() * 1.5, 4);
}

} // namespace
} // namespace tessarel
