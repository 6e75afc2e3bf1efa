// SPDX-License-Identifier: MIT

#include "ports/desktop/rect.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tessarel {
namespace {

TEST(RectTest, EdgesOfANegativeSizeAreNormalized) {
    const Rect reversed{100, 50, -30, -20};

    EXPECT_EQ(reversed.minX(), 70);
    EXPECT_EQ(reversed.minY(), 30);
    EXPECT_EQ(reversed.maxX(), 100);
    EXPECT_EQ(reversed.maxY(), 50);
    EXPECT_EQ(reversed.midX(), 85);
    EXPECT_EQ(reversed.midY(), 40);
    EXPECT_EQ(reversed.absWidth(), 30);
    EXPECT_EQ(reversed.absHeight(), 20);
}

TEST(RectTest, ContainsItsMinimumEdgesAndNotItsMaximumEdges) {
    const Rect rect{10, 20, 30, 40};

    EXPECT_TRUE(rect.contains({10, 20}));
    EXPECT_TRUE(rect.contains({39.9, 59.9}));
    EXPECT_FALSE(rect.contains({40, 30}));
    EXPECT_FALSE(rect.contains({20, 60}));
    EXPECT_FALSE(rect.contains({9.9, 30}));
    EXPECT_FALSE(rect.contains({20, 19.9}));
    EXPECT_TRUE((Rect{40, 60, -30, -40}.contains({10, 20})));
    EXPECT_FALSE((Rect{40, 60, -30, -40}.contains({40, 30})));
    EXPECT_FALSE(Rect::null().contains({0, 0}));
}

TEST(RectTest, IntersectionIsTheCommonArea) {
    const Rect rect{0, 0, 100, 100};

    EXPECT_EQ(rect.intersection({50, 60, 100, 100}), (Rect{50, 60, 50, 40}));
    EXPECT_EQ(rect.intersection({150, 160, -100, -100}), (Rect{50, 60, 50, 40}));
    EXPECT_EQ(rect.intersection({10, 10, 5, 5}), (Rect{10, 10, 5, 5}));
}

TEST(RectTest, IntersectionOfDisjointRectanglesIsNull) {
    const Rect rect{0, 0, 100, 100};

    EXPECT_TRUE(rect.intersection({100.5, 0, 10, 10}).isNull());
    EXPECT_TRUE(rect.intersection({-20, 0, 10, 10}).isNull());
    EXPECT_TRUE(rect.intersection({0, -20, 10, 10}).isNull());
    EXPECT_TRUE(rect.intersection({0, 100.5, 10, 10}).isNull());
    EXPECT_TRUE(rect.intersection(Rect::null()).isNull());
    EXPECT_TRUE(Rect::null().intersection(rect).isNull());
}

TEST(RectTest, TouchingRectanglesIntersectInARectangleOfZeroWidthOrHeight) {
    const Rect rect{0, 0, 100, 100};

    EXPECT_EQ(rect.intersection({100, 0, 50, 100}), (Rect{100, 0, 0, 100}));
    EXPECT_EQ(rect.intersection({-50, 0, 50, 100}), (Rect{0, 0, 0, 100}));
    EXPECT_EQ(rect.intersection({0, 100, 100, 50}), (Rect{0, 100, 100, 0}));
    EXPECT_EQ(rect.intersection({0, -50, 100, 50}), (Rect{0, 0, 100, 0}));
}

TEST(RectTest, InsetMovesEveryEdge) {
    const Rect rect{10, 20, 100, 80};

    EXPECT_EQ(rect.inset(5, 10), (Rect{15, 30, 90, 60}));
    EXPECT_EQ(rect.inset(-5, -10), (Rect{5, 10, 110, 100}));
    EXPECT_EQ(rect.inset(50, 40), (Rect{60, 60, 0, 0}));
    EXPECT_EQ((Rect{110, 100, -100, -80}.inset(5, 10)), (Rect{15, 30, 90, 60}));
}

TEST(RectTest, AnInsetToANegativeSizeIsNull) {
    const Rect rect{10, 20, 100, 80};

    EXPECT_TRUE(rect.inset(50.5, 0).isNull());
    EXPECT_TRUE(rect.inset(0, 40.5).isNull());
    EXPECT_FALSE(rect.inset(50, 40).isNull()) << "a size of exactly zero is not null";
    EXPECT_TRUE(Rect::null().inset(-10, -10).isNull());
}

TEST(RectTest, TheNullRectangleHasAnInfiniteOriginAndNoSize) {
    const Rect null = Rect::null();

    EXPECT_TRUE(std::isinf(null.x));
    EXPECT_TRUE(std::isinf(null.y));
    EXPECT_EQ(null.size(), (Size{0, 0}));
    EXPECT_TRUE(null.isNull());
}

TEST(RectTest, AnOriginWithOneCoordinateAtPositiveInfinityIsNull) {
    EXPECT_TRUE((Rect{HUGE_VAL, 0, 10, 10}.isNull()));
    EXPECT_TRUE((Rect{0, HUGE_VAL, 10, 10}.isNull()));
    EXPECT_FALSE((Rect{-HUGE_VAL, -HUGE_VAL, 10, 10}.isNull()));
    EXPECT_FALSE((Rect{0, 0, 0, 0}.isNull()));
}

TEST(RectTest, ARectangleIsFiniteIfAllFourNumbersAre) {
    const double infinity = HUGE_VAL;

    EXPECT_TRUE((Rect{-1, 2, -3, 4}.isFinite()));
    for (const Rect& rect : {Rect{infinity, 0, 1, 1}, Rect{0, -infinity, 1, 1}, Rect{0, 0, NAN, 1},
                             Rect{0, 0, 1, infinity}, Rect::null()})
        EXPECT_FALSE(rect.isFinite());
    EXPECT_FALSE((Point{0, infinity}.isFinite()));
    EXPECT_FALSE((Size{NAN, 0}.isFinite()));
}

} // namespace
} // namespace tessarel
