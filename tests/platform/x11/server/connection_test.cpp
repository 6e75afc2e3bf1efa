// SPDX-License-Identifier: MIT

#include "platform/x11/server/connection.h"

#include "platform/x11/manual_queue.h"
#include "platform/x11/server/event.h"
#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace tessarel::x11 {
namespace {

using namespace std::chrono_literals;

constexpr auto kBound = 20ms;

/// A connection that has grabbed all keys, on a private server.
class ConnectionTest : public ::testing::Test {
protected:
    ConnectionTest() {
        xcb_grab_key(connection->xcb(), 1, connection->root(), XCB_MOD_MASK_ANY, XCB_GRAB_ANY,
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        roundTrip(); // so that the grab is active before the keyboard's connection sends presses
        press(1);    // the first press also changes the keyboard map
        connection->dispatch();
        settleQueue();
    }

    [[nodiscard]] std::unique_ptr<Connection> openConnection() {
        auto opened = Connection::open(server.display().c_str(), queue);
        if (!opened.connection)
            throw std::runtime_error(opened.failure);
        return std::move(opened.connection);
    }

    void settleQueue() {
        while (queue.waiting() > 0)
            queue.runTurn();
    }

    void press(int digit) {
        keyboard.press({static_cast<xcb_keycode_t>(x11test::key::kDigit1 + digit - 1), 0});
    }

    /// Waits for a reply; meanwhile xcb reads the events that have arrived.
    void roundTrip() { (void)connection->internAtom("PRIMARY"); }

    [[nodiscard]] bool isReadable() const {
        pollfd file{connection->fileDescriptor(), POLLIN, 0};
        return poll(&file, 1, 0) == 1;
    }

    /// Returns a handler that appends each pressed digit to `digits`.
    [[nodiscard]] static std::function<void(const Connection::Event&)> note(std::string& digits) {
        return [&digits](const Connection::Event& event) {
            if (eventType(event) == XCB_KEY_PRESS)
                digits +=
                    std::to_string(eventAs<xcb_key_press_event_t>(event).detail - x11test::key::kDigit1 + 1);
        };
    }

    x11test::XServer server;
    x11test::Observer observer{server.display()};
    x11test::Keyboard keyboard{server, observer};
    ManualQueue queue;
    std::unique_ptr<Connection> connection = openConnection();
};

TEST(ConnectionOpenTest, AnUnreachableDisplayGivesAReadableReason) {
    ManualQueue queue;

    const auto opened = Connection::open(":65000", queue);

    EXPECT_FALSE(opened.connection);
    EXPECT_EQ(opened.failure, "The X display \":65000\" does not answer.");
}

TEST_F(ConnectionTest, KnowsItsScreenAtomsAndExtensions) {
    EXPECT_EQ(connection->root(), observer.root());
    EXPECT_EQ(connection->screenNumber(), 0);
    EXPECT_EQ(connection->atom(Atom::NetActiveWindow), connection->internAtom("_NET_ACTIVE_WINDOW"));
    EXPECT_EQ(connection->atom(Atom::Utf8String), connection->internAtom("UTF8_STRING"));
    EXPECT_EQ(connection->atom(Atom::NetWorkarea), connection->internAtom("_NET_WORKAREA"));
    EXPECT_TRUE(connection->extensions().randrMonitors);
    EXPECT_TRUE(connection->extensions().resourceProcessIds);
    EXPECT_FALSE(connection->isLost());
}

TEST_F(ConnectionTest, DeliversEventsInOrder) {
    std::string digits;
    const auto handler = connection->onEvent(note(digits));

    press(1);
    press(2);
    connection->dispatch();

    EXPECT_EQ(digits, "12");
}

TEST_F(ConnectionTest, ADispatchEndsAfterAWhileAndTheRestFollowsThroughTheQueue) {
    std::string digits;
    const auto handler = connection->onEvent(note(digits));
    const auto slow =
        connection->onEvent([&](const Connection::Event&) { queue.advance(Connection::kLongestDispatch); });
    for (const int digit : {1, 2, 3})
        press(digit);

    connection->dispatch();
    EXPECT_EQ(digits, "1");
    EXPECT_EQ(queue.waiting(), 1U) << "the program has to come back without a sign from the server";

    settleQueue();
    EXPECT_EQ(digits, "123");
}

TEST_F(ConnectionTest, ReadingEndsWhenEventsArriveAllTheTime) {
    std::string seen;
    const auto slow =
        connection->onRead([&](const Connection::Event&) { queue.advance(Connection::kLongestDispatch); });
    const auto observing = connection->onRead(note(seen));
    std::string delivered;
    const auto handler = connection->onEvent(note(delivered));
    press(1);
    press(2);

    connection->dispatch();
    EXPECT_EQ(delivered, "1");

    settleQueue();
    EXPECT_EQ(seen, "12");
    EXPECT_EQ(delivered, "12");
}

TEST_F(ConnectionTest, AKeyOvertakesAFloodThatIsDeliveredOnce) {
    connection->selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    roundTrip();
    std::string log;
    int read = 0;
    const auto observing = connection->onRead(
        [&](const Connection::Event& event) { read += eventType(event) == XCB_PROPERTY_NOTIFY ? 1 : 0; });
    const auto handler = connection->onEvent([&](const Connection::Event& event) {
        log += eventType(event) == XCB_PROPERTY_NOTIFY ? "p" : eventType(event) == XCB_KEY_PRESS ? "k" : "";
    });
    constexpr int kChanges = 200; // more might not fit into the socket
    for (int i = 0; i < kChanges; ++i)
        xcb_change_property(observer.x().get(), XCB_PROP_MODE_APPEND, observer.root(), XCB_ATOM_WM_COMMAND,
                            XCB_ATOM_STRING, 8, 0, nullptr);
    observer.x().roundTrip();
    press(1);

    connection->dispatch();

    EXPECT_EQ(log, "kp");
    EXPECT_EQ(read, kChanges) << "caches have to know of each, whatever else is being read";
}

TEST_F(ConnectionTest, ForgedEventsReachNobody) {
    connection->selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    roundTrip();
    std::vector<std::uint8_t> types;
    const auto note = [&](const Connection::Event& event) { types.push_back(event.response_type); };
    const auto observing = connection->onRead(note);
    const auto handler = connection->onEvent(note);
    for (const int type : {XCB_KEY_PRESS, XCB_PROPERTY_NOTIFY, XCB_DESTROY_NOTIFY, XCB_MAPPING_NOTIFY,
                           XCB_CONFIGURE_NOTIFY, XCB_CLIENT_MESSAGE}) {
        std::array<char, 32> event{};
        event[0] = static_cast<char>(type);
        event[1] = 32; // the format of the message
        xcb_send_event(observer.x().get(), 0, observer.root(), XCB_EVENT_MASK_PROPERTY_CHANGE, event.data());
    }
    observer.x().roundTrip();

    connection->dispatch();

    constexpr std::uint8_t kFrame = XCB_CONFIGURE_NOTIFY | 0x80;
    constexpr std::uint8_t kMessage = XCB_CLIENT_MESSAGE | 0x80;
    EXPECT_EQ(types, (std::vector<std::uint8_t>{kFrame, kMessage, kFrame, kMessage}));
}

TEST_F(ConnectionTest, EventsReadDuringAWaitAreDeliveredAfterwardsInOrder) {
    std::string delivered;
    std::string seen;
    const auto handler = connection->onEvent(note(delivered));
    const auto observing = connection->onRead(note(seen));
    press(1);
    press(2);

    EXPECT_FALSE(connection->waitFor([](const Connection::Event&) { return false; }, kBound));
    EXPECT_EQ(delivered, "");
    EXPECT_EQ(seen, "12") << "caches have to know at once";

    press(3);
    connection->dispatch();
    EXPECT_EQ(delivered, "123");
    EXPECT_EQ(seen, "123");
}

TEST_F(ConnectionTest, EventsReadAlongWithAReplyAreDeliveredThroughTheQueue) {
    std::string digits;
    const auto handler = connection->onEvent(note(digits));
    press(1);
    roundTrip();
    ASSERT_FALSE(isReadable()) << "xcb has read the event, so the socket does not wake the program";

    settleQueue();

    EXPECT_EQ(digits, "1");
}

TEST_F(ConnectionTest, TheAwaitedEventIsNotDelivered) {
    std::string digits;
    const auto handler = connection->onEvent(note(digits));
    const auto isTwo = [](const Connection::Event& event) {
        return eventType(event) == XCB_KEY_PRESS &&
               eventAs<xcb_key_press_event_t>(event).detail == x11test::key::kDigit1 + 1;
    };
    for (const int digit : {1, 2, 3})
        press(digit);

    EXPECT_TRUE(connection->waitFor(isTwo, 10s));
    settleQueue();
    connection->dispatch();

    EXPECT_EQ(digits, "13");
}

TEST_F(ConnectionTest, AWaitTimesOut) {
    const auto start = std::chrono::steady_clock::now();

    EXPECT_FALSE(connection->waitFor([](const Connection::Event&) { return false; }, kBound));

    EXPECT_GE(std::chrono::steady_clock::now() - start, kBound);
}

TEST_F(ConnectionTest, AHandlerMayWaitWithoutLosingEvents) {
    std::string digits;
    const auto first = connection->onEvent([&](const Connection::Event& event) {
        if (eventType(event) == XCB_KEY_PRESS && digits.empty()) {
            press(2);
            roundTrip();
        }
    });
    const auto second = connection->onEvent(note(digits));

    press(1);
    connection->dispatch();

    EXPECT_EQ(digits, "12");
}

TEST_F(ConnectionTest, ATurnEndsAfterTheEventThatBeganIt) {
    std::string log;
    const auto hook = connection->onEndTurn([&] { log += "."; });
    const auto handler = connection->onEvent([&](const Connection::Event& event) {
        if (eventType(event) != XCB_KEY_PRESS)
            return;
        log += "p";
        (void)connection->xcb();
    });

    press(1);
    press(2);
    connection->dispatch();

    EXPECT_EQ(log, "p.p.");
}

TEST_F(ConnectionTest, ATurnBegunOutsideAnEventEndsAtTheNextTurnOfTheQueue) {
    int ends = 0;
    const auto hook = connection->onEndTurn([&] { ++ends; });
    const auto turn = connection->turn();
    (void)connection->xcb();
    (void)connection->xcb();
    EXPECT_EQ(ends, 0);

    settleQueue();

    EXPECT_EQ(ends, 1);
    EXPECT_EQ(connection->turn(), turn + 1);
}

TEST_F(ConnectionTest, ARequestWithoutATurnSchedulesNothing) {
    const auto turn = connection->turn();

    const auto focus =
        connection->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(connection->xcbWithoutTurn()));
    connection->flush();

