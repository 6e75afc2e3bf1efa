// SPDX-License-Identifier: MIT

#include "platform/x11/applications/correction_watch.h"

#include "platform/x11/event_loop.h"
#include "platform/x11/server/event.h"
#include "platform/x11/x11_fixture.h"
#include "support/x11/mouse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <utility>
#include <vector>

namespace tessarel::x11 {
namespace {

/// A back end whose clock the test turns, and a program that changes its window by its own decision.
class CorrectionWatchTest : public X11Test {
protected:
    CorrectionWatchTest() { mouse.moveTo(1500, 850); }
    ~CorrectionWatchTest() override { mouse.release(); }

    /// Opens a window and places it.
    xcb_window_t openPlaced() {
        const xcb_window_t window = open();
        place(window);
        return window;
    }

    void place(xcb_window_t window) {
        const Element element = elementOf(window);
        watched.setAttribute(element, attribute::kPosition, kTarget.origin());
        watched.setAttribute(element, attribute::kSize, kTarget.size());
        ASSERT_TRUE(watched.copyAttribute(element, attribute::kSize)) << "not placed";
        hear();
        reported.clear();
    }

    /// Makes the program increase the height of its window by `pixels`. Returns the new outer frame.
    Rect grow(xcb_window_t window, int pixels) {
        auto frame = observer.clientFrame(window).value_or(x11test::Frame{});
        const auto outer = observer.outerFrame(window).value_or(x11test::Frame{});
        const int height = frame.height + pixels;
        client.moveBack(window, {outer.x, outer.y, frame.width, height});
        EXPECT_TRUE(observer.waitUntil([&] {
            frame = observer.clientFrame(window).value_or(x11test::Frame{});
            return frame.height == height;
        }));
        hear();
        return actualFrame(window);
    }

    /// Delivers everything that has happened so far to the back end.
    void hear() {
        EXPECT_TRUE(observer.settle());
        loop.settle();
    }

    using Frames = std::vector<Rect>;

