// SPDX-License-Identifier: MIT

#include "platform/x11/instance/command_channel.h"

#include "platform/x11/event_loop.h"
#include "platform/x11/instance/command_sender.h"
#include "platform/x11/server/server_time.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace tessarel::x11 {
namespace {

using Words = std::vector<std::string>;

constexpr std::size_t kMebibyte = std::size_t{1} << 20U;
using x11test::own;

/// A channel, and another client of the server that speaks to it by hand.
class CommandChannelTest : public testing::Test {
protected:
    [[nodiscard]] xcb_connection_t* x() { return observer.x().get(); }

    [[nodiscard]] xcb_window_t newWindow() {
        const xcb_window_t window = xcb_generate_id(x());
        xcb_create_window(x(), XCB_COPY_FROM_PARENT, window, observer.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        return window;
    }

    void set(xcb_window_t window, std::string_view type, std::string_view value) {
        xcb_change_property(x(), XCB_PROP_MODE_REPLACE, window, observer.x().atom("_TESSAREL_COMMAND"),
                            observer.x().atom(type), 8, static_cast<std::uint32_t>(value.size()),
                            value.data());
    }

    [[nodiscard]] xcb_atom_t selection() { return observer.x().atom("_TESSAREL_COMMANDS_S0"); }

    [[nodiscard]] xcb_window_t receiver() { return observer.selectionOwner("_TESSAREL_COMMANDS_S0"); }

    /// Sends the channel the command that stands on `sender`.
    void send(xcb_window_t sender, std::string_view target = "_TESSAREL_COMMAND",
              std::string_view property = "_TESSAREL_COMMAND") {
        xcb_convert_selection(x(), sender, selection(), observer.x().atom(target),
                              observer.x().atom(property), XCB_CURRENT_TIME);
        observer.x().roundTrip();
        loop.settle(); // handles the command
        loop.settle(); // until the server has the answer
    }

    /// Waits for the next event of that type.
    auto next(std::uint8_t type) {
        auto event = own(xcb_wait_for_event(x()));
        while (event && (event->response_type & 0x7F) != type)
            event = own(xcb_wait_for_event(x()));
        return event;
    }

    x11test::XServer server;
    x11test::Observer observer{server.display()};
    EventLoop loop{server.display()};
    std::vector<Words> received;
    CommandAnswer answer{4, "because"};
    std::optional<CommandChannel> channel{std::in_place, loop.connection(), [this](const Words& words) {
                                              received.push_back(words);
                                              return answer;
                                          }};
};

TEST_F(CommandChannelTest, ACommandIsAnsweredOnTheWindowOfItsSender) {
    loop.settle();
    const xcb_window_t sender = newWindow();
    using namespace std::string_view_literals;
    set(sender, "UTF8_STRING", "layout\0My \xC3\xA9 desk\0"sv);

    send(sender);

    EXPECT_EQ(received, (std::vector<Words>{{"layout", "My \xC3\xA9 desk"}}));
    EXPECT_EQ(observer.text(sender, "_TESSAREL_COMMAND"), "\x04"
                                                          "because");
}

TEST_F(CommandChannelTest, WordsMayBeEmpty) {
    loop.settle();
    const xcb_window_t sender = newWindow();
    using namespace std::string_view_literals;
    set(sender, "UTF8_STRING", "\0a\0\0"sv);

    send(sender);

    EXPECT_EQ(received, (std::vector<Words>{{"", "a", ""}}));
}

TEST_F(CommandChannelTest, WhatIsNoCommandHasNoWords) {
    loop.settle();
    const xcb_window_t nothing = newWindow();
    const xcb_window_t otherType = newWindow();
    set(otherType, "STRING", "quit");
    const xcb_window_t tooLong = newWindow();
    set(tooLong, "UTF8_STRING", std::string(kLongestCommand + 1, 'a'));

    for (const xcb_window_t sender : {nothing, otherType, tooLong})
        send(sender);

    EXPECT_EQ(received, std::vector<Words>(3));
}

TEST_F(CommandChannelTest, TheLongestCommandIsReadWhole) {
    loop.settle();
    const xcb_window_t sender = newWindow();
    const std::string word(kLongestCommand, 'a');
    set(sender, "UTF8_STRING", word);

    send(sender);

    EXPECT_EQ(received, (std::vector<Words>{{word}}));
}

TEST_F(CommandChannelTest, AnAnswerIsCutAtOneMebibyte) {
    loop.settle();
    const xcb_window_t sender = newWindow();
    set(sender, "UTF8_STRING", "list");
    answer.text = std::string(2 * kMebibyte, 'x');

    send(sender);

    constexpr std::uint32_t kUnit = 4;
    const auto reply = own(xcb_get_property_reply(
        x(), xcb_get_property(x(), 0, sender, observer.x().atom("_TESSAREL_COMMAND"), XCB_ATOM_ANY, 0, 1),
        nullptr));
    ASSERT_TRUE(reply);
    EXPECT_EQ(kUnit + reply->bytes_after, kMebibyte);
}

TEST_F(CommandChannelTest, ASenderThatIsGoneHasSentNoWords) {
    loop.settle();
    const xcb_window_t sender = newWindow();
    set(sender, "UTF8_STRING", "quit");
    xcb_convert_selection(x(), sender, selection(), observer.x().atom("_TESSAREL_COMMAND"),
                          observer.x().atom("_TESSAREL_COMMAND"), XCB_CURRENT_TIME);
    xcb_destroy_window(x(), sender);
    observer.x().roundTrip();

    loop.settle();

    EXPECT_EQ(received, std::vector<Words>(1));
}

TEST_F(CommandChannelTest, OtherConversionsAreRefused) {
    loop.settle();
    const xcb_window_t sender = newWindow();
    set(sender, "UTF8_STRING", "quit");
    using Conversion = std::pair<std::string_view, std::string_view>;

    for (const auto& [target, property] :
         {Conversion("TARGETS", "_TESSAREL_COMMAND"), Conversion("_TESSAREL_COMMAND", "WM_NAME")}) {
        send(sender, target, property);
        const auto refusal = next(XCB_SELECTION_NOTIFY);
        ASSERT_TRUE(refusal);
        EXPECT_EQ(reinterpret_cast<const xcb_selection_notify_event_t&>(*refusal).property,
                  xcb_atom_t{XCB_ATOM_NONE});
    }

    EXPECT_TRUE(received.empty());
    EXPECT_EQ(observer.text(sender, "_TESSAREL_COMMAND"), "quit");
}

TEST_F(CommandChannelTest, ACommandThatIsSentAgainBeforeItsAnswerIsCarriedOutOnce) {
    loop.settle();
    const xcb_window_t sender = newWindow();
    set(sender, "UTF8_STRING", "quit");
    for (int i = 0; i < 1000; ++i)
        xcb_convert_selection(x(), sender, selection(), observer.x().atom("_TESSAREL_COMMAND"),
                              observer.x().atom("_TESSAREL_COMMAND"), XCB_CURRENT_TIME);
    observer.x().roundTrip();

    loop.settle();

    EXPECT_EQ(received, (std::vector<Words>{{"quit"}}));
}

TEST_F(CommandChannelTest, ASelectionThatAnotherClientTakesIsTakenBack) {
    loop.settle();
    const xcb_window_t channelsWindow = receiver();
    const xcb_window_t sender = newWindow();
    set(sender, "UTF8_STRING", "quit");

    xcb_set_selection_owner(x(), newWindow(), selection(), XCB_CURRENT_TIME);
    observer.x().roundTrip();
    loop.settle();
    loop.settle(); // until the server has the claim

    EXPECT_EQ(receiver(), channelsWindow);
    send(sender);
    EXPECT_EQ(received, (std::vector<Words>{{"quit"}}));
}

TEST_F(CommandChannelTest, ASelectionThatIsTakenAgainBeforeTheLossIsSeenIsTakenBack) {
    loop.settle();
    const xcb_window_t channelsWindow = receiver();
    const xcb_timestamp_t start = serverTime(loop.connection());
    while (serverTime(loop.connection()) < start + 2) {
    } // until both times have passed

    xcb_set_selection_owner(x(), newWindow(), selection(), start + 1);
    xcb_set_selection_owner(x(), newWindow(), selection(), start + 2);
    observer.x().roundTrip();
    loop.settle();
    loop.settle(); // until the server has the claim

    EXPECT_EQ(receiver(), channelsWindow);
}

TEST_F(CommandChannelTest, AnotherClientThatTakesTheSelectionEachTimeGetsItInTheEnd) {
    loop.settle();
    const xcb_window_t channelsWindow = receiver();
    const xcb_window_t other = newWindow();

    int returns = -1;
    do {
        xcb_set_selection_owner(x(), other, selection(), XCB_CURRENT_TIME);
        observer.x().roundTrip();
        loop.settle();
        loop.settle(); // until the server has the claim
        ++returns;
    } while (receiver() == channelsWindow && returns <= CommandChannel::kMostReturns);

    EXPECT_EQ(returns, CommandChannel::kMostReturns);
    EXPECT_EQ(receiver(), other);
}

TEST_F(CommandChannelTest, WhatIsReadAheadComesInTheRoundTripOfTheCommand) {
    Connection& connection = loop.connection();
    std::size_t before = 0;
    std::size_t after = 0;
    channel.reset();
    channel.emplace(
        connection,
        [&](const Words& words) {
            after = connection.roundTrips();
            received.push_back(words);
            return answer;
        },
        [&] {
            before = connection.roundTrips();
            EXPECT_TRUE(connection.reply<xcb_get_geometry_reply>(
                xcb_get_geometry(connection.xcb(), connection.root())));
        });
    loop.settle();
    const xcb_window_t sender = newWindow();
    using namespace std::string_view_literals;
    set(sender, "UTF8_STRING", "restore\0"sv);

    send(sender);

    EXPECT_EQ(received, (std::vector<Words>{{"restore"}}));
    EXPECT_EQ(after - before, 1U);
}

TEST_F(CommandChannelTest, AnEndedChannelLeavesNothingBehind) {
    loop.settle();
    channel.reset();
    loop.settle();

    EXPECT_EQ(receiver(), xcb_window_t{XCB_WINDOW_NONE});
    EXPECT_EQ(sendCommand(server.display().c_str(), {"quit"}).outcome, SentCommand::Outcome::NoReceiver);
}

TEST_F(CommandChannelTest, AnEndedChannelKeepsTheOneThatHasReplacedIt) {
    loop.settle();
    const xcb_window_t first = receiver();
    const CommandChannel next(loop.connection(), [](const Words&) { return CommandAnswer{}; });
    loop.settle();
    const xcb_window_t second = receiver();

    channel.reset();
    loop.settle();

    EXPECT_NE(first, second);
    EXPECT_EQ(receiver(), second);
}

/// A sender, whose receiver runs in another thread.
class SendCommandTest : public CommandChannelTest {
protected:
    SendCommandTest() { channel.reset(); }

