// SPDX-License-Identifier: MIT

#include "desktop/drag_fixture.h"
#include "support/x11/second_pointer.h"

#include <csignal>

namespace tessarel::x11test {
namespace {

/// Faults in the middle of a drag, after which neither the overlay nor a grab may remain.
class DragFaultsTest : public DragFixture {};

TEST_P(DragFaultsTest, NoOverlayIsShownWhileAScreenLockerGrabsTheInput) {
    const xcb_window_t window = desktop.open(client);
    dragOver(window, zoneFrame(2));
    TestClient locker{desktop.server()};
    drag.release();

    ASSERT_TRUE(desktop.observer().waitUntil([&] { return locker.grabMouse() && locker.grabKeyboard(); }));
    EXPECT_TRUE(drag.waitUntilNoOverlay());
    drag.press(800, 400);
    drag.moveTo(900, 500);
    drag.release();
    EXPECT_TRUE(drag.staysWithoutOverlay());
    locker.ungrabMouse();
    locker.ungrabKeyboard();

    expectNextDragWorks();
}

TEST_P(DragFaultsTest, AReleaseHiddenByAnotherClientsGrabEndsTheDrag) {
    dragOver(desktop.open(client), zoneFrame(2));
    constexpr Combination kEnd{key::kReturn,
                               0}; // ends the window manager's grab while the button stays pressed
    desktop.press(kEnd);
    TestClient locker{desktop.server()};
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return locker.grabMouse() && locker.grabKeyboard(); }));
    ASSERT_TRUE(drag.overlay());

    drag.release();

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    locker.ungrabMouse();
    locker.ungrabKeyboard();
    expectNextDragWorks();
}

TEST_P(DragFaultsTest, AReleaseDuringAServerGrabEndsTheDragAfterTheServerIsUngrabbed) {
    const xcb_window_t window = desktop.open(client);
    dragOver(window, zoneFrame(2));
    XConnection& holder = desktop.observer().x(); // its grab blocks other clients
    xcb_grab_server(holder.get());
    Mouse(desktop.observer()).release();
    const bool staysMeanwhile = drag.overlay().has_value();

    xcb_ungrab_server(holder.get());
    holder.roundTrip();

    EXPECT_TRUE(staysMeanwhile);
    EXPECT_TRUE(drag.waitUntilNoOverlay());
    EXPECT_EQ(desktop.settledFrame(window, zoneFrame(2)), zoneFrame(2));
    expectNextDragWorks();
}

TEST_P(DragFaultsTest, AStuckTriggerKeyShowsNoOverlayAfterTheDrag) {
    const xcb_window_t window = desktop.open(client);
    dragOver(window, zoneFrame(2));

    drag.release();
    EXPECT_TRUE(drag.waitUntilNoOverlay());
    drag.moveTo(300, 300);
    EXPECT_TRUE(drag.staysWithoutOverlay());

    EXPECT_EQ(desktop.settledFrame(window, zoneFrame(2)), zoneFrame(2));
    expectNextDragWorks();
}

TEST_P(DragFaultsTest, TheVirtualDesktopCanBeSwitchedDuringADrag) {
    const xcb_window_t window = desktop.open(client);
    dragOver(window, zoneFrame(2));
    const auto switchTo = [this](std::uint32_t number) {
        desktop.observer().sendToRoot(desktop.observer().root(), "_NET_CURRENT_DESKTOP", {number});
        return desktop.observer().waitUntil([&] {
            return desktop.observer().values(desktop.observer().root(), "_NET_CURRENT_DESKTOP").at(0) ==
                   number;
        });
    };
    ASSERT_TRUE(switchTo(1));

    drag.release();

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    ASSERT_TRUE(switchTo(0));
    expectNextDragWorks();
}

TEST_P(DragFaultsTest, ASecondMasterPointerNeitherEndsNorTakesADrag) {
    const xcb_window_t window = desktop.open(client);
    SecondPointer second(desktop.server().display());
    dragOver(window, zoneFrame(2));

    second.hand().moveTo(zoneFrame(5).x + 20, zoneFrame(5).y + 20);
    second.hand().click();
    second.type(key::kEscape);
    second.hand().press();
    second.hand().moveTo(zoneFrame(4).x + 20, zoneFrame(4).y + 20);
    // The window manager may process nothing while the second pointer has its frame grabbed, too.
    EXPECT_TRUE(drag.waitForOverlay(desktop.usableArea()));
    drag.release();

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    EXPECT_EQ(desktop.settledFrame(window, zoneFrame(2)), zoneFrame(2));
    second.hand().release();
    expectNextDragWorks();
}

