// SPDX-License-Identifier: MIT

#include "platform/x11/input/mouse.h"

#include "platform/x11/x11_fixture.h"
#include "support/x11/mouse.h"

#include <gtest/gtest.h>
#include <xcb/xinput.h>

#include <memory>
#include <ostream>
#include <poll.h>
#include <string>
#include <vector>

namespace tessarel {

void PrintTo(const MouseEvent& event, std::ostream* out) {
    *out << "{" << static_cast<int>(event.kind) << ", " << event.screenLocation.x << ", "
         << event.screenLocation.y << ", " << event.modifierFlags << "}";
}

namespace x11 {
namespace {

using enum MouseEventKind;
using x11test::Mouse;

/// A desktop of 1600 by 900 pixels, with the pointer over a client's window.
class X11MouseTest : public X11Test {
protected:
    X11MouseTest() {
        (void)open({.client = {50, 50, 1500, 800}});
        hand.moveTo(1000, 600);
        for (const auto kind : {LeftDown, LeftDragged, LeftUp})
            watching.push_back(mouse->addGlobalMonitor(kind, [this, kind](const MouseEvent& event) {
                EXPECT_EQ(event.kind, kind);
                events.push_back(event);
            }));
        driver.hear();
    }
    ~X11MouseTest() override {
        hand.hold(0);
        for (const auto button : {Mouse::kLeft, Mouse::kMiddle, Mouse::kRight})
            hand.release(button);
    }

    [[nodiscard]] std::vector<MouseEventKind> takeKinds() {
        std::vector<MouseEventKind> kinds;
        for (const MouseEvent& event : std::exchange(events, {}))
            kinds.push_back(event.kind);
        return kinds;
    }

    /// Settles, because the window manager's synchronous grab delays a press.
    void press(std::uint8_t button = Mouse::kLeft) {
        hand.press(button);
        settle();
    }
    void moveTo(int x, int y) {
        hand.moveTo(x, y);
        driver.hear();
    }
    void release(std::uint8_t button = Mouse::kLeft) {
        hand.release(button);
        driver.hear();
    }

    /// Warps the pointer, as clients do, without pointer motion.
    void warpTo(std::int16_t x, std::int16_t y) {
        xcb_warp_pointer(observer.x().get(), XCB_NONE, observer.root(), 0, 0, 0, 0, x, y);
        observer.x().roundTrip();
        driver.hear();
    }

    /// Returns true if the server has sent us anything during `work`.
    template <class Work>
    bool wakesUs(Work work) {
        driver.hear();
        work();
        pollfd file{connection.fileDescriptor(), POLLIN, 0};
        return poll(&file, 1, 0) == 1;
    }

    /// Returns how many raw events the server sends us during `work`.
    template <class Work>
    int rawEvents(Work work) {
        driver.hear();
        int count = 0;
        const auto counter = connection.onRead(
            [&](const Connection::Event& event) { count += event.response_type == XCB_GE_GENERIC ? 1 : 0; });
        work();
        driver.hear();
        return count;
    }

    /// Releases the button while we do not select its events, as when another client's grab hides them.
    void loseRelease() {
        select(0);
        hand.release();
        select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
               XCB_INPUT_XI_EVENT_MASK_RAW_MOTION);
    }
    void select(std::uint32_t eventMask) {
        struct {
            xcb_input_event_mask_t head;
            std::uint32_t mask;
        } const wanted{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, eventMask};
        xcb_input_xi_select_events(connection.xcb(), connection.root(), 1, &wanted.head);
        driver.hear();
    }

    /// Opens a window of this process. Override-redirect windows are not managed.
    [[nodiscard]] xcb_window_t openOwn(bool overrideRedirect) {
        xcb_connection_t* const x = observer.x().get();
        const xcb_window_t window = xcb_generate_id(x);
        const std::uint32_t value = overrideRedirect ? 1 : 0;
        xcb_create_window(x, XCB_COPY_FROM_PARENT, window, observer.root(), 200, 200, 300, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                          &value);
        xcb_map_window(x, window);
        observer.x().roundTrip();
        return window;
    }
    void closeOwn(xcb_window_t window) {
        xcb_destroy_window(observer.x().get(), window);
        observer.x().roundTrip();
        settle();
    }

