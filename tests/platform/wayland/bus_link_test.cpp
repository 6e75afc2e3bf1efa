// SPDX-License-Identifier: MIT

#include "platform/wayland/bus_link.h"

#include "support/scratch_folder.h"
#include "support/x11/child_process.h"

#include <gmock/gmock.h>

#include <csignal>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>

namespace tessarel::wayland {
namespace {

using testing::ElementsAre;
using Delivery = BusLink::Delivery;

/// A socket to which anybody can connect, and which never replies.
class SilentBus {
public:
    explicit SilentBus(const std::string& path) : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(m_socket.get(), 1), 0);
    }

private:
    x11test::FileDescriptor m_socket;
};

class BusLinkTest : public testing::Test {
protected:
    void startBus() {
        daemon.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                                "--print-address", "--address=" + address});
        (void)daemon->readLine();
    }

    static bool isConnected(BusLink& link) {
        return link.waitUntil([&] { return !link.uniqueName().empty(); }, x11test::kPatience);
    }

    /// Returns the reply to a call, or the error.
    static BusMessage replyTo(BusLink& link, BusCall call) {
        std::optional<BusMessage> reply;
        link.call(
            std::move(call), [&](const BusMessage& message) { reply = message; }, Delivery::Urgent);
        EXPECT_TRUE(link.waitUntil([&] { return reply.has_value(); }, x11test::kPatience));
        return reply.value_or(BusMessage());
    }

    static BusCall ofBus(const std::string& member) {
        return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member};
    }

    /// Waits until the link's thread has carried out everything that was asked of it before.
    static void roundTrip(BusLink& link) { (void)replyTo(link, ofBus("GetId")); }

    ScratchFolder folder;
    std::string address = "unix:path=" + (folder.path() / "bus").string();
    std::optional<x11test::ChildProcess> daemon;
};

TEST_F(BusLinkTest, ACallIsRepliedTo) {
    startBus();
    BusLink link(address);

    EXPECT_NE(replyTo(link, ofBus("GetId")).value<std::string>(0), "");
    EXPECT_EQ(replyTo(link, ofBus("NoSuchMember")).error, "org.freedesktop.DBus.Error.UnknownMethod");
}

TEST_F(BusLinkTest, TheNameOfTheConnectionIsKnownWithTheFirstReply) {
    startBus();
    std::vector<std::unique_ptr<BusLink>> links; // many at once, so that several messages arrive together
    int replies = 0;
    for (int connection = 0; connection < 50; ++connection) {
        links.push_back(std::make_unique<BusLink>(address));
        BusLink& link = *links.back();
        link.call(
            ofBus("GetId"),
            [&](const BusMessage&) {
                ++replies;
                EXPECT_NE(link.uniqueName(), "");
            },
            Delivery::Urgent);
    }

    for (int wanted = 1; const auto& link : links) {
        EXPECT_TRUE(link->waitUntil([&] { return replies == wanted; }, x11test::kPatience));
        ++wanted;
    }
}

TEST_F(BusLinkTest, ValuesOfAllTypesArriveAsTheyWereSent) {
    startBus();
    BusLink receiver(address);
    BusLink sender(address);
    ASSERT_TRUE(isConnected(receiver));
    std::vector<BusValue> values;
    const auto served = receiver.serve(
        "/object", [&](const BusMessage& message) { values = message.values; }, Delivery::Urgent);
    roundTrip(receiver); // the object is there
    const std::vector<BusValue> sent{std::string("text \xC3\xA9"), std::int64_t{-5}, std::int64_t{1},
                                     std::vector<std::string>{"", "two"}, std::vector<std::int64_t>{7, -8}};

    sender.call({receiver.uniqueName(), "/object", "org.example", "take", "sibasai", sent});

    EXPECT_TRUE(receiver.waitUntil([&] { return !values.empty(); }, x11test::kPatience));
    EXPECT_EQ(values, sent);
}

TEST_F(BusLinkTest, ACallWithoutAHandlerExpectsNoReply) {
    startBus();
    BusLink receiver(address);
    BusLink sender(address);
    ASSERT_TRUE(isConnected(receiver));
    std::vector<bool> expectsReply;
    const auto served = receiver.serve(
        "/object", [&](const BusMessage& message) { expectsReply.push_back(message.token != 0); },
        Delivery::Urgent);
    roundTrip(receiver); // the object is there

    sender.call({receiver.uniqueName(), "/object", "org.example", "hello"});
    sender.call({receiver.uniqueName(), "/object", "org.example", "hello"}, [](const BusMessage&) {});

    EXPECT_TRUE(receiver.waitUntil([&] { return expectsReply.size() == 2; }, x11test::kPatience));
    EXPECT_THAT(expectsReply, ElementsAre(false, true));
}

