// SPDX-License-Identifier: MIT

#include "model/signal.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace tessarel {
namespace {

TEST(SignalTest, CallbacksAreCalledInTheOrderInWhichTheyWereConnected) {
    Signal<> signal;
    std::string called;
    const auto first = signal.connect([&] { called += "a"; });
    const auto second = signal.connect([&] { called += "b"; });

    signal.send();

    EXPECT_EQ(called, "ab");
}

TEST(SignalTest, ADisconnectedCallbackIsNotCalled) {
    Signal<> signal;
    int calls = 0;
    auto callback = signal.connect([&] { ++calls; });

    callback.reset();
    signal.send();

    EXPECT_EQ(calls, 0);
}

TEST(SignalTest, ACallbackMayDisconnectItselfAndLaterOnes) {
    Signal<> signal;
    int firstCalls = 0;
    int secondCalls = 0;
    SubscriptionPtr first;
    SubscriptionPtr second;
    first = signal.connect([&] {
        ++firstCalls;
        second.reset();
        first.reset();
    });
    second = signal.connect([&] { ++secondCalls; });

    signal.send();
    signal.send();

    EXPECT_EQ(firstCalls, 1);
    EXPECT_EQ(secondCalls, 0);
}

TEST(SignalTest, ACallbackConnectedDuringASendIsFirstCalledByTheNextSend) {
    Signal<> signal;
    int calls = 0;
    SubscriptionPtr added;
    const auto adder = signal.connect([&] {
        if (!added)
            added = signal.connect([&] { ++calls; });
    });

    signal.send();
    EXPECT_EQ(calls, 0);
    signal.send();
    EXPECT_EQ(calls, 1);
}

TEST(SignalTest, ACallbackThatDisconnectsItselfLivesUntilItReturns) {
    Signal<> signal;
    const auto held = std::make_shared<int>(0);
    SubscriptionPtr callback;
    long holders = 0;
    callback = signal.connect([&, held] {
        callback.reset();
        holders = held.use_count();
    });

    signal.send();

    EXPECT_EQ(holders, 2);
    EXPECT_EQ(held.use_count(), 1) << "the callback is destroyed once it has returned";
}

TEST(SignalTest, ACallbackMayDestroyTheSignal) {
    auto signal = std::make_unique<Signal<>>();
    int laterCalls = 0;
    const auto first = signal->connect([&] { signal.reset(); });
    const auto second = signal->connect([&] { ++laterCalls; });

    signal->send();

    EXPECT_EQ(laterCalls, 1) << "callbacks that are still connected are called";
}

TEST(SignalTest, ACallbackMaySendTheSignalAgain) {
    Signal<> signal;
    std::string called;
    const auto first = signal.connect([&] {
        called += "a";
        if (called == "a")
            signal.send();
    });
    const auto second = signal.connect([&] { called += "b"; });

    signal.send();

    EXPECT_EQ(called, "aabb");
}

TEST(SignalTest, DisconnectingOneCallbackLeavesTheOthersConnected) {
    Signal<> signal;
    std::string called;
    auto first = signal.connect([&] { called += "a"; });
    const auto second = signal.connect([&] { called += "b"; });

    first.reset();
    auto third = signal.connect([&] { called += "c"; });
    third.reset();
    signal.send();

    EXPECT_EQ(called, "b");
}

TEST(SignalTest, ASubscriptionMayOutliveTheSignal) {
    auto signal = std::make_unique<Signal<>>();
    auto callback = signal->connect([] {});

    signal.reset();
    callback.reset();
}

TEST(SignalTest, EveryCallbackGetsTheArguments) {
    Signal<int> signal;
    std::string called;
    const auto first = signal.connect([&](int number) { called += "a" + std::to_string(number); });
    const auto second = signal.connect([&](int number) { called += "b" + std::to_string(number); });

    signal.send(7);

    EXPECT_EQ(called, "a7b7");
}

TEST(SignalTest, ANestedSendSkipsDisconnectedCallbacks) {
    Signal<int> signal;
    std::string called;
    SubscriptionPtr second;
    const auto first = signal.connect([&](int depth) {
        called += "a";
        if (depth == 0) {
            second.reset();
            signal.send(1);
        }
    });
    second = signal.connect([&](int) { called += "b"; });

    signal.send(0);

    EXPECT_EQ(called, "aa");
}

TEST(SignalTest, ACallbackThatThrowsDoesNotAffectTheNextSend) {
    Signal<> signal;
    int calls = 0;
    SubscriptionPtr throwing = signal.connect([] { throw std::runtime_error("of a test"); });
    const auto other = signal.connect([&] { ++calls; });

    EXPECT_THROW(signal.send(), std::runtime_error);
    EXPECT_EQ(calls, 0);
    throwing.reset();
    signal.send();

    EXPECT_EQ(calls, 1);
}

TEST(SignalTest, ConnectedCallbacksAreCounted) {
    Signal<> signal;
    EXPECT_EQ(signal.connections(), 0U);
    SubscriptionPtr first = signal.connect([] {});
    const auto second = signal.connect([] {});

    EXPECT_EQ(signal.connections(), 2U);
    first.reset();
    EXPECT_EQ(signal.connections(), 1U);
}

} // namespace
} // namespace tessarel