    EXPECT_NE(focus, nullptr);
    EXPECT_EQ(queue.waiting(), 0U);
    EXPECT_EQ(connection->turn(), turn);
}

TEST_F(ConnectionTest, AHookThatUsesTheConnectionBeginsNoFurtherTurn) {
    const auto hook = connection->onEndTurn([&] { roundTrip(); });
    (void)connection->xcb();

    queue.runTurn();

    EXPECT_EQ(queue.waiting(), 0U);
}

TEST_F(ConnectionTest, WithoutEventsNothingIsScheduled) {
    connection->dispatch();

    EXPECT_EQ(queue.waiting(), 0U);
}

TEST_F(ConnectionTest, PipelinedRequestsAreOneRoundTrip) {
    const auto before = connection->roundTrips();
    const auto first = xcb_get_geometry(connection->xcb(), connection->root());
    const auto second = xcb_get_geometry(connection->xcb(), connection->root());

    EXPECT_TRUE(connection->reply<xcb_get_geometry_reply>(first));
    EXPECT_TRUE(connection->reply<xcb_get_geometry_reply>(second));
    EXPECT_EQ(connection->roundTrips(), before + 1);

    roundTrip();
    EXPECT_EQ(connection->roundTrips(), before + 2);
}

TEST_F(ConnectionTest, AFailedRequestGivesNoReplyAndDoesNoHarm) {
    constexpr xcb_window_t kNoSuchWindow = 1;

    EXPECT_FALSE(
        connection->reply<xcb_get_geometry_reply>(xcb_get_geometry(connection->xcb(), kNoSuchWindow)));
    EXPECT_FALSE(connection->succeeds(xcb_map_window_checked(connection->xcb(), kNoSuchWindow)));
    xcb_map_window(connection->xcb(), kNoSuchWindow);
    roundTrip();
    connection->dispatch();

    EXPECT_TRUE(connection->succeeds(xcb_map_window_checked(connection->xcb(), connection->root())));
    EXPECT_FALSE(connection->isLost());
}

TEST_F(ConnectionTest, ALostServerIsReportedOnce) {
    int losses = 0;
    const auto lost = connection->onLost([&] { ++losses; });
    server.kill();

    connection->dispatch();
    connection->dispatch();
    settleQueue();

    EXPECT_EQ(losses, 1);
    EXPECT_TRUE(connection->isLost());
}

TEST_F(ConnectionTest, ALossNoticedByAReadIsReportedThroughTheQueue) {
    int losses = 0;
    const auto lost = connection->onLost([&] { ++losses; });
    server.kill();

    roundTrip();
    EXPECT_EQ(losses, 0);
    settleQueue();

    EXPECT_EQ(losses, 1);
}

TEST_F(ConnectionTest, WithoutAServerEverythingIsEmptyAndNothingHangs) {
    server.kill();

    EXPECT_FALSE(
        connection->reply<xcb_get_geometry_reply>(xcb_get_geometry(connection->xcb(), connection->root())));
    EXPECT_EQ(connection->internAtom("PRIMARY"), xcb_atom_t{XCB_ATOM_NONE});
    EXPECT_FALSE(connection->succeeds(xcb_map_window_checked(connection->xcb(), connection->root())));
    EXPECT_FALSE(connection->waitFor([](const Connection::Event&) { return true; }, 1h));
    connection->flush();
    settleQueue();
}

TEST_F(ConnectionTest, WorkOnTheQueueMayOutliveTheConnection) {
    press(1);
    roundTrip();
    ASSERT_GT(queue.waiting(), 0U);

    connection.reset();
    settleQueue();
}

} // namespace
} // namespace tessarel::x11