TEST_F(BusLinkTest, ACallWhoseValuesDoNotFitItsSignatureFails) {
    startBus();
    BusLink link(address);

    for (const auto& [signature, values] : std::vector<std::pair<std::string, std::vector<BusValue>>>{
             {"s", {}}, {"s", {std::int64_t{1}}}, {"d", {std::int64_t{1}}}, {"as", {std::string("one")}}}) {
        BusCall call = ofBus("GetId");
        call.signature = signature;
        call.values = values;
        EXPECT_EQ(replyTo(link, call).error, "unsendable") << signature;
    }
}

TEST_F(BusLinkTest, AnObjectIsServedUntilItsSubscriptionIsDestroyed) {
    startBus();
    BusLink server(address);
    BusLink client(address);
    ASSERT_TRUE(isConnected(server));
    bool isCalled = false;
    auto served = server.serve(
        "/object",
        [&](const BusMessage& message) {
            isCalled = true;
            server.answer(message.token, message.member + "!");
        },
        Delivery::Urgent);
    roundTrip(server); // the object is there
    std::optional<BusMessage> reply;
    const auto ask = [&] {
        reply.reset();
        client.call(
            {server.uniqueName(), "/object", "org.example", "hello"},
            [&](const BusMessage& message) { reply = message; }, Delivery::Urgent);
    };

    ask();
    EXPECT_TRUE(server.waitUntil([&] { return isCalled; }, x11test::kPatience));
    EXPECT_TRUE(client.waitUntil([&] { return reply.has_value(); }, x11test::kPatience));
    EXPECT_EQ(reply.value_or(BusMessage()).value<std::string>(0), "hello!");

    served.reset();
    roundTrip(server); // the object has gone
    ask();
    EXPECT_TRUE(client.waitUntil([&] { return reply.has_value(); }, x11test::kPatience));
    EXPECT_EQ(reply.value_or(BusMessage()).error, "org.freedesktop.DBus.Error.UnknownObject");
}

TEST_F(BusLinkTest, ARenewedCallTakesOverTheTokenOfTheEarlierOneWithoutACallOfTheHandler) {
    startBus();
    BusLink server(address);
    BusLink client(address);
    BusLink other(address);
    ASSERT_TRUE(isConnected(server));
    std::vector<std::uint64_t> tokens;
    const auto served = server.serve(
        "/object", [&](const BusMessage& message) { tokens.push_back(message.token); }, Delivery::Urgent,
        "wait");
    roundTrip(server); // the object is there
    std::vector<std::string> replies;
    const auto ask = [&](BusLink& caller, const std::string& name) {
        caller.call(
            {server.uniqueName(), "/object", "org.example", "wait"},
            [&, name](const BusMessage& reply) { replies.push_back(name + reply.value<std::string>(0)); },
            Delivery::Urgent);
    };
    const auto areCalled = [&](std::size_t count) {
        return server.waitUntil([&] { return tokens.size() == count; }, x11test::kPatience);
    };
    const auto areAnswered = [&](std::size_t count) {
        return client.waitUntil([&] { return replies.size() == count; }, x11test::kPatience);
    };

    ask(client, "first");
    ASSERT_TRUE(areCalled(1));
    ask(client, "second");
    EXPECT_TRUE(areAnswered(1));
    ask(other, "of another caller");
    ASSERT_TRUE(areCalled(2));
    server.answer(tokens.front(), "!");
    EXPECT_TRUE(areAnswered(2));
    ask(client, "third");
    ASSERT_TRUE(areCalled(3));

    EXPECT_THAT(replies, ElementsAre("first", "second!"));
}

TEST_F(BusLinkTest, OnlyUrgentMessagesAreHandledDuringAWaitAndTheOthersKeepTheirOrder) {
    startBus();
    BusLink link(address);
    std::vector<std::string> handled;
    const auto note = [&](const char* name) {
        return [&, name](const BusMessage&) { handled.push_back(name); };
    };

    link.call(ofBus("GetId"), note("first"));
    link.call(ofBus("GetId"), note("second"));
    link.call(ofBus("GetId"), note("urgent"), Delivery::Urgent);
    EXPECT_TRUE(link.waitUntil([&] { return !handled.empty(); }, x11test::kPatience));
    EXPECT_THAT(handled, ElementsAre("urgent"));
    link.dispatch();

    EXPECT_THAT(handled, ElementsAre("urgent", "first", "second"));
}