    Mouse hand{observer};
    std::unique_ptr<X11Mouse> mouse =
        std::make_unique<X11Mouse>(connection, monitors, windows, driver.queue());
    std::vector<MouseEvent> events;
    std::vector<SubscriptionPtr> watching;
};

using Kinds = std::vector<MouseEventKind>;
using Events = std::vector<MouseEvent>;

TEST_F(X11MouseTest, APressHiddenByASynchronousGrabIsReportedAfterwards) {
    xcb_connection_t* const other = observer.x().get();
    xcb_grab_pointer(other, 0, observer.root(), XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_SYNC,
                     XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    hand.press();
    (void)connection.internAtom("PRIMARY"); // the reply comes after the press
    connection.dispatch();
    EXPECT_TRUE(takeKinds().empty());

    xcb_allow_events(other, XCB_ALLOW_ASYNC_POINTER, XCB_CURRENT_TIME);
    xcb_ungrab_pointer(other, XCB_CURRENT_TIME);
    (void)hand.state(); // a round trip, so that the server has released the grab
    driver.hear();
    moveTo(1020, 620);

    EXPECT_EQ(takeKinds(), (std::vector{LeftDown, LeftDragged}));
}

TEST_F(X11MouseTest, ADragIsReportedInScreenCoordinates) {
    press();
    moveTo(1010, 590);
    moveTo(0, 0);
    release();

    EXPECT_EQ(events, (Events{{LeftDown, {1000, 300}, 0},
                              {LeftDragged, {1010, 310}, 0},
                              {LeftDragged, {0, 900}, 0},
                              {LeftUp, {0, 900}, 0}}));
}

TEST_F(X11MouseTest, EventsHaveTheCurrentModifiers) {
    press();
    for (const auto& [mask, flags] : {std::pair(XCB_MOD_MASK_SHIFT, kShiftFlag),
                                      {XCB_MOD_MASK_CONTROL, kControlFlag},
                                      {XCB_MOD_MASK_1, kOptionFlag},
                                      {XCB_MOD_MASK_4, kCommandFlag}}) {
        hand.hold(static_cast<std::uint16_t>(mask));
        moveTo(900, 500);
        EXPECT_EQ(events.back().modifierFlags, flags);
        hand.hold(0);
        moveTo(901, 500);
        EXPECT_EQ(events.back().modifierFlags, 0U);
    }
}

TEST_F(X11MouseTest, PointerMotionAtRestCausesNoWakeUp) {
    EXPECT_FALSE(wakesUs([&] {
        for (int x = 0; x < 500; ++x)
            hand.moveTo(x, 300);
    }));

    press();
    release();
    EXPECT_FALSE(wakesUs([&] {
        for (int x = 0; x < 500; ++x)
            hand.moveTo(x, 300);
    })) << "after a drag";
}

TEST_F(X11MouseTest, PointerMotionWithAnotherButtonCausesNoWakeUp) {
    for (const auto button : {Mouse::kMiddle, Mouse::kWheelUp}) {
        press(button);
        EXPECT_FALSE(wakesUs([&] { hand.moveTo(800, 300); }));
        release(button);
    }
    EXPECT_EQ(events, Events{});
}

TEST_F(X11MouseTest, ModifierKeysAtRestCauseNoWakeUp) {
    EXPECT_FALSE(wakesUs([&] { hand.hold(XCB_MOD_MASK_SHIFT); }));

    press();
    release();
    EXPECT_FALSE(wakesUs([&] { hand.hold(0); })) << "after a drag";
}

TEST_F(X11MouseTest, AModifierReleasedBeforeTheButtonIsReportedFirstEvenWhenReadTogether) {
    hand.hold(XCB_MOD_MASK_SHIFT);
    press();
    hand.hold(0);
    hand.release();
    driver.hear();

    EXPECT_EQ(events, (Events{{LeftDown, {1000, 300}, kShiftFlag},
                              {LeftDragged, {1000, 300}, 0},
                              {LeftUp, {1000, 300}, 0}}));
}

TEST_F(X11MouseTest, AModifierReleasedAfterTheButtonCountsUntilThenEvenWhenReadTogether) {
    hand.hold(XCB_MOD_MASK_SHIFT);
    press();
    hand.moveTo(700, 500);
    hand.release();
    hand.hold(0);
    driver.hear();

    EXPECT_EQ(events, (Events{{LeftDown, {1000, 300}, kShiftFlag},
                              {LeftDragged, {700, 400}, kShiftFlag},
                              {LeftUp, {700, 400}, kShiftFlag}}));
}

TEST_F(X11MouseTest, EventsReadTogetherCauseOnePointerQuery) {
    press();
    events.clear();
    for (int x = 0; x < 40; ++x)
        hand.moveTo(x, 500);
    const auto before = connection.roundTrips();

    driver.hear();

    EXPECT_EQ(connection.roundTrips() - before, 2U) << "one of them is the test's own";
    EXPECT_EQ(events, (Events{{LeftDragged, {39, 400}, 0}}));
}

TEST_F(X11MouseTest, EveryMotionIsReportedWhenReadOneByOne) {
    press();
    events.clear();
    for (int x = 0; x < 100; ++x)
        moveTo(x, 500);

    EXPECT_EQ(events.size(), 100U);
    EXPECT_EQ(events.back().screenLocation, (Point{99, 400}));
}

TEST_F(X11MouseTest, AMotionReadTogetherWithTheReleaseIsReportedBeforeIt) {
    press();
    hand.moveTo(700, 500);
    hand.release();
    driver.hear();

    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftDragged, LeftUp}));
}

