// SPDX-License-Identifier: MIT

#include "platform/x11/server/command_channel.h"

#include "platform/x11/event_loop.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tessarel::x11 {
namespace {

using Words = std::vector<std::string>;
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

    /// Sends the channel the message that names `sender`.
    void send(xcb_window_t sender, std::string_view type = "_TESSAREL_COMMAND") {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = observer.values(observer.root(), "_TESSAREL_COMMANDS").at(0);
        message.type = observer.x().atom(type);
        message.data.data32[0] = sender;
        xcb_send_event(x(), 0, message.window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&message));
        observer.x().roundTrip();
        loop.settle();
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
    EXPECT_EQ(observer.text(sender, "_TESSAREL_ANSWER"), "\x04"
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
    const xcb_window_t gone = newWindow();
    xcb_destroy_window(x(), gone);

    for (const xcb_window_t sender : {nothing, otherType, tooLong, gone, xcb_window_t{XCB_WINDOW_NONE}})
        send(sender);

    EXPECT_EQ(received, std::vector<Words>(5));
}

TEST_F(CommandChannelTest, TheLongestCommandIsReadWhole) {
    loop.settle();
    const xcb_window_t sender = newWindow();
    const std::string word(kLongestCommand, 'a');
    set(sender, "UTF8_STRING", word);

    send(sender);

    EXPECT_EQ(received, (std::vector<Words>{{word}}));
}

TEST_F(CommandChannelTest, OtherMessagesAreIgnored) {
    loop.settle();

    send(newWindow(), "_TESSAREL_ANSWER");

    EXPECT_TRUE(received.empty());
}

TEST_F(CommandChannelTest, AnEndedChannelLeavesNothingBehind) {
    loop.settle();
    channel.reset();
    loop.settle();

    EXPECT_TRUE(observer.values(observer.root(), "_TESSAREL_COMMANDS").empty());
    EXPECT_EQ(sendCommand(loop.connection(), {"quit"}).outcome, SentCommand::Outcome::NoReceiver);
}

TEST_F(CommandChannelTest, AnEndedChannelKeepsTheOneThatHasReplacedIt) {
    const CommandChannel next(loop.connection(), [](const Words&) { return CommandAnswer{}; });
    loop.settle();
    const auto window = observer.values(observer.root(), "_TESSAREL_COMMANDS");

    channel.reset();
    loop.settle();

    EXPECT_EQ(observer.values(observer.root(), "_TESSAREL_COMMANDS"), window);
}

/// A sender, whose receiver runs in another thread.
class SendCommandTest : public CommandChannelTest {
protected:
    SendCommandTest() { channel.reset(); }

    EventLoop sender{server.display()};
};

TEST_F(SendCommandTest, WithoutAChannelThereIsNoReceiver) {
    EXPECT_EQ(sendCommand(sender.connection(), {"quit"}).outcome, SentCommand::Outcome::NoReceiver);
}

TEST_F(SendCommandTest, AWindowThatIsNoChannelIsNoReceiver) {
    loop.settle();
    const xcb_window_t other = newWindow();
    xcb_change_property(x(), XCB_PROP_MODE_REPLACE, observer.root(), observer.x().atom("_TESSAREL_COMMANDS"),
                        XCB_ATOM_WINDOW, 32, 1, &other);
    observer.x().roundTrip();

    EXPECT_EQ(sendCommand(sender.connection(), {"quit"}).outcome, SentCommand::Outcome::NoReceiver);
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

    const SentCommand sent = sendCommand(sender.connection(), {"pause", "on", ""});
    receiver.join();

    EXPECT_EQ(sent.outcome, SentCommand::Outcome::Answered);
    EXPECT_EQ(sent.answer, answer);
    EXPECT_EQ(received, (std::vector<Words>{{"pause", "on", ""}}));
}

TEST_F(SendCommandTest, AReceiverThatEndsDoesNotAnswer) {
    const xcb_window_t window = newWindow();
    for (const xcb_window_t place : {window, observer.root()})
        xcb_change_property(x(), XCB_PROP_MODE_REPLACE, place, observer.x().atom("_TESSAREL_COMMANDS"),
                            XCB_ATOM_WINDOW, 32, 1, &window);
    observer.x().roundTrip();
    std::thread receiver([this, window] {
        while (const auto event = own(xcb_wait_for_event(x()))) {
            if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE)
                break;
        }
        xcb_destroy_window(x(), window);
        xcb_flush(x());
    });

    const auto begin = std::chrono::steady_clock::now();
    const SentCommand sent = sendCommand(sender.connection(), {"quit"});
    receiver.join();

    EXPECT_EQ(sent.outcome, SentCommand::Outcome::NoAnswer);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kCommandPatience);
}

} // namespace
} // namespace tessarel::x11
