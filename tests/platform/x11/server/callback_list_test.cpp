#include "platform/x11/server/callback_list.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tessarel::x11 {
namespace {

TEST(CallbackListTest, CallsInTheOrderOfAddingWithTheArguments) {
    CallbackList<int> list;
    std::string called;
    const auto first = list.add([&](int number) { called += "a" + std::to_string(number); });
    const auto second = list.add([&](int number) { called += "b" + std::to_string(number); });

    list.call(7);

    EXPECT_EQ(called, "a7b7");
}

TEST(CallbackListTest, DoesNotCallEndedCallbacks) {
    CallbackList<> list;
    int calls = 0;
    auto callback = list.add([&] { ++calls; });

    callback.reset();
    list.call();

    EXPECT_EQ(calls, 0);
}

TEST(CallbackListTest, ACallbackMayEndItselfAndLaterOnes) {
    CallbackList<> list;
    int firstCalls = 0;
    int secondCalls = 0;
    SubscriptionPtr first;
    SubscriptionPtr second;
    first = list.add([&] {
        ++firstCalls;
        second.reset();
        first.reset();
    });
    second = list.add([&] { ++secondCalls; });

    list.call();
    list.call();

    EXPECT_EQ(firstCalls, 1);
    EXPECT_EQ(secondCalls, 0);
}

TEST(CallbackListTest, CallbacksAddedDuringACallWaitForTheNextCall) {
    CallbackList<> list;
    int calls = 0;
    SubscriptionPtr added;
    const auto adder = list.add([&] {
        if (!added)
            added = list.add([&] { ++calls; });
    });

    list.call();
    EXPECT_EQ(calls, 0);
    list.call();
    EXPECT_EQ(calls, 1);
}

TEST(CallbackListTest, ANestedCallSkipsEndedCallbacks) {
    CallbackList<int> list;
    std::string called;
    SubscriptionPtr second;
    const auto first = list.add([&](int depth) {
        called += "a";
        if (depth == 0) {
            second.reset();
            list.call(1);
        }
    });
    second = list.add([&](int) { called += "b"; });

    list.call(0);

    EXPECT_EQ(called, "aa");
}

TEST(CallbackListTest, SubscriptionsMayOutliveTheList) {
    auto list = std::make_unique<CallbackList<>>();
    auto callback = list->add([] {});

    list.reset();
    callback.reset();
}

TEST(CallbackListTest, ACallbackMayDestroyTheList) {
    auto list = std::make_unique<CallbackList<>>();
    int calls = 0;
    const auto first = list->add([&] { list.reset(); });
    const auto second = list->add([&] { ++calls; });

    list->call();

    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace tessarel::x11
