// SPDX-License-Identifier: MIT

#include "snap/overlay_view.h"

#include "engine/engine_test.h"

#include <limits>

namespace tessarel {
namespace {

OverlayFigure drawn(const OverlayItem& item, const Point& origin = {}) {
    return OverlayView{origin, {item}}.draw().at(0);
}

TEST(OverlayViewTest, APlainZoneIsPaintedInThePlainStyle) {
    const OverlayFigure figure = drawn({{0, 25, 720, 875}, false, "1"});

    EXPECT_EQ(figure.bounds, (Rect{0, 25, 720, 875}));
    EXPECT_EQ(figure.shape, (Rect{2, 27, 716, 871}));
    EXPECT_EQ(figure.cornerRadius, 10);
    EXPECT_EQ(figure.fillAlpha, 0.1);
    EXPECT_EQ(figure.strokeAlpha, 0.45);
    EXPECT_EQ(figure.strokeWidth, 1.5);
    EXPECT_EQ(figure.label, (OverlayLabel{"1", {360, 462.5}, 28, 600, 0.6}));
    EXPECT_FALSE(figure.highlighted);
}

TEST(OverlayViewTest, AHighlightedZoneIsPaintedInTheHighlightedStyle) {
    const OverlayFigure figure = drawn({{0, 25, 720, 875}, true, "2"});

    EXPECT_EQ(figure.shape, (Rect{2, 27, 716, 871}));
    EXPECT_EQ(figure.cornerRadius, 10);
    EXPECT_EQ(figure.fillAlpha, 0.35);
    EXPECT_EQ(figure.strokeAlpha, 0.95);
    EXPECT_EQ(figure.strokeWidth, 3);
    EXPECT_EQ(figure.label, (OverlayLabel{"2", {360, 462.5}, 28, 600, 0.95}));
    EXPECT_TRUE(figure.highlighted);
}

TEST(OverlayViewTest, WithoutItemsNothingIsPainted) {
    EXPECT_TRUE(OverlayView{}.draw().empty());
}

TEST(OverlayViewTest, TwoItemsWithTheSameRectangleAreBothPaintedInOrder) {
    const Rect rect{100, 100, 300, 200};

    const auto figures = OverlayView{{}, {{rect, true, "1"}, {rect, false, "2"}}}.draw();

    ASSERT_EQ(figures.size(), 2U);
    EXPECT_EQ(figures[0].label.text, "1");
    EXPECT_EQ(figures[1].label.text, "2");
    EXPECT_EQ(figures[0].shape, figures[1].shape);
}

TEST(OverlayViewTest, AnItemWithoutALabelIsPainted) {
    const OverlayFigure figure = drawn({{0, 0, 100, 100}, false, ""});

    EXPECT_EQ(figure.label.text, "");
    EXPECT_EQ(figure.shape, (Rect{2, 2, 96, 96}));
}

TEST(OverlayViewTest, NothingIsClampedToTheScreen) {
    EXPECT_EQ(drawn({{-50, 800, 3000, 3000}, false, ""}).bounds, (Rect{-50, 800, 3000, 3000}));
}

TEST(OverlayViewTest, OnAScreenAboveAndLeftOfThePrimaryOneLocalRectanglesStartAtZero) {
    const OverlayFigure figure = drawn({{-1920, -1080, 960, 1080}, false, "1"}, {-1920, -1080});

    EXPECT_EQ(figure.bounds, (Rect{0, 0, 960, 1080}));
    EXPECT_EQ(figure.shape, (Rect{2, 2, 956, 1076}));
    EXPECT_EQ(figure.label.center, (Point{480, 540}));
}

TEST(OverlayViewTest, FractionsOfPointsAreKept) {
    EXPECT_EQ(drawn({{10.25, 20.5, 100.75, 50.5}, false, ""}, {0.25, 0.5}).bounds,
              (Rect{10, 20, 100.75, 50.5}));
}

TEST(OverlayViewTest, ARectangleTooSmallForItsInsetIsOnlyLabelled) {
    const OverlayFigure figure = drawn({{0, 0, 3, 100}, false, "1"});

    EXPECT_TRUE(figure.shape.isNull());
    EXPECT_EQ(figure.label.center, (Point{1.5, 50}));
}

TEST(OverlayViewTest, ARectangleThatIsNotFiniteIsLeftOut) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
    const OverlayItem whole{{0, 0, 100, 100}, false, "4"};

    const auto figures = OverlayView{
        {},
        {{{kInfinity, 0, 40, 40}, false, "1"},
         {{0, kNotANumber, 40, 40}, false, "2"},
         {{0, 0, kInfinity, 40}, false, "3"},
         {{0, 0, 40, kInfinity}, false, "3"},
         whole}}.draw();

    ASSERT_EQ(figures.size(), 1U);
    EXPECT_EQ(figures[0].label.text, "4");
}

} // namespace
} // namespace tessarel
