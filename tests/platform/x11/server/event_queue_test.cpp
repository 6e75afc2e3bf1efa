// SPDX-License-Identifier: MIT

#include "platform/x11/server/event_queue.h"

#include "platform/x11/server/event.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace tessarel::x11 {
namespace {

constexpr xcb_window_t kRoot = 1;
constexpr xcb_window_t kWindow = 2;
constexpr xcb_atom_t kClientList = 300;
constexpr xcb_atom_t kTitle = 301;
constexpr std::uint8_t kSentByClient = 0x80;
constexpr std::uint8_t kKeyboardEvent = 85; // an event of the XKB extension

template <class Specific>
Reply<xcb_generic_event_t> made(std::uint8_t type, const Specific& specific = {}) {
    auto* const event = static_cast<Specific*>(std::calloc(1, sizeof(xcb_ge_generic_event_t)));
    *event = specific;
    event->response_type = type;
    return Reply<xcb_generic_event_t>(reinterpret_cast<xcb_generic_event_t*>(event));
}

Reply<xcb_generic_event_t> property(xcb_window_t window, xcb_atom_t atom) {
    xcb_property_notify_event_t event{};
    event.window = window;
    event.atom = atom;
    return made(XCB_PROPERTY_NOTIFY, event);
}

Reply<xcb_generic_event_t> configure(xcb_window_t window, std::uint8_t flag = 0) {
    xcb_configure_notify_event_t event{};
    event.window = window;
    return made(XCB_CONFIGURE_NOTIFY | flag, event);
}

Reply<xcb_generic_event_t> destroyed(xcb_window_t window) {
    xcb_destroy_notify_event_t event{};
    event.window = window;
    return made(XCB_DESTROY_NOTIFY, event);
}

Reply<xcb_generic_event_t> message(xcb_window_t window, std::uint32_t data) {
    xcb_client_message_event_t event{};
    event.window = window;
    event.data.data32[4] = data;
    return made(XCB_CLIENT_MESSAGE | kSentByClient, event);
}

Reply<xcb_generic_event_t> conversion(xcb_window_t requestor, xcb_atom_t target, xcb_timestamp_t time = 0) {
    xcb_selection_request_event_t event{};
    event.requestor = requestor;
    event.target = target;
    event.time = time;
    return made(XCB_SELECTION_REQUEST, event);
}

Reply<xcb_generic_event_t> plain(int type) {
    return made<xcb_generic_event_t>(static_cast<std::uint8_t>(type));
}

/// Returns a letter for each kind of event.
char letter(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_KEY_PRESS:
        return 'k';
    case XCB_KEY_RELEASE:
        return 'r';
    case XCB_GE_GENERIC:
        return 'm'; // a raw event of the mouse
    case XCB_MAPPING_NOTIFY:
    case kKeyboardEvent:
        return 'K';
    case XCB_PROPERTY_NOTIFY:
        return eventAs<xcb_property_notify_event_t>(event).atom == kClientList ? 'L' : 'p';
    case XCB_CONFIGURE_NOTIFY:
        return event.response_type == XCB_CONFIGURE_NOTIFY ? 'c' : 'C';
    case XCB_DESTROY_NOTIFY:
        return 'd';
    case XCB_CLIENT_MESSAGE:
        return 'M';
    case XCB_SELECTION_REQUEST:
        return 'S';
    default:
        return '?';
    }
}

class EventQueueTest : public ::testing::Test {
protected:
    /// Takes all events and returns their letters in the order of delivery.
    std::string takeAll() {
        std::string letters;
        while (const auto event = queue.take())
            letters += letter(*event);
        return letters;
    }

    EventQueue queue{{kRoot, {kClientList}}};
};

TEST_F(EventQueueTest, EqualNoticesAreDeliveredOnce) {
    for (int i = 0; i < 1000; ++i) {
        queue.add(property(kRoot, kTitle));
        queue.add(property(kRoot, kClientList));
        queue.add(configure(kWindow));
        queue.add(plain(XCB_MAPPING_NOTIFY));
        queue.add(plain(kKeyboardEvent));
    }

    EXPECT_EQ(queue.size(), 5U);
    EXPECT_EQ(takeAll(), "LKKpc");
    EXPECT_TRUE(queue.empty());
}

TEST_F(EventQueueTest, ANoticeThatIsBeingHandledIsQueuedAgain) {
    queue.add(property(kRoot, kTitle));
    const auto handled = queue.take();

    queue.add(property(kRoot, kTitle));

    EXPECT_EQ(takeAll(), "p");
}

TEST_F(EventQueueTest, NoticesAboutDifferentThingsAreAllDelivered) {
    queue.add(property(kRoot, kTitle));
    queue.add(property(kWindow, kTitle));
    queue.add(property(kWindow, kTitle + 1));
    queue.add(configure(kRoot));
    queue.add(configure(kWindow));
    queue.add(configure(kWindow, kSentByClient));

    EXPECT_EQ(takeAll(), "pppccC");
}

