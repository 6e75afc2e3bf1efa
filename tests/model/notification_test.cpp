#include "model/notification.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tessarel {
namespace {

TEST(NotificationTest, CallsObserversInTheOrderTheyWereAdded) {
    Notification notification;
    std::string called;
    const auto first = notification.addObserver([&] { called += "a"; });
    const auto second = notification.addObserver([&] { called += "b"; });

    notification.post();

    EXPECT_EQ(called, "ab");
}

TEST(NotificationTest, DoesNotCallAnObserverWhoseSubscriptionEnded) {
    Notification notification;
    int calls = 0;
    auto observer = notification.addObserver([&] { ++calls; });

    observer.reset();
    notification.post();

    EXPECT_EQ(calls, 0);
}

TEST(NotificationTest, AnObserverMayRemoveItselfAndLaterOnesDuringAPost) {
    Notification notification;
    int firstCalls = 0;
    int secondCalls = 0;
    SubscriptionPtr first;
    SubscriptionPtr second;
    first = notification.addObserver([&] {
        ++firstCalls;
        second.reset();
        first.reset();
    });
    second = notification.addObserver([&] { ++secondCalls; });

    notification.post();
    notification.post();

    EXPECT_EQ(firstCalls, 1);
    EXPECT_EQ(secondCalls, 0);
}

TEST(NotificationTest, AnObserverAddedDuringAPostIsFirstCalledByTheNextPost) {
    Notification notification;
    int calls = 0;
    SubscriptionPtr added;
    const auto adder = notification.addObserver([&] {
        if (!added)
            added = notification.addObserver([&] { ++calls; });
    });

    notification.post();
    EXPECT_EQ(calls, 0);
    notification.post();
    EXPECT_EQ(calls, 1);
}

TEST(NotificationTest, AnObserverThatRemovesItselfLivesUntilItReturns) {
    Notification notification;
    const auto held = std::make_shared<int>(0);
    SubscriptionPtr observer;
    long holders = 0;
    observer = notification.addObserver([&, held] {
        observer.reset();
        holders = held.use_count();
    });

    notification.post();

    EXPECT_EQ(holders, 2);
    EXPECT_EQ(held.use_count(), 1) << "the callback is destroyed once it has returned";
}

TEST(NotificationTest, AnObserverMayDestroyTheNotification) {
    auto notification = std::make_unique<Notification>();
    int laterCalls = 0;
    const auto first = notification->addObserver([&] { notification.reset(); });
    const auto second = notification->addObserver([&] { ++laterCalls; });

    notification->post();

    EXPECT_EQ(laterCalls, 1) << "observers that are still subscribed are called";
}

TEST(NotificationTest, AnObserverMayPostAgain) {
    Notification notification;
    std::string called;
    const auto first = notification.addObserver([&] {
        called += "a";
        if (called == "a")
            notification.post();
    });
    const auto second = notification.addObserver([&] { called += "b"; });

    notification.post();

    EXPECT_EQ(called, "aabb");
}

TEST(NotificationTest, RemovingOneObserverLeavesTheOthers) {
    Notification notification;
    std::string called;
    auto first = notification.addObserver([&] { called += "a"; });
    const auto second = notification.addObserver([&] { called += "b"; });

    first.reset();
    auto third = notification.addObserver([&] { called += "c"; });
    third.reset();
    notification.post();

    EXPECT_EQ(called, "b");
}

TEST(NotificationTest, ASubscriptionMayOutliveTheNotification) {
    auto notification = std::make_unique<Notification>();
    auto observer = notification->addObserver([] {});

    notification.reset();
    observer.reset();
}

} // namespace
} // namespace tessarel
