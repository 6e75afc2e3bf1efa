// SPDX-License-Identifier: MIT

#include "snap/snap_test.h"

#include <gmock/gmock.h>

namespace tessarel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Tests which window a press makes the candidate.
class DragSnapPressTest : public SnapTest {
protected:
    DragSnapPressTest() { mouse.hold(kShift); }

    /// Presses at `local`, measured from the top-left corner of the screen, moves the window and the pointer,
    /// and returns whether the overlay appears. Puts everything back.
    bool startsADrag(const Point& local) {
        moveTo(local);
        mouse.press();
        const Rect frame = desktop.frame(window);
        desktop.drag(window, {frame.x + 50, frame.y, frame.width, frame.height});
        dragTo({local.x + 50, local.y});
        dragTo({local.x + 51, local.y}); // a window that was pressed at its border is read twice
        const bool started = picture.isVisible;
        mouse.hold(0);
        dragTo({local.x + 50, local.y});
        drop();
        mouse.hold(kShift);
        desktop.drag(window, kStart);
        return started;
    }
};

TEST_F(DragSnapPressTest, APressOnTheTitleBarStartsADrag) {
    EXPECT_TRUE(startsADrag({520, 160}));
}

TEST_F(DragSnapPressTest, APressMoreThanSixtyPointsBelowTheTopStartsNoDrag) {
    EXPECT_TRUE(startsADrag({520, 210}));
    EXPECT_FALSE(startsADrag({520, 210.01}));
    EXPECT_FALSE(startsADrag({520, 500}));
    EXPECT_FALSE(startsADrag({520, 629}));
}

TEST_F(DragSnapPressTest, APressOutsideEveryWindowStartsNoDrag) {
    EXPECT_FALSE(startsADrag({520, 149}));
    EXPECT_FALSE(startsADrag({840, 160}));
}

TEST_F(DragSnapPressTest, APressOutsideTheReportedFrameStartsNoDrag) {
    for (const Point& reported : {at(500, 500), at(530, 150), at(-120, 150)}) {
        desktop.window(window).overrides["AXPosition"] = reported;

        moveTo({520, 160});
        mouse.press();
        desktop.window(window).overrides.clear();
        dragTo({600, 160});
        dragTo({601, 160}); // a window that was pressed at its border is read twice

        EXPECT_FALSE(picture.isVisible) << reported.x << ", " << reported.y;
        mouse.release();
        desktop.drag(window, kStart);
    }
}

TEST_F(DragSnapPressTest, APressOnAPartOfAWindowDragsTheWindow) {
    desktop.window(window).partRole = "AXToolbar";

    EXPECT_TRUE(startsADrag({520, 160}));
}

TEST_F(DragSnapPressTest, APressOnAPartWithoutAWindowStartsNoDrag) {
    desktop.window(window).partRole = "AXMenuBar";
    desktop.window(window).overrides["AXWindow"] = std::nullopt;

    EXPECT_FALSE(startsADrag({520, 160}));
}

TEST_F(DragSnapPressTest, APressOnAPartOfAClosedWindowStartsNoDrag) {
    const auto closed = desktop.openWindow("org.example.viewer", at({900, 500, 100, 100}));
    const Element gone = desktop.element(closed);
    desktop.close(closed);
    desktop.window(window).partRole = "AXToolbar";
    desktop.window(window).overrides["AXWindow"] = gone;

    EXPECT_FALSE(startsADrag({520, 160}));
}

TEST_F(DragSnapPressTest, AWindowOfAnIgnoredApplicationIsNeverSnapped) {
    settings.ignoredApps = {"org.example.editor"};

    EXPECT_FALSE(startsADrag({520, 160}));
}

TEST_F(DragSnapPressTest, TheApplicationOfTheWindowDecidesWhetherItIsIgnored) {
    desktop.window(window).bundleIdentifier = "org.example.table";

    settings.ignoredApps = {"org.example.table"};
    EXPECT_FALSE(startsADrag({520, 160}));

    settings.ignoredApps = {"org.example.editor"};
    EXPECT_TRUE(startsADrag({520, 160}));
}

TEST_F(DragSnapPressTest, AWindowThatCannotBeMovedStartsNoDrag) {
    desktop.window(window).fullScreen = true;
    EXPECT_FALSE(startsADrag({520, 160}));
    desktop.window(window).fullScreen = false;

    desktop.window(window).overrides["AXMinimized"] = true;
    EXPECT_FALSE(startsADrag({520, 160}));
}

TEST_F(DragSnapPressTest, AWindowWithoutAReadableFrameStartsNoDrag) {
    desktop.window(window).overrides["AXSize"] = std::nullopt;

    moveTo({520, 160});
    mouse.press();
    desktop.window(window).overrides.clear();
    dragTo({600, 160});

    EXPECT_FALSE(picture.isVisible);
}

TEST_F(DragSnapPressTest, ThisProgramsOwnWindowIsNeverSnapped) {
    window = desktop.openOwnWindow(kStart);
    (void)desktop.takeRequests();

    EXPECT_FALSE(startsADrag({520, 160}));
    EXPECT_THAT(desktop.takeRequests(), IsEmpty());
}

TEST_F(DragSnapPressTest, WhileSwitchedOffPausedOrUntrustedNoRequestIsSent) {
    settings.dragEnabled = false;
    EXPECT_FALSE(startsADrag({520, 160}));
    settings.dragEnabled = true;

    runtime.paused = true;
    EXPECT_FALSE(startsADrag({520, 160}));
    runtime.paused = false;

    desktop.trust().trusted = false;
    EXPECT_FALSE(startsADrag({520, 160}));
    EXPECT_EQ(desktop.trust().prompts, 0);
    EXPECT_THAT(desktop.takeRequests(), IsEmpty());

    desktop.trust().trusted = true;
    EXPECT_TRUE(startsADrag({520, 160}));
}

TEST_F(DragSnapPressTest, APressSendsItsRequestsInOrderAndWithATimeLimit) {
    moveTo({520, 160});

    mouse.press();

    EXPECT_THAT(desktop.takeRequests(),
                ElementsAre("limit desktop 250", "find -920,-440", "read window 1 AXRole",
                            "limit window 1 250", "read window 1 AXRole", "read window 1 AXMinimized",
                            "read window 1 AXFullScreen", "read window 1 AXPosition",
                            "read window 1 AXSize"));
}

TEST_F(DragSnapPressTest, AnUnresponsiveProgramDelaysThePressByAQuarterOfASecond) {
    desktop.applicationOf(window).answerTime = sim::SimApplication::kTimeLimit;
    moveTo({520, 160});
    const auto before = desktop.mainQueue().now();

    mouse.press();

    EXPECT_EQ(desktop.mainQueue().now() - before, 250ms);
}

TEST_F(DragSnapPressTest, AnotherPressStartsOver) {
    const auto other = desktop.openWindow("org.example.viewer", at({900, 150, 400, 300}));
    grab(window);
    dragTo({600, 300});
    ASSERT_TRUE(picture.isVisible);

    grab(other, {50, 10});

    EXPECT_FALSE(picture.isVisible);
    dragTo({960, 200});
    drop();
    EXPECT_EQ(desktop.frame(other), kRight);
    EXPECT_NE(desktop.frame(window), kRight);
}

} // namespace
} // namespace tessarel
