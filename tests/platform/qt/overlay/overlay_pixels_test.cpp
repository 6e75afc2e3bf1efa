// SPDX-License-Identifier: MIT

#include "platform/qt/overlay/overlay_pixels.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessarel::qt {
namespace {

TEST(OverlayPixelsTest, WholePixelsStayAsTheyAre) {
    EXPECT_EQ(pixels(Rect{-1920, 30, 640, 480}), QRect(-1920, 30, 640, 480));
}

TEST(OverlayPixelsTest, PartlyCoveredPixelsAreIncluded) {
    EXPECT_EQ(pixels(Rect{10.9, -0.1, 1, 1.2}), QRect(10, -1, 2, 3));
}

TEST(OverlayPixelsTest, ANegativeSizeIsNormalised) {
    EXPECT_EQ(pixels(Rect{30, 40, -10, -20}), QRect(20, 20, 10, 20));
}

TEST(OverlayPixelsTest, TheNullRectangleIsEmpty) {
    EXPECT_TRUE(pixels(Rect::null()).isEmpty());
}

TEST(OverlayPixelsTest, HugeRectanglesAreClipped) {
    constexpr double kHuge = std::numeric_limits<double>::max();
    const QRect rect = pixels(Rect{-kHuge / 4, 0, kHuge / 2, kHuge});

    EXPECT_LE(rect.left(), -32768);
    EXPECT_GE(rect.right(), 32767);
    EXPECT_EQ(rect.top(), 0);
}

TEST(OverlayPixelsTest, UnitsCoverTheirPixels) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        for (int start = 0; start < 40; ++start) {
            const QRect wanted(start, 7, 13, 5);
            const QRect covered = pixels(units(wanted, scale), scale);
            EXPECT_TRUE(covered.contains(wanted)) << scale << ' ' << start;
            EXPECT_LE(covered.width(), wanted.width() + 2 * scale + 1) << scale << ' ' << start;
        }
    }
}

} // namespace
} // namespace tessarel::qt
