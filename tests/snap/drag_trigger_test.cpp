// SPDX-License-Identifier: MIT

#include "snap/snap_test.h"

#include <gmock/gmock.h>

namespace tessarel {
namespace {

using ::testing::IsEmpty;

/// Tests pressing and releasing the trigger in the middle of a drag.
class DragTriggerTest : public SnapTest {};

TEST_F(DragTriggerTest, ReleasingTheTriggerBeforeTheButtonLeavesTheWindow) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    mouse.hold(0);
    dragTo({1001, 500});
    EXPECT_FALSE(picture.isVisible);
    const Rect dropped = desktop.frame(window);

    drop();

    EXPECT_EQ(desktop.frame(window), dropped);
    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_THAT(desktop.takeWrites(), IsEmpty());
}

TEST_F(DragTriggerTest, ReleasingTheTriggerUnderARestingPointerLeavesTheWindow) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    const Rect dropped = desktop.frame(window);

    mouse.hold(0);
    EXPECT_FALSE(picture.isVisible);
    drop();

    EXPECT_EQ(desktop.frame(window), dropped);
    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_THAT(desktop.takeWrites(), IsEmpty());
}

TEST_F(DragTriggerTest, ReleasingTheTriggerAfterTheButtonStillSnaps) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    mouse.release();
    mouse.hold(0);
    desktop.advance(30ms);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragTriggerTest, PressingTheTriggerUnderARestingPointerShowsTheZonesAndSnaps) {
    grab(window);
    dragTo({1000, 500});
    EXPECT_FALSE(picture.isVisible);

    mouse.hold(kShift);
    EXPECT_EQ(labels(), "1[2]");
    drop();

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragTriggerTest, TheTriggerAloneDoesNotShowZonesForAWindowThatHasNotMoved) {
    grab(window);
    desktop.advance(30ms);
    mouse.hold(kShift);

    EXPECT_FALSE(picture.isVisible);
}

TEST_F(DragTriggerTest, TheTriggerMayBePressedInTheMiddleOfADrag) {
    grab(window);
    dragTo({1000, 500});
    EXPECT_FALSE(picture.isVisible);

    mouse.hold(kShift);
    dragTo({1001, 500});

    EXPECT_EQ(labels(), "1[2]");
}

} // namespace
} // namespace tessarel
