// SPDX-License-Identifier: MIT

#include "platform/x11/input/mouse.h"
#include "platform/x11/x11_fixture.h"
#include "support/x11/keyboard.h"
#include "support/x11/mouse.h"
#include "support/x11/second_pointer.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace tessarel::x11 {
namespace {

using enum MouseEventKind;
using x11test::Mouse;
using x11test::SecondPointer;

/// A desktop with two master pointers, each over a client's window of its own.
class MouseDevicesTest : public X11Test {
protected:
    MouseDevicesTest() {
        (void)open({.client = {50, 50, 1500, 800}});
        hand.moveTo(1000, 600);
        second.hand().moveTo(300, 300);
        for (const auto kind : {LeftDown, LeftDragged, LeftUp, Cancelled})
            watching.push_back(
                mouse.addGlobalMonitor(kind, [this](const MouseEvent& event) { events.push_back(event); }));
        settle();
    }
    ~MouseDevicesTest() override {
        hand.release();
        second.hand().release();
    }

    [[nodiscard]] std::vector<MouseEventKind> takeKinds() {
        std::vector<MouseEventKind> kinds;
        for (const MouseEvent& event : std::exchange(events, {}))
            kinds.push_back(event.kind);
        return kinds;
    }

    Mouse hand{observer};
    SecondPointer second{desktop.server.display()};
    X11Mouse mouse{connection, monitors, windows, driver.queue()};
    std::vector<MouseEvent> events;
    std::vector<SubscriptionPtr> watching;
};

using Kinds = std::vector<MouseEventKind>;

TEST_F(MouseDevicesTest, TheSecondPointerMovesByItself) {
    second.hand().moveTo(200, 200);
    hand.press();
    settle();

    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events.front().screenLocation, (Point{1000, 300}));
}

TEST_F(MouseDevicesTest, AClickOfAnotherPointerDoesNotEndADrag) {
    hand.press();
    settle();
    hand.moveTo(900, 500);
    second.hand().click();
    settle();
    hand.moveTo(800, 500);
    settle();
    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftDragged, LeftDragged}));

    hand.release();
    settle();

    EXPECT_EQ(takeKinds(), Kinds{LeftUp});
}

TEST_F(MouseDevicesTest, AReleaseOfAnotherPointerDoesNotEndADrag) {
    second.hand().press();
    settle();
    second.hand().release();
    settle();
    ASSERT_EQ(takeKinds(), (Kinds{LeftDown, LeftUp}));

    second.hand().press(Mouse::kRight);
    hand.press();
    settle();
    second.hand().release(Mouse::kRight);
    second.hand().press();
    second.hand().release();
    settle();

    EXPECT_EQ(takeKinds(), Kinds{LeftDown});
}

TEST_F(MouseDevicesTest, AnotherPointerDoesNotMoveADrag) {
    hand.press();
    settle();

    second.hand().moveTo(500, 500);
    second.hand().press();
    second.hand().moveTo(550, 500);
    settle();

    EXPECT_EQ(takeKinds(), Kinds{LeftDown});
}

TEST_F(MouseDevicesTest, AReleaseReadTogetherWithThatOfAnotherPointerEndsTheDragWhereItHappened) {
    hand.press();
    second.hand().press();
    settle();
    events.clear();

    second.hand().moveTo(100, 100);
    hand.moveTo(900, 500);
    second.hand().release();
    hand.release();
    settle();

    EXPECT_EQ(events, (std::vector<MouseEvent>{{LeftDragged, {900, 400}, 0}, {LeftUp, {900, 400}, 0}}));
}

TEST_F(MouseDevicesTest, ASecondPointerDragsByItself) {
    second.hand().press();
    settle();
    second.hand().moveTo(400, 300);
    hand.moveTo(1100, 600);
    settle();
    second.hand().release();
    settle();

    EXPECT_EQ(events, (std::vector<MouseEvent>{
                          {LeftDown, {300, 600}, 0}, {LeftDragged, {400, 600}, 0}, {LeftUp, {400, 600}, 0}}));
}

TEST_F(MouseDevicesTest, APressReadTogetherWithTheEndOfAnotherPointersDragIsReported) {
    hand.press();
    settle();
    hand.release();
    second.hand().press();
    settle();

    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftUp, LeftDown}));
}

TEST_F(MouseDevicesTest, OnlyTheKeyboardOfThePointerCounts) {
    hand.press();
    settle();
    second.hand().hold(XCB_MOD_MASK_SHIFT);
    second.type(x11test::key::kEscape);
    hand.moveTo(900, 500);
    settle();
    second.hand().hold(0);
    EXPECT_EQ(events, (std::vector<MouseEvent>{{LeftDown, {1000, 300}, 0}, {LeftDragged, {900, 400}, 0}}));
    events.clear();

    hand.hold(XCB_MOD_MASK_SHIFT);
    settle();
    hand.hold(0);

    EXPECT_EQ(events, (std::vector<MouseEvent>{{LeftDragged, {900, 400}, kShiftFlag}}));
}

TEST_F(MouseDevicesTest, TheDragOfARemovedPointerIsCancelledAtTheNextPress) {
    second.hand().press();
    settle();
    ASSERT_EQ(takeKinds(), Kinds{LeftDown});

    second.remove();
    hand.press();
    settle();

    EXPECT_EQ(takeKinds(), (Kinds{Cancelled, LeftUp, LeftDown}));
}

} // namespace
} // namespace tessarel::x11