TEST_F(X11MouseTest, AWarpedPointerIsReportedBeforeTheRelease) {
    press();
    moveTo(1010, 590);
    warpTo(700, 500);
    release();

    EXPECT_EQ(events, (Events{{LeftDown, {1000, 300}, 0},
                              {LeftDragged, {1010, 310}, 0},
                              {LeftDragged, {700, 400}, 0},
                              {LeftUp, {700, 400}, 0}}));
}

TEST_F(X11MouseTest, AReleaseDuringThePointerQueryIsNotTakenForALostOne) {
    press();
    bool isReleased = false;
    const auto releaser = connection.onRead([&](const Connection::Event& event) {
        if (event.response_type == XCB_GE_GENERIC && !std::exchange(isReleased, true))
            hand.release();
    });

    moveTo(700, 500);
    settle();

    EXPECT_EQ(events,
              (Events{{LeftDown, {1000, 300}, 0}, {LeftDragged, {700, 400}, 0}, {LeftUp, {700, 400}, 0}}));
}

TEST_F(X11MouseTest, ALostReleaseAfterAWarpIsNotReportedAsADrag) {
    press();
    loseRelease();
    warpTo(700, 500);

    moveTo(701, 500);

    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftUp}));
}

TEST_F(X11MouseTest, OtherButtonsDuringADragAreIgnored) {
    press();
    moveTo(900, 500);
    press(Mouse::kRight);
    moveTo(800, 500);
    release(Mouse::kRight);
    hand.press(Mouse::kWheelUp);
    hand.release(Mouse::kWheelUp);
    moveTo(700, 500);
    release();

    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftDragged, LeftDragged, LeftDragged, LeftUp}));
}

TEST_F(X11MouseTest, ALostReleaseIsReportedWithTheNextMotion) {
    press();
    loseRelease();
    EXPECT_EQ(takeKinds(), Kinds{LeftDown});

    moveTo(700, 500);

    EXPECT_EQ(takeKinds(), Kinds{LeftUp});
    EXPECT_FALSE(wakesUs([&] { hand.moveTo(600, 500); }));
}

TEST_F(X11MouseTest, TwoPressesWithoutAReleaseAreTwoPresses) {
    press();
    loseRelease();
    press();
    moveTo(700, 500);
    release();

    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftDown, LeftDragged, LeftUp}));
}

TEST_F(X11MouseTest, AReleaseAndAPressReadTogetherAreBothReported) {
    press();
    hand.release();
    hand.press();
    settle();
    release();

    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftUp, LeftDown, LeftUp}));
}

TEST_F(X11MouseTest, AClickThatEndsBeforeItIsReadIsNotReported) {
    hand.press();
    hand.release();
    settle();

    EXPECT_EQ(takeKinds(), Kinds{});
    EXPECT_FALSE(wakesUs([&] { hand.moveTo(600, 500); }));
}

