// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"
#include "ports/deferred_work.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tessarel::contract {
namespace {

class MainQueueContract : public ContractTest {
protected:
    std::function<void()> note(int number) {
        return [this, number] { ran.push_back(number); };
    }

    /// Like the functions of the queue, but keep the subscriptions until the end of the test.
    void async(std::function<void()> work) { asyncAfter(0ms, std::move(work)); }
    void asyncAfter(MainQueuePort::Duration delay, std::function<void()> work) {
        subscriptions.push_back(queue->asyncAfter(delay, std::move(work)));
    }

    std::vector<int> ran;
    std::vector<SubscriptionPtr> subscriptions;
    std::unique_ptr<MainQueuePort> queue = desktop->makeMainQueue();
};

TEST_F(MainQueueContract, WorkRunsInALaterIterationOfTheLoop) {
    async(note(1));
    EXPECT_TRUE(ran.empty());

    desktop->advance(0ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, WorkRunsOnce) {
    asyncAfter(1ms, note(1));

    desktop->advance(20ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, WorkDueAtTheSameTimeRunsInTheOrderOfSubmission) {
    for (const int number : {1, 2, 3, 4})
        async(note(number));

    desktop->advance(0ms);

    EXPECT_EQ(ran, (std::vector{1, 2, 3, 4}));
}

TEST_F(MainQueueContract, WorkRunsInTheOrderOfItsDelays) {
    asyncAfter(300ms, note(3)); // long enough that a busy machine does not submit the rest later
    asyncAfter(2ms, note(1));
    asyncAfter(15ms, note(2));

    desktop->advance(320ms);

    EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TEST_F(MainQueueContract, WorkNeverRunsBeforeItsDelayHasPassed) {
    const auto start = queue->now();
    MainQueuePort::TimePoint ranAt;
    asyncAfter(20ms, [&] { ranAt = queue->now(); });

    desktop->advance(60ms);

    EXPECT_GE(ranAt - start, 20ms);
}

TEST_F(MainQueueContract, WorkThatIsNotDueDoesNotRun) {
    asyncAfter(1h, note(1));

    desktop->advance(5ms);

    EXPECT_TRUE(ran.empty());
}

TEST_F(MainQueueContract, ANegativeDelayCountsAsZero) {
    asyncAfter(-5ms, note(1));
    EXPECT_TRUE(ran.empty());

    desktop->advance(0ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, WorkMaySubmitWork) {
    async([this] {
        async(note(2));
        ran.push_back(1);
    });

    desktop->advance(10ms);

    EXPECT_EQ(ran, (std::vector{1, 2}));
}

TEST_F(MainQueueContract, TheClockAdvances) {
    const auto start = queue->now();
    desktop->advance(10ms);

    EXPECT_GE(queue->now() - start, 10ms);
}

TEST_F(MainQueueContract, NothingRunsAfterTheQueueIsDestroyed) {
    async(note(1));
    asyncAfter(5ms, note(2));
    queue.reset();

    desktop->advance(20ms);

    EXPECT_TRUE(ran.empty());
}

TEST_F(MainQueueContract, WorkMayDestroyTheQueue) {
    async([this] {
        ran.push_back(1);
        queue.reset();
    });
    async(note(2));

    desktop->advance(10ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, CancelledWorkDoesNotRun) {
    SubscriptionPtr now = queue->async(note(1));
    SubscriptionPtr later = queue->asyncAfter(5ms, note(2));
    asyncAfter(10ms, note(3));

    now.reset();
    later.reset();
    desktop->advance(30ms);

    EXPECT_EQ(ran, (std::vector{3}));
}

TEST_F(MainQueueContract, WorkMayCancelLaterWork) {
    SubscriptionPtr later;
    async([&] { later.reset(); });
    later = queue->async(note(1));
    async(note(2));

    desktop->advance(5ms);

    EXPECT_EQ(ran, (std::vector{2}));
}

TEST_F(MainQueueContract, WorkThatDestroysItsOwnSubscriptionRunsToItsEnd) {
    SubscriptionPtr own;
    const auto captured = std::make_shared<int>(1);
    own = queue->async([&, captured] {
        own.reset();
        ran.push_back(*captured);
    });

    desktop->advance(5ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, ASubscriptionMayOutliveItsWorkAndTheQueue) {
    SubscriptionPtr done = queue->async(note(1));
    SubscriptionPtr pending = queue->asyncAfter(1h, note(2));
    desktop->advance(5ms);

    queue.reset();
    done.reset();
    pending.reset();

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, DeferredWorkRunsInOrderAndIsCancelledWithItsOwner) {
    std::optional<DeferredWork> deferred(*queue);
    deferred->asyncAfter(1h, note(3));
    deferred->async(note(1));
    deferred->asyncAfter(5ms, note(2));
    desktop->advance(30ms);
    EXPECT_EQ(ran, (std::vector{1, 2}));

    deferred->async(note(4));
    deferred.reset();
    desktop->advance(5ms);

    EXPECT_EQ(ran, (std::vector{1, 2}));
}

TEST_F(MainQueueContract, DeferredWorkMayDestroyItsOwner) {
    std::optional<DeferredWork> deferred(*queue);
    deferred->async([&] {
        deferred.reset();
        ran.push_back(1);
    });
    deferred->async(note(2));

    desktop->advance(5ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

} // namespace
} // namespace tessarel::contract
