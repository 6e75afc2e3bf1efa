// SPDX-License-Identifier: MIT

#include "platform/x11/server/event.h"
#include "platform/x11/x11_fixture.h"
#include "support/x11/keyboard.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel::x11 {
namespace {

/// The round trips of a hot key that snaps the focused window.
class RoundTripsTest : public X11Test {
protected:
    RoundTripsTest() { warmUp(); }

    /// Snaps once, so that the queries of the first snap are cached.
    void warmUp() {
        const xcb_window_t window = open();
        (void)snap({100, 100, 400, 300});
        client.destroy(window);
        settle();
    }

    [[nodiscard]] std::string listOfClients() {
        const auto clients = observer.clients();
        return {reinterpret_cast<const char*>(clients.data()), clients.size() * sizeof(clients[0])};
    }

    struct Cost {
        std::size_t untilWritten = 0;
        std::size_t inAll = 0;
    };

    /// Makes the reads and writes of snapping the focused window, in the order of the engine.
    Cost snap(const Rect& axFrame) {
        const auto start = connection.roundTrips();
        const auto frontmost = workspace.frontmostApplication();
        if (!frontmost)
            return {};
        const Element application = accessibility.application(frontmost->processIdentifier);
        const auto window = read<Element>(application, attribute::kFocusedWindow);
        if (!window)
            return {};
        for (const auto name : {attribute::kRole, attribute::kMinimized, attribute::kFullScreen})
            (void)accessibility.copyAttribute(*window, name);
        (void)readFrame(*window);
        (void)displays.screens();
        (void)accessibility.copyAttribute(application, attribute::kEnhancedUserInterface);
        (void)accessibility.canExpress(axFrame);
        writeFrame(*window, axFrame);
        const auto written = connection.roundTrips();
        EXPECT_EQ(readFrame(*window), axFrame);
        EXPECT_EQ(readFrame(*window), axFrame);
        return {written - start, connection.roundTrips() - start};
    }
};

TEST_F(RoundTripsTest, ASnapReadsOnceWritesOnceAndReadsBackOnce) {
    (void)open();
    settle();

    const Cost cost = snap({200, 150, 600, 400});

    EXPECT_EQ(cost.untilWritten, 1U);
    EXPECT_EQ(cost.inAll, 3U) << "the reads, the wait for the window manager and the read-back";
}

TEST_F(RoundTripsTest, RewritingUnchangedRootPropertiesCostsNoRoundTrip) {
    (void)open();
    client.setProperty(observer.root(), "_NET_CLIENT_LIST", "WINDOW", 32, listOfClients());
    client.setCardinals(observer.root(), "_NET_CURRENT_DESKTOP", {0});
    settle();

    EXPECT_EQ(snap({200, 150, 600, 400}).untilWritten, 1U);
}

TEST_F(RoundTripsTest, ASnapThatChangesNothingCostsNoMore) {
    (void)open();
    (void)snap({200, 150, 600, 400});
    settle();

    EXPECT_EQ(snap({200, 150, 600, 400}).inAll, 3U);
}

TEST_F(RoundTripsTest, AWindowThatHasJustGotTheFocusCostsNoMore) {
    const xcb_window_t first = open();
    (void)open();
    (void)displays.screens();
    observer.activate(first);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == first; }));
    settle();

    EXPECT_EQ(snap({200, 150, 600, 400}).untilWritten, 1U);
}

TEST_F(RoundTripsTest, AnUnreadFocusChangeCostsAtMostTwoMoreRoundTrips) {
    const xcb_window_t first = open();
    (void)open();
    (void)displays.screens();
    settle();
    observer.activate(first);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == first; }));

    EXPECT_LE(snap({200, 150, 600, 400}).untilWritten, 3U);
    EXPECT_EQ(actualFrame(first), (Rect{200, 150, 600, 400}));
}

TEST_F(RoundTripsTest, KeysPressedDuringASnapAreDeliveredAfterwardsInOrder) {
    (void)open();
    x11test::Keyboard keyboard(desktop.server, observer);
    const std::vector<int> digits = {10, 11, 12, 13};
    for (const int key : digits)
        xcb_grab_key(connection.xcb(), 1, connection.root(), 0, static_cast<xcb_keycode_t>(key),
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    settle();
    std::vector<int> keys;
    const auto handler = connection.onEvent([&](const Connection::Event& event) {
        if (eventType(event) != XCB_KEY_PRESS)
            return;
        if (keys.empty()) { // press more keys while the first one is being handled
            for (const int key : {11, 12, 13})
                keyboard.press({static_cast<xcb_keycode_t>(key), 0});
            (void)snap({200, 150, 600, 400});
        }
        keys.push_back(eventAs<xcb_key_press_event_t>(event).detail);
    });

    keyboard.press({10, 0});
    driver.hear();

    EXPECT_EQ(keys, digits);
}

TEST_F(RoundTripsTest, AtRestNoRequestIsSentAndNoWorkIsPending) {
    (void)open();
    settle();
    const auto before = connection.roundTrips();

    connection.dispatch();

    EXPECT_EQ(connection.roundTrips(), before);
    EXPECT_EQ(driver.queue().waiting(), 0U);
}

TEST(LostServerTest, EveryReadIsEmptyAndNothingHangs) {
    x11test::XServer server;
    ConnectionDriver driver(server.display());
    Connection& connection = driver.connection();
    Monitors monitors(connection);
    ClientWindows windows(connection);
    X11Displays displays(connection, monitors, [&windows] { return windows.activeFrame(); });
    Applications applications(windows);
    ApplicationWatch watch(connection, windows, applications);
    X11Accessibility accessibility(connection, monitors, windows, applications, watch, driver.queue());
    X11Workspace workspace(applications, watch);
    server.kill();

    EXPECT_FALSE(workspace.frontmostApplication());
    EXPECT_FALSE(workspace.runningApplication(1));
    EXPECT_TRUE(displays.screens().empty());
    EXPECT_FALSE(displays.mainScreen());
    EXPECT_FALSE(accessibility.pid(accessibility.application(1)));
    EXPECT_FALSE(accessibility.copyAttribute(accessibility.application(1), attribute::kWindows));
}

} // namespace
} // namespace tessarel::x11
