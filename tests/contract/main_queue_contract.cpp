#include "contract/contract_test.h"

#include <functional>
#include <vector>

namespace tessarel::contract {
namespace {

class MainQueueContract : public ContractTest {
protected:
    std::function<void()> note(int number) {
        return [this, number] { ran.push_back(number); };
    }

    std::vector<int> ran;
    std::unique_ptr<MainQueuePort> queue = desktop->makeMainQueue();
};

TEST_F(MainQueueContract, WorkRunsInALaterIterationOfTheLoop) {
    queue->async(note(1));
    EXPECT_TRUE(ran.empty());

    desktop->advance(0ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, WorkRunsOnce) {
    queue->asyncAfter(1ms, note(1));

    desktop->advance(20ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, WorkDueAtTheSameTimeRunsInTheOrderOfSubmission) {
    for (const int number : {1, 2, 3, 4})
        queue->async(note(number));

    desktop->advance(0ms);

    EXPECT_EQ(ran, (std::vector{1, 2, 3, 4}));
}

TEST_F(MainQueueContract, WorkRunsInTheOrderOfItsDelays) {
    queue->asyncAfter(30ms, note(3));
    queue->asyncAfter(2ms, note(1));
    queue->asyncAfter(15ms, note(2));

    desktop->advance(50ms);

    EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TEST_F(MainQueueContract, WorkNeverRunsBeforeItsDelayHasPassed) {
    const auto start = queue->now();
    MainQueuePort::TimePoint ranAt;
    queue->asyncAfter(20ms, [&] { ranAt = queue->now(); });

    desktop->advance(60ms);

    EXPECT_GE(ranAt - start, 20ms);
}

TEST_F(MainQueueContract, WorkThatIsNotDueDoesNotRun) {
    queue->asyncAfter(1h, note(1));

    desktop->advance(5ms);

    EXPECT_TRUE(ran.empty());
}

TEST_F(MainQueueContract, ANegativeDelayCountsAsZero) {
    queue->asyncAfter(-5ms, note(1));
    EXPECT_TRUE(ran.empty());

    desktop->advance(0ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

TEST_F(MainQueueContract, WorkMaySubmitWork) {
    queue->async([this] {
        queue->async(note(2));
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
    queue->async(note(1));
    queue->asyncAfter(5ms, note(2));
    queue.reset();

    desktop->advance(20ms);

    EXPECT_TRUE(ran.empty());
}

TEST_F(MainQueueContract, WorkMayDestroyTheQueue) {
    queue->async([this] {
        ran.push_back(1);
        queue.reset();
    });
    queue->async(note(2));

    desktop->advance(10ms);

    EXPECT_EQ(ran, (std::vector{1}));
}

} // namespace
} // namespace tessarel::contract
