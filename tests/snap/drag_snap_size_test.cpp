// SPDX-License-Identifier: MIT

#include "snap/snap_test.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace tessarel {
namespace {

/// Frames of the window during a drag, by what the user does.
using Frames = std::vector<Rect>;

/// Presses and drags that change the size of the window.
class DragSnapSizeTest : public SnapTest {};

TEST_F(DragSnapSizeTest, AWindowResizedByItsTopEdgeShowsNoOverlay) {
    mouse.hold(kShift);
    grab(window, {320, 2});
    dragTo({520, 100});
    dragTo({520, 90});

    EXPECT_EQ(picture.windows, 0);
    drop();
    EXPECT_EQ(desktop.frame(window), at({200, 88, 640, 542}));
}

TEST_F(DragSnapSizeTest, AWindowWhoseBorderIsDraggedShowsNoOverlay) {
    mouse.hold(kShift);
    const Rect& s = kStart;
    const std::vector<std::pair<Point, Rect>> resizes{
        {{2, 30}, {s.x - 100, s.y, s.width + 100, s.height}},
        {{2, 30}, {s.x + 100, s.y, s.width - 100, s.height}},
        {{2, 30}, {s.x - 99, s.y, s.width + 100, s.height}}, // rounded
        {{638, 30}, {s.x, s.y, s.width + 100, s.height}},
        {{320, 5}, {s.x, s.y - 50, s.width, s.height + 50}},
        {{320, 5}, {s.x, s.y + 50, s.width, s.height - 50}},
        {{2, 5}, {s.x - 100, s.y - 50, s.width + 100, s.height + 50}},
        {{2, 5}, {s.x + 100, s.y + 50, s.width - 100, s.height - 50}},
        {{320, 15}, {s.x, s.y + 50, s.width, s.height - 50}}, // a thick border
    };
    for (const auto& [grip, resized] : resizes) {
        grab(window, grip);
        desktop.drag(window, resized);
        desktop.advance(30ms);
        mouse.hold(0);
        mouse.hold(kShift); // reported as movements, under a resting pointer
        desktop.advance(30ms);

        EXPECT_FALSE(picture.isVisible) << testing::PrintToString(resized);
        mouse.loseRelease();
        desktop.drag(window, s);
    }
}

TEST_F(DragSnapSizeTest, AWindowThatIsPulledOutOfItsPlaceAndGrowsIsDraggedOnceItGoesOn) {
    mouse.hold(kShift);
    grab(window);
    desktop.drag(window, {kStart.x - 80, kStart.y + 50, 800, 600});
    dragTo({600, 300});
    EXPECT_FALSE(picture.isVisible);

    dragTo({610, 300});

    EXPECT_TRUE(picture.isVisible);
}

TEST_F(DragSnapSizeTest, AWindowThatIsPulledOutOfItsPlaceIsDraggedThoughItsSizeChanges) {
    const Rect visible = geo.axVisible(screen);
    mouse.hold(kShift);
    for (const Point& way : {Point{400, 75}, Point{0, 50}}) {
        for (const Point& grip : {Point{700, 20}, Point{700, 5}}) {
            desktop.drag(window, visible);
            grab(window, grip);
            desktop.drag(window, {visible.x, visible.y, 640, 480});
            desktop.advance(30ms);

            mouse.moveTo({visible.x + grip.x + way.x, visible.y + grip.y + way.y});
            desktop.advance(30ms); // at its border it is read twice

            EXPECT_TRUE(picture.isVisible) << way.x << " " << grip.y;
            mouse.cancel();
            mouse.release();
        }
    }
}

TEST_F(DragSnapSizeTest, ADoubleClickThatChangesTheSizeIsNoDrag) {
    mouse.hold(kShift);
    for (const Rect& changed : Frames{geo.axVisible(screen), {-1000, -300, 320, 240}}) {
        grab(window);
        desktop.drag(window, changed);
        desktop.advance(30ms);
        mouse.hold(0);
        mouse.hold(kShift);

        EXPECT_FALSE(picture.isVisible) << testing::PrintToString(changed);
        mouse.loseRelease();
        desktop.drag(window, kStart);
    }
}

TEST_F(DragSnapSizeTest, AWindowThatHasBeenResizedIsDraggedOnceItMovesInItsOwnSize) {
    mouse.hold(kShift);
    grab(window, {320, 15});
    desktop.drag(window, {kStart.x, kStart.y + 50, kStart.width, kStart.height - 50});
    dragTo({520, 215});
    ASSERT_FALSE(picture.isVisible);
    desktop.drag(window, kStart);

    dragTo({600, 300});

    EXPECT_TRUE(picture.isVisible);
}

TEST_F(DragSnapSizeTest, AWindowThatADoubleClickHasShrunkIsDraggedOnceThePointerMoves) {
    mouse.hold(kShift);
    grab(window);
    desktop.drag(window, {-1000, -300, 320, 240});
    desktop.advance(30ms);
    mouse.hold(0);
    mouse.hold(kShift);
    ASSERT_FALSE(picture.isVisible);

    dragTo({600, 300});

    EXPECT_TRUE(picture.isVisible);
}

TEST_F(DragSnapSizeTest, AWindowPressedAtItsBorderIsDraggedOnceItKeepsItsSize) {
    for (const Point& grip : {Point{7, 30}, Point{632, 30}, Point{300, 7}}) {
        mouse.hold(kShift);
        grab(window, grip);
        dragTo({600, 300});
        EXPECT_FALSE(picture.isVisible) << grip.x << " " << grip.y;

        dragTo({601, 300});
        EXPECT_TRUE(picture.isVisible) << grip.x << " " << grip.y;

        mouse.cancel();
        mouse.release();
    }
}

TEST_F(DragSnapSizeTest, AWindowPressedAtItsBorderIsDraggedThoughThePointerRests) {
    mouse.hold(kShift);
    grab(window, {300, 7});
    dragTo({600, 300});

    desktop.advance(29ms);
    EXPECT_FALSE(picture.isVisible);
    desktop.advance(1ms);

    EXPECT_TRUE(picture.isVisible);
    EXPECT_EQ(shown(), (std::vector<Rect>{kLeftShown, kRightShown}));
}

TEST_F(DragSnapSizeTest, AWindowPressedAwayFromItsBorderIsDraggedAtTheFirstMove) {
    mouse.hold(kShift);
    grab(window, {9, 9});

    dragTo({600, 300});

    EXPECT_TRUE(picture.isVisible);
}

TEST_F(DragSnapSizeTest, AWindowThatMovesBeforeItIsResizedShowsNoOverlay) {
    mouse.hold(kShift);
    grab(window, {2, 30});
    for (int step = 1; step <= 5; ++step) {
        const double dx = 20.0 * step;
        dragTo({202 + dx, 180}); // the window has moved and will be resized
        EXPECT_FALSE(picture.isVisible) << step;
        desktop.drag(window, {kStart.x + dx, kStart.y, kStart.width - dx, kStart.height});
        dragTo({203 + dx, 180});
        EXPECT_FALSE(picture.isVisible) << step;
    }
}

TEST_F(DragSnapSizeTest, AWindowWhoseFrameIsResizedFirstShowsNoOverlayHoweverLateItFollows) {
    auto& excess = desktop.window(window).overrides[std::string(attribute::kFrameExcess)];
    excess = Size{20, 20};
    mouse.hold(kShift);
    grab(window, {320, 5});
    excess = Size{20, 70};
    desktop.drag(window, {kStart.x, kStart.y - 50, kStart.width, kStart.height});
    for (int step = 1; step <= 5; ++step) {
        mouse.moveTo({kStart.x + 320 + step, kStart.y - 45});
        desktop.advance(30ms);
        EXPECT_FALSE(picture.isVisible) << step;
    }

    excess = Size{20, 20}; // the window has only been moved after all
    desktop.advance(30ms);

    EXPECT_TRUE(picture.isVisible);
}

TEST_F(DragSnapSizeTest, AMaximizedWindowHasNoFrameToCompare) {
    auto& excess = desktop.window(window).overrides[std::string(attribute::kFrameExcess)];
    mouse.hold(kShift);
    grab(window, {320, 5});
    excess = Size{20, 20};
    desktop.drag(window, {kStart.x + 10, kStart.y + 50, 320, 240});
    mouse.moveTo({kStart.x + 330, kStart.y + 55});

    desktop.advance(30ms);

    EXPECT_TRUE(picture.isVisible);
}

} // namespace
} // namespace tessarel