    x11test::Mouse mouse{observer};
    EventLoop loop{desktop.server.display()};
    Monitors monitorsSeen{loop.connection()};
    ClientWindows windowsSeen{loop.connection()};
    Applications applicationsSeen{windowsSeen};
    ApplicationWatch opened{loop.connection(), windowsSeen, applicationsSeen};
    X11Accessibility watched{loop.connection(), monitorsSeen, windowsSeen,
                             applicationsSeen,  opened,       loop.queue()};
    Frames reported;
    SubscriptionPtr corrections = watched.onCorrected([this](const Element& /*window*/, const Rect& axFrame) {
        if (reported.empty() || reported.back() != axFrame)
            reported.push_back(axFrame);
    });
};

TEST_F(CorrectionWatchTest, ASizeThatTheProgramCorrectsWithinHalfASecondIsReported) {
    const xcb_window_t window = openPlaced();

    loop.turn(std::chrono::milliseconds(20));
    const Rect corrected = grow(window, 12);

    EXPECT_EQ(corrected.height, kTarget.height + 12);
    EXPECT_EQ(reported, Frames{corrected});
}

TEST_F(CorrectionWatchTest, EveryCorrectionWithinHalfASecondIsReported) {
    const xcb_window_t window = openPlaced();

    const Rect first = grow(window, 12);
    loop.turn(std::chrono::milliseconds(499));
    const Rect second = grow(window, 10);

    EXPECT_EQ(reported, (Frames{first, second}));
}

TEST_F(CorrectionWatchTest, AReadReportsACorrectionBeforeItsEventIsDelivered) {
    const xcb_window_t window = openPlaced();
    const Element element = elementOf(window);
    const auto frame = observer.clientFrame(window).value_or(x11test::Frame{});
    client.moveBack(window, {frame.x, frame.y, frame.width, frame.height + 12});
    ASSERT_TRUE(observer.waitUntil(
        [&] { return observer.clientFrame(window).value_or(x11test::Frame{}).height == frame.height + 12; }));

    loop.connection().beginTurn();
    ASSERT_TRUE(watched.copyAttribute(element, attribute::kSize));

    ASSERT_EQ(reported.size(), 1U);
    EXPECT_EQ(reported[0].height, kTarget.height + 12);
}

TEST_F(CorrectionWatchTest, AReadReturnsTheFrameThatTheReportedCorrectionHasLedTo) {
    constexpr Rect kOther{10, 40, 300, 200};
    const xcb_window_t window = openPlaced();
    const Element element = elementOf(window);
    bool isFirst = true;
    const auto placement = watched.onCorrected([&](const Element& corrected, const Rect& /*axFrame*/) {
        if (!std::exchange(isFirst, false))
            return;
        watched.setAttribute(corrected, attribute::kPosition, kOther.origin());
        watched.setAttribute(corrected, attribute::kSize, kOther.size());
        (void)watched.copyAttribute(corrected, attribute::kSize);
    });
    const auto frame = observer.clientFrame(window).value_or(x11test::Frame{});
    client.moveBack(window, {frame.x, frame.y, frame.width, frame.height + 12});
    ASSERT_TRUE(observer.waitUntil(
        [&] { return observer.clientFrame(window).value_or(x11test::Frame{}).height == frame.height + 12; }));

    loop.connection().beginTurn();
    const auto position = watched.copyAttribute(element, attribute::kPosition);

    ASSERT_TRUE(position && !isFirst);
    EXPECT_EQ(std::get<Point>(*position), kOther.origin());
}

TEST_F(CorrectionWatchTest, AfterHalfASecondTheServerReportsNothingAnyMore) {
    const xcb_window_t window = openPlaced();
    loop.turn(CorrectionWatch::kDuration);
    int events = 0;
    const auto count = loop.connection().onRead([&](const Connection::Event& event) {
        if (eventType(event) == XCB_CONFIGURE_NOTIFY)
            events += eventAs<xcb_configure_notify_event_t>(event).window == window ? 1 : 0;
    });

    grow(window, 12);

    EXPECT_EQ(reported, Frames{});
    EXPECT_EQ(events, 0);
}

TEST_F(CorrectionWatchTest, AnotherPlacementStartsTheHalfSecondAnew) {
    const xcb_window_t window = openPlaced();
    loop.turn(std::chrono::milliseconds(400));
    place(window);
    loop.turn(std::chrono::milliseconds(400));

    const Rect corrected = grow(window, 12);

    EXPECT_EQ(reported, Frames{corrected});
}

TEST_F(CorrectionWatchTest, SeveralWindowsAreWatchedAtOnce) {
    const xcb_window_t first = openPlaced();
    const xcb_window_t second = openPlaced();

    const Rect correctedFirst = grow(first, 12);
    const Rect correctedSecond = grow(second, 14);

    EXPECT_EQ(reported, (Frames{correctedFirst, correctedSecond}));
}

TEST_F(CorrectionWatchTest, AChangeWhileAMouseButtonIsDownIsTheUsers) {
    const xcb_window_t window = openPlaced();

    mouse.press();
    grow(window, 12);
    mouse.release();
    grow(window, 10);

    EXPECT_EQ(reported, Frames{});
}

TEST_F(CorrectionWatchTest, PlacementsThatTheWindowManagerMakesLateAreReported) {
    constexpr Rect kOther{10, 40, 300, 200};
    const xcb_window_t one = open();
    const xcb_window_t other = open();
    desktop.manager->process().signal(SIGSTOP);
    for (const auto& [window, axFrame] : {std::pair{one, kTarget}, std::pair{other, kOther}}) {
        const Element element = elementOf(window);
        watched.setAttribute(element, attribute::kPosition, axFrame.origin());
        watched.setAttribute(element, attribute::kSize, axFrame.size());
        EXPECT_FALSE(watched.copyAttribute(element, attribute::kSize)) << "it is not placed in time";
    }
    loop.turn(CorrectionWatch::kDuration);
    EXPECT_EQ(reported, Frames());

    desktop.manager->process().signal(SIGCONT);

    EXPECT_TRUE(
        observer.waitUntil([&] { return actualFrame(one) == kTarget && actualFrame(other) == kOther; }));
    hear();
    EXPECT_THAT(reported, testing::UnorderedElementsAre(kTarget, kOther));
}

TEST_F(CorrectionWatchTest, ALatePlacementIsReportedOnceTheMouseButtonIsReleased) {
    const xcb_window_t window = open();
    const Element element = elementOf(window);
    desktop.manager->process().signal(SIGSTOP);
    watched.setAttribute(element, attribute::kPosition, kTarget.origin());
    watched.setAttribute(element, attribute::kSize, kTarget.size());
    EXPECT_FALSE(watched.copyAttribute(element, attribute::kSize)) << "it is not placed in time";
    loop.turn(CorrectionWatch::kDuration);
    mouse.press();
    desktop.manager->process().signal(SIGCONT);
    EXPECT_TRUE(observer.waitUntil([&] { return actualFrame(window) == kTarget; }));
    hear();
    loop.turn(CorrectionWatch::kDuration);
    EXPECT_EQ(reported, Frames());

    mouse.release();
    hear();
    loop.turn(std::chrono::milliseconds(100));

    EXPECT_EQ(reported, Frames{kTarget});
}

TEST_F(CorrectionWatchTest, AMaximisedWindowHasNotBeenCorrected) {
    const xcb_window_t window = openPlaced();

    observer.changeState(window, x11test::StateChange::Add, "_NET_WM_STATE_MAXIMIZED_VERT",
                         "_NET_WM_STATE_MAXIMIZED_HORZ");
    ASSERT_TRUE(
        observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_MAXIMIZED_VERT"); }));
    hear();

    EXPECT_EQ(reported, Frames{});
}

} // namespace
} // namespace tessarel::x11