TEST_F(X11MouseTest, ADragBegunBeforeTheMonitorIsNotReported) {
    watching.clear();
    driver.hear();
    press();

    watching.push_back(
        mouse->addGlobalMonitor(LeftDragged, [this](const MouseEvent& event) { events.push_back(event); }));
    moveTo(700, 500);
    release();

    EXPECT_EQ(events, Events{});
}

TEST_F(X11MouseTest, EventsAreReportedDuringAnotherClientsGrab) {
    xcb_connection_t* const x = observer.x().get();
    const auto grab = x11test::own(xcb_grab_pointer_reply(
        x,
        xcb_grab_pointer(x, 0, observer.root(), XCB_EVENT_MASK_BUTTON_RELEASE, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    ASSERT_TRUE(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);

    press();
    moveTo(700, 500);
    release();

    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftDragged, LeftUp}));
    xcb_ungrab_pointer(x, XCB_CURRENT_TIME);
    observer.x().roundTrip();
}

TEST_F(X11MouseTest, ASwappedButtonMappingIsRespected) {
    x11test::runToEnd({"xmodmap", "-e", "pointer = 3 2 1"}, desktop.server.environment());
    press(Mouse::kRight);
    moveTo(700, 500);
    release(Mouse::kRight);
    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftDragged, LeftUp}));

    press(Mouse::kLeft);
    moveTo(800, 500);
    release(Mouse::kLeft);
    EXPECT_EQ(takeKinds(), Kinds{});
    x11test::runToEnd({"xmodmap", "-e", "pointer = default"}, desktop.server.environment());
}

TEST_F(X11MouseTest, ADragThatBeginsOverAnOwnWindowIsNotReported) {
    const xcb_window_t menu = openOwn(true);
    hand.moveTo(300, 250);
    press();
    moveTo(1000, 600);
    release();
    EXPECT_EQ(takeKinds(), Kinds{});
    closeOwn(menu);

    moveTo(300, 250);
    press();
    release();
    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftUp}));
}

TEST_F(X11MouseTest, ADragThatBeginsOverTheTitleBarOfAnOwnWindowIsNotReported) {
    const xcb_window_t window = openOwn(false);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.managed(window); }));
    observer.moveOuterFrame(window, {200, 200, 400, 300});
    ASSERT_TRUE(observer.waitUntil([&] { return observer.outerFrame(window)->x == 200; }));
    settle();

    hand.moveTo(400, 202);
    press();
    release();

    EXPECT_EQ(takeKinds(), Kinds{});
    closeOwn(window);
}

TEST_F(X11MouseTest, WithoutMonitorsNoEventsAreSelected) {
    watching.clear();

    EXPECT_EQ(rawEvents([&] {
                  press();
                  moveTo(700, 500);
                  release();
              }),
              0);
}

TEST_F(X11MouseTest, EndingTheLastMonitorDuringADragEndsIt) {
    press();
    watching.clear();

    EXPECT_EQ(rawEvents([&] {
                  moveTo(700, 500);
                  release();
              }),
              0);
}

TEST_F(X11MouseTest, AHandlerMayDestroyTheMouseDuringADrag) {
    const auto ender = mouse->addGlobalMonitor(LeftDragged, [this](const MouseEvent&) { mouse.reset(); });
    press();

    hand.moveTo(700, 500);
    hand.release();
    driver.hear();

    EXPECT_FALSE(mouse);
    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftDragged}));
}

TEST_F(X11MouseTest, MotionsReadWhileAHandlerWaitsAreReportedAfterwards) {
    const auto waiter = mouse->addGlobalMonitor(LeftDown, [this](const MouseEvent&) {
        hand.moveTo(700, 500);
        (void)connection.internAtom("PRIMARY");
    });

    press();

    EXPECT_EQ(takeKinds(), (Kinds{LeftDown, LeftDragged}));
}

TEST(X11MouseWithoutServerTest, AddingAMonitorFails) {
    x11test::XServer server;
    ConnectionDriver driver(server.display());
    Monitors monitors(driver.connection());
    ClientWindows windows(driver.connection());
    server.kill();

    X11Mouse mouse(driver.connection(), monitors, windows, driver.queue());

    EXPECT_FALSE(mouse.addGlobalMonitor(LeftDown, [](const MouseEvent&) {}));
}

} // namespace
} // namespace x11
} // namespace tessarel