TEST_F(EventQueueTest, InputIsNeverMerged) {
    for (const int type : {XCB_KEY_PRESS, XCB_GE_GENERIC}) {
        queue.add(plain(type));
        queue.add(plain(type));
    }

    EXPECT_EQ(takeAll(), "kkmm");
}

TEST_F(EventQueueTest, EqualRequestsOfClientsAreDeliveredOnce) {
    for (int i = 0; i < 1000; ++i) {
        queue.add(message(kWindow, 0));
        queue.add(conversion(kWindow, kTitle));
    }

    EXPECT_EQ(takeAll(), "MS");
}

TEST_F(EventQueueTest, DifferentRequestsOfClientsAreAllDelivered) {
    queue.add(message(kWindow, 0));
    queue.add(message(kWindow, 1));
    queue.add(message(kRoot, 0));
    queue.add(conversion(kWindow, kTitle));
    queue.add(conversion(kRoot, kTitle));
    queue.add(conversion(kWindow, kTitle + 1));
    queue.add(conversion(kWindow, kTitle, 1)); // its reply is known by the time

    EXPECT_EQ(takeAll(), "MMMSSSS");
}

TEST_F(EventQueueTest, RequestsBeyondTheMostAreDroppedUntilSomeHaveBeenTaken) {
    for (std::uint32_t i = 0; i < EventQueue::kMostRequests; ++i)
        queue.add(i % 2 == 0 ? message(kWindow, i) : conversion(i, kTitle));
    const auto most = queue.size();

    queue.add(message(kRoot, 0));
    queue.add(conversion(kRoot, kClientList));
    queue.add(property(kRoot, kTitle));

    EXPECT_EQ(most, EventQueue::kMostRequests);
    EXPECT_EQ(queue.size(), most + 1);
    EXPECT_TRUE(queue.take());
    queue.add(message(kRoot, 0));
    queue.add(conversion(kRoot, kClientList));
    EXPECT_EQ(queue.size(), most + 1);
}

TEST_F(EventQueueTest, InputOvertakesWhatItDoesNotDependOn) {
    queue.add(property(kWindow, kTitle));
    queue.add(configure(kWindow));
    queue.add(plain(XCB_CLIENT_MESSAGE | kSentByClient));
    queue.add(plain(XCB_KEY_PRESS));
    queue.add(plain(XCB_GE_GENERIC));
    queue.add(plain(XCB_KEY_RELEASE));

    EXPECT_EQ(takeAll(), "kmrpcM");
}

TEST_F(EventQueueTest, ChangesOfTheKeyboardAndOfTheClientListStayBeforeTheKeysThatFollow) {
    queue.add(plain(XCB_KEY_PRESS));
    queue.add(plain(XCB_MAPPING_NOTIFY));
    queue.add(plain(XCB_KEY_RELEASE));
    queue.add(plain(kKeyboardEvent));
    queue.add(property(kRoot, kClientList));
    queue.add(plain(XCB_KEY_PRESS));

    EXPECT_EQ(takeAll(), "kKrKLk");
}

TEST_F(EventQueueTest, AClientListOfAnotherWindowIsNotUrgent) {
    queue.add(property(kWindow, kClientList));
    queue.add(plain(XCB_KEY_PRESS));

    EXPECT_EQ(takeAll(), "kL");
}

TEST_F(EventQueueTest, ANoticeAfterTheEndOfAWindowIsNotMergedWithOneFromBefore) {
    queue.add(configure(kWindow));
    queue.add(property(kWindow, kTitle));
    queue.add(destroyed(kWindow));
    queue.add(configure(kWindow));
    queue.add(property(kWindow, kTitle));

    EXPECT_EQ(takeAll(), "cpdcp");
}

TEST_F(EventQueueTest, UrgentEventsDoNotHoldUpTheOthersForEver) {
    queue.add(property(kWindow, kTitle));
    std::string letters;
    while (letters.find('p') == std::string::npos && letters.size() < 1000) {
        queue.add(plain(XCB_KEY_PRESS));
        queue.add(plain(XCB_KEY_PRESS));
        letters += letter(*queue.take());
    }

    EXPECT_EQ(letters, std::string(EventQueue::kMostInARow, 'k') + "p");
}

TEST(ForgedEventTest, OnlyMessagesAndFramesAreAcceptedFromClients) {
    for (const int type : {XCB_KEY_PRESS, XCB_PROPERTY_NOTIFY, XCB_MAPPING_NOTIFY, XCB_DESTROY_NOTIFY,
                           XCB_SELECTION_CLEAR, int{kKeyboardEvent}}) {
        EXPECT_TRUE(isForged(*plain(type | kSentByClient))) << type;
        EXPECT_FALSE(isForged(*plain(type))) << type;
    }
    for (const int type : {XCB_CLIENT_MESSAGE, XCB_CONFIGURE_NOTIFY})
        EXPECT_FALSE(isForged(*plain(type | kSentByClient))) << type;
}

} // namespace
} // namespace tessarel::x11
