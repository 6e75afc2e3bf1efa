// SPDX-License-Identifier: MIT

#include "macos/mac_test.h"
#include "model/config.h"
#include "platform/macos/shell/command_channel.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::macos {
namespace {

using Words = std::vector<std::string>;
using fakemac::NotificationContents;
using fakemac::NotificationValue;
using Outcome = SentCommand::Outcome;

/// A channel that records its commands, in an application that another process of the session can see.
class MacCommandChannelTest : public MacTest {
protected:
    static constexpr ProcessId kCopy = 100;
    static constexpr ProcessId kSender = 200;

    MacCommandChannelTest() {
        fakemac::launch(kCopy, {.bundleIdentifier = std::string(Config::bundleID)});
        fakemac::mac().ownPid = kSender;
    }
    ~MacCommandChannelTest() override { channel.reset(); }

    [[nodiscard]] static std::string named(const char* end) { return std::string(Config::bundleID) + end; }

    static void request(const NotificationValue& words) {
        fakemac::postFromOutside(named(".command"), {{"token", {"T"}}, {"words", words}});
    }
    [[nodiscard]] static NotificationValue texts(const Words& words) {
        std::vector<NotificationValue> values;
        for (const std::string& word : words)
            values.push_back({word});
        return {std::move(values)};
    }

    CommandAnswer answer{4, "because"};
    std::vector<Words> received;
    std::optional<MacCommandChannel> channel{[this](const Words& words) {
        received.push_back(words);
        return answer;
    }};
};

TEST_F(MacCommandChannelTest, ACommandArrivesAndItsAnswerReturns) {
    answer = {4, "line 1\nline 2 \xC3\xA4"};

    const SentCommand sent = sendCommand({"layout", "My desk \xC3\xA4", ""});

    EXPECT_EQ(received, (std::vector<Words>{{"layout", "My desk \xC3\xA4", ""}}));
    EXPECT_EQ(sent.outcome, Outcome::Answered);
    EXPECT_EQ(sent.answer, answer);
}

TEST_F(MacCommandChannelTest, WithoutACopyThereIsNoReceiver) {
    fakemac::mac().applications.erase(kCopy);
    fakemac::launch(kSender, {.bundleIdentifier = std::string(Config::bundleID)}); // not another one

    EXPECT_EQ(sendCommand({"quit"}).outcome, Outcome::NoReceiver);
    EXPECT_EQ(fakemac::notificationsOnTheWay(), Lines());
}

TEST_F(MacCommandChannelTest, ACopyThatDoesNotAnswerIsGivenUp) {
    channel.reset();

    EXPECT_EQ(sendCommand({"quit"}).outcome, Outcome::NoAnswer);
}

TEST_F(MacCommandChannelTest, TheAnswerToAnotherCommandIsIgnored) {
    channel.reset();
    for (const NotificationContents& contents : {NotificationContents{},
                                                 {{"token", {"T"}}, {"exitCode", {0.0}}, {"text", {""}}},
                                                 {{"token", {1.0}}, {"exitCode", {0.0}}, {"text", {""}}}})
        fakemac::postFromOutside(named(".answer"), contents);

    EXPECT_EQ(sendCommand({"quit"}).outcome, Outcome::NoAnswer);
}

TEST_F(MacCommandChannelTest, ARequestOfAnotherProcessIsAnswered) {
    request(texts({"zone-1"}));
    turn();

    EXPECT_EQ(received, (std::vector<Words>{{"zone-1"}}));
    EXPECT_EQ(fakemac::notificationsOnTheWay(), Lines{named(".answer")});
}

TEST_F(MacCommandChannelTest, WordsOfAnotherFormAreNoWords) {
    const std::string half(kLongestCommand / 2, 'x');
    const std::vector<NotificationValue> forms{
        {"zone-1"},
        {std::vector<NotificationValue>{{1.0}}},
        {std::vector<NotificationValue>{{"zone-1"}, {std::vector<NotificationValue>{}}}},
        texts(Words(kLongestCommand / 2 + 1, "a")),
        texts({half, half})};
    for (const NotificationValue& words : forms)
        request(words);
    fakemac::postFromOutside(named(".command"), {{"token", {"T"}}});
    turn();

    EXPECT_EQ(received, std::vector<Words>(forms.size() + 1));
}

TEST_F(MacCommandChannelTest, TheLongestCommandArrives) {
    const std::string word(kLongestCommand - 1, 'a');

    EXPECT_EQ(sendCommand({word}).outcome, Outcome::Answered);
    EXPECT_EQ(sendCommand({word + "a"}).outcome, Outcome::Answered);

    EXPECT_EQ(received, (std::vector<Words>{{word}, {}}));
}

TEST_F(MacCommandChannelTest, ARequestWithoutAUsableTokenIsIgnored) {
    const NotificationValue words = texts({"quit"});
    fakemac::postFromOutside(named(".command"), {{"words", words}});
    fakemac::postFromOutside(named(".command"), {{"words", words}, {"token", {1.0}}});
    fakemac::postFromOutside(named(".command"), {{"words", words}, {"token", {std::string(257, 'x')}}});
    fakemac::postFromOutside(named(".command"), {});
    turn();

    EXPECT_EQ(received, std::vector<Words>());
    EXPECT_EQ(fakemac::notificationsOnTheWay(), Lines());
}

TEST_F(MacCommandChannelTest, AChannelThatHasEndedReceivesNothing) {
    channel.reset();
    request(texts({"quit"}));
    turn();

    EXPECT_EQ(received, std::vector<Words>());
}

} // namespace
} // namespace tessarel::macos