TEST_F(BusLinkTest, SignalsArriveUntilTheSubscriptionIsDestroyed) {
    startBus();
    BusLink link(address);
    std::vector<std::string> names;
    auto watched = link.onSignal(
        {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameAcquired"},
        [&](const BusMessage& message) { names.push_back(message.value<std::string>(0)); }, Delivery::Urgent);
    const auto claim = [&](const std::string& name) {
        BusCall call = ofBus("RequestName");
        call.signature = "su";
        call.values = {name, std::int64_t{0}};
        EXPECT_EQ(replyTo(link, call).value<std::int64_t>(0), 1);
    };

    claim("org.example.First");
    watched.reset();
    claim("org.example.Second");

    EXPECT_THAT(names, testing::Contains("org.example.First"));
    EXPECT_THAT(names, testing::Not(testing::Contains("org.example.Second")));
}

TEST_F(BusLinkTest, ABusThatNeverRepliesHoldsUpNothing) {
    const SilentBus silent(folder.path() / "bus");
    BusLink link(address);
    bool hasReply = false;
    link.call(
        ofBus("GetId"), [&](const BusMessage&) { hasReply = true; }, Delivery::Urgent);

    EXPECT_FALSE(link.waitUntil([&] { return hasReply || link.isLost(); }, std::chrono::milliseconds(20)));

    EXPECT_EQ(link.uniqueName(), "");
}

TEST_F(BusLinkTest, ABusThatStopsReplyingHoldsUpNoWait) {
    startBus();
    BusLink link(address);
    ASSERT_TRUE(isConnected(link));
    bool hasReply = false;

    daemon->signal(SIGSTOP);
    link.call(
        ofBus("GetId"), [&](const BusMessage&) { hasReply = true; }, Delivery::Urgent);
    EXPECT_FALSE(link.waitUntil([&] { return hasReply; }, std::chrono::milliseconds(20)));
    daemon->signal(SIGCONT);

    EXPECT_TRUE(link.waitUntil([&] { return hasReply; }, x11test::kPatience));
}

TEST_F(BusLinkTest, WithoutABusTheLinkIsLost) {
    for (const std::string& nowhere :
         {address, std::string(), std::string("nonsense"), std::string("unix:path=")}) {
        BusLink link(nowhere);

        EXPECT_TRUE(link.waitUntil([&] { return link.isLost(); }, x11test::kPatience)) << nowhere;
        EXPECT_NE(replyTo(link, ofBus("GetId")).error, "") << nowhere;
    }
}

TEST_F(BusLinkTest, TheEndOfTheBusIsReportedOnceAndFailsTheCalls) {
    startBus();
    BusLink link(address);
    ASSERT_TRUE(isConnected(link));
    int losses = 0;
    const auto lost = link.onLost([&] { ++losses; });
    BusMessage unanswered;
    daemon->signal(SIGSTOP);
    link.call(
        ofBus("GetId"), [&](const BusMessage& message) { unanswered = message; }, Delivery::Urgent);

    daemon->kill();

    EXPECT_TRUE(link.waitUntil([&] { return link.isLost(); }, x11test::kPatience));
    // The thread of the link may notice the end of the bus before the call.
    EXPECT_TRUE(link.waitUntil([&] { return !unanswered.error.empty(); }, x11test::kPatience));
    EXPECT_NE(replyTo(link, ofBus("GetId")).error, "");
    EXPECT_EQ(losses, 1);
}

TEST_F(BusLinkTest, ANewLinkReachesABusThatHasComeBack) {
    startBus();
    BusLink before(address);
    ASSERT_TRUE(isConnected(before));
    daemon->kill();
    EXPECT_TRUE(before.waitUntil([&] { return before.isLost(); }, x11test::kPatience));

    std::filesystem::remove(folder.path() / "bus");
    startBus();
    BusLink after(address);

    EXPECT_NE(replyTo(after, ofBus("GetId")).value<std::string>(0), "");
}

TEST_F(BusLinkTest, WhatWasSentBeforeTheEndOfTheLinkArrives) {
    startBus();
    BusLink receiver(address);
    ASSERT_TRUE(isConnected(receiver));
    std::string word;
    const auto served = receiver.serve(
        "/object", [&](const BusMessage& message) { word = message.value<std::string>(0); },
        Delivery::Urgent);
    roundTrip(receiver); // the object is there

    {
        BusLink sender(address);
        ASSERT_TRUE(isConnected(sender));
        sender.call({receiver.uniqueName(), "/object", "org.example", "take", "s", {std::string("goodbye")}});
    }

    EXPECT_TRUE(receiver.waitUntil([&] { return !word.empty(); }, x11test::kPatience));
    EXPECT_EQ(word, "goodbye");
}

} // namespace
} // namespace tessarel::wayland