TEST_P(DragFaultsTest, AReleaseSeenOnlyAfterTheNextPressStillEndsTheDrag) {
    const xcb_window_t window = desktop.open(client);
    dragOver(window, zoneFrame(2));
    const ChildProcess& program = desktop.program().process();

    program.signal(SIGSTOP);
    drag.release();
    drag.click();
    program.signal(SIGCONT);

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    EXPECT_EQ(desktop.settledFrame(window, zoneFrame(2)), zoneFrame(2));
    expectNextDragWorks();
}

INSTANTIATE_TEST_SUITE_P(One, DragFaultsTest, testing::Values(WindowManagerKind::Openbox), managerName);

/// Faults that change the desktop for good, so each test has a desktop of its own.
class DragOnLostDesktopTest : public testing::Test {
protected:
    [[nodiscard]] Frame zoneFrame(int number) {
        return frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
    }
    void dragOver(xcb_window_t window, int number) {
        ASSERT_TRUE(drag.begin(window));
        drag.hold(XCB_MOD_MASK_SHIFT);
        drag.moveInto(zoneFrame(number));
        ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));
    }
    void expectThatADragWorks() {
        drag.hold(0);
        EXPECT_TRUE(drag.waitUntilNothingIsGrabbed());
        const xcb_window_t window = desktop.open(client);
        dragOver(window, 5);
        drag.release();
        EXPECT_EQ(desktop.settledFrame(window, zoneFrame(5)), zoneFrame(5));
        EXPECT_TRUE(desktop.stop());
    }

    Desktop desktop{{.settings = kNoHomes}};
    TestClient client{desktop.server()};
    WindowDrag drag{desktop};
};

TEST_F(DragOnLostDesktopTest, TheWindowManagerCanBeReplacedDuringADrag) {
    ASSERT_TRUE(desktop.startForDrags());
    const xcb_window_t window = desktop.open(client);
    dragOver(window, 2);

    const ChildProcess next({"openbox", "--replace", "--sm-disable"}, desktop.server().environment());
    ASSERT_TRUE(desktop.waitUntilManagerEnds());
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return desktop.observer().managed(window); }));
    drag.release();

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    // The height depends on whether the new window manager has already applied the panel's strut.
    EXPECT_TRUE(desktop.observer().waitUntil([&] {
        const Frame now = desktop.frame(window);
        return now.x == zoneFrame(2).x && now.width == zoneFrame(2).width;
    }));
    expectThatADragWorks();
}

TEST_F(DragOnLostDesktopTest, ADragThatBeganBeforeTheProgramStartedIsIgnored) {
    const xcb_window_t window = desktop.open(client);
    ASSERT_TRUE(drag.beginUnseen(window));
    const Frame before = desktop.frame(window);
    ASSERT_TRUE(desktop.start());
    ASSERT_TRUE(desktop.waitUntilProgramRests()); // it watches the mouse from here on

    drag.hold(XCB_MOD_MASK_SHIFT);
    drag.moveInto(zoneFrame(2));
    EXPECT_TRUE(drag.staysWithoutOverlay());
    drag.release();

    expectThatADragWorks();
    EXPECT_EQ(desktop.frame(window).width, before.width);
}

TEST_F(DragOnLostDesktopTest, TheProgramExitsWhenTheServerDiesDuringADrag) {
    ASSERT_TRUE(desktop.startForDrags());
    dragOver(desktop.open(client), 2);

    desktop.server().kill();

    EXPECT_TRUE(desktop.program().process().waitForExit().has_value());
    EXPECT_EQ(desktop.program().errors().find("Sanitizer"), std::string::npos);
}

TEST_F(DragOnLostDesktopTest, RemovingADisplayHidesTheOverlayOnIt) {
    Desktop wide{
        {.server = {.width = 2560, .height = 1024, .monitors = twoMonitors()}, .settings = kNoHomes}};
    ASSERT_TRUE(wide.startForDrags());
    TestClient other{wide.server()};
    const xcb_window_t window = wide.open(other);
    WindowDrag hand{wide};
    ASSERT_TRUE(hand.begin(window));
    hand.hold(XCB_MOD_MASK_SHIFT);
    hand.moveTo(2000, 500);
    ASSERT_TRUE(hand.waitForOverlay(wide.usableArea(1)));

    wide.server().setMonitors({twoMonitors().front()});
    hand.moveTo(2010, 500);
    EXPECT_TRUE(hand.waitUntilNoOverlay());

    const Frame area = wide.usableArea(0);
    const Frame zone = frameIn({area.x, area.y, area.width, 900}, kZones[0]);
    hand.moveInto(zone);
    EXPECT_TRUE(hand.waitForOverlay(area));
    hand.release();
    EXPECT_EQ(wide.settledFrame(window, zone), zone);
    EXPECT_TRUE(wide.stop());
}

} // namespace
} // namespace tessarel::x11test