    [[nodiscard]] SentCommand sendFromHere(const Words& words) const {
        return sendCommand(server.display().c_str(), words);
    }
};

TEST_F(SendCommandTest, WithoutAChannelThereIsNoReceiver) {
    EXPECT_EQ(sendFromHere({"quit"}).outcome, SentCommand::Outcome::NoReceiver);
}

TEST_F(SendCommandTest, WithoutADisplayThereIsNoDesktop) {
    const SentCommand sent = sendCommand(":no-display", {"quit"});

    EXPECT_EQ(sent.outcome, SentCommand::Outcome::NoDesktop);
    EXPECT_EQ(sent.answer.text, "cannot open the X display: The X display \":no-display\" does not answer.");
}

TEST_F(SendCommandTest, TheAnswerOfTheReceiverArrives) {
    channel.emplace(loop.connection(), [this](const Words& words) {
        received.push_back(words);
        return answer;
    });
    loop.settle();
    answer.text = std::string(100'000, 'x');
    std::thread receiver([this] {
        while (received.empty())
            loop.settle();
    });

    const SentCommand sent = sendFromHere({"pause", "on", ""});
    receiver.join();

    EXPECT_EQ(sent.outcome, SentCommand::Outcome::Answered);
    EXPECT_EQ(sent.answer, answer);
    EXPECT_EQ(received, (std::vector<Words>{{"pause", "on", ""}}));
}

TEST_F(SendCommandTest, NoMoreThanOneMebibyteOfAnAnswerIsRead) {
    const xcb_window_t window = newWindow();
    xcb_set_selection_owner(x(), window, selection(), XCB_CURRENT_TIME);
    observer.x().roundTrip();
    std::thread receiver([this] {
        const auto event = next(XCB_SELECTION_REQUEST);
        const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(*event);
        set(request.requestor, "UTF8_STRING", std::string(2 * kMebibyte, '\0'));
        xcb_selection_notify_event_t notice{};
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.requestor = request.requestor;
        notice.property = request.property;
        xcb_send_event(x(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&notice));
        xcb_flush(x());
    });

    const SentCommand sent = sendFromHere({"list"});
    receiver.join();

    EXPECT_EQ(sent.outcome, SentCommand::Outcome::Answered);
    EXPECT_EQ(1 + sent.answer.text.size(), kMebibyte);
}

TEST_F(SendCommandTest, AReceiverThatRefusesDoesNotAnswer) {
    const xcb_window_t window = newWindow();
    xcb_set_selection_owner(x(), window, selection(), XCB_CURRENT_TIME);
    observer.x().roundTrip();
    std::thread receiver([this] {
        const auto request = next(XCB_SELECTION_REQUEST);
        xcb_selection_notify_event_t refusal{};
        refusal.response_type = XCB_SELECTION_NOTIFY;
        refusal.requestor = reinterpret_cast<const xcb_selection_request_event_t&>(*request).requestor;
        xcb_send_event(x(), 0, refusal.requestor, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&refusal));
        xcb_flush(x());
    });

    const auto begin = std::chrono::steady_clock::now();
    const SentCommand sent = sendFromHere({"quit"});
    receiver.join();

    EXPECT_EQ(sent.outcome, SentCommand::Outcome::NoAnswer);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kCommandPatience);
}

TEST_F(SendCommandTest, AReceiverThatEndsDoesNotAnswer) {
    const xcb_window_t window = newWindow();
    xcb_set_selection_owner(x(), window, selection(), XCB_CURRENT_TIME);
    observer.x().roundTrip();
    std::thread receiver([this, window] {
        next(XCB_SELECTION_REQUEST);
        xcb_destroy_window(x(), window);
        xcb_flush(x());
    });

    const auto begin = std::chrono::steady_clock::now();
    const SentCommand sent = sendFromHere({"quit"});
    receiver.join();

    EXPECT_EQ(sent.outcome, SentCommand::Outcome::NoAnswer);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kCommandPatience);
}

} // namespace
} // namespace tessarel::x11
