// SPDX-License-Identifier: MIT

#include "platform/x11/windows/barrier.h"

#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>

namespace tessarel::x11 {
namespace {

/// A wait for a window manager that is stopped at times. How long a wait lasts follows from how often it
/// requests: it sends its next request when the time for an answer to the last one has passed.
class BarrierTest : public X11Test {
protected:
    ~BarrierTest() override {
        resume();
        settle();
    }

    void stop() { desktop.manager->process().signal(SIGSTOP); }
    void resume() { desktop.manager->process().signal(SIGCONT); }

    /// Waits in vain, in a turn of its own, and returns how many requests that took.
    [[nodiscard]] std::size_t requestsInVain() {
        const std::size_t before = connection.roundTrips();
        EXPECT_FALSE(barrier.wait());
        const std::size_t count = connection.roundTrips() - before;
        driver.queue().runTurn();
        return count;
    }

    Barrier barrier{connection};
};

TEST_F(BarrierTest, OnlyTheFirstWaitForAStoppedWindowManagerIsLong) {
    stop();

    const std::size_t first = requestsInVain();

    EXPECT_GT(first, 1U);
    EXPECT_EQ(requestsInVain(), 1U);
    EXPECT_EQ(requestsInVain(), 1U);
}

TEST_F(BarrierTest, AWindowManagerThatHasGoneOnBetweenWaitsIsWaitedForAsAtFirst) {
    stop();
    const std::size_t first = requestsInVain();
    static_cast<void>(requestsInVain());

    resume();
    settle(); // reads the answers to the earlier waits
    stop();

    EXPECT_EQ(requestsInVain(), first);
}

TEST_F(BarrierTest, ALateAnswerDuringAWaitMakesItLong) {
    stop();
    const std::size_t first = requestsInVain();

    resume();
    ASSERT_TRUE(observer.settle()); // the answers have arrived, and are not read yet
    stop();

    EXPECT_EQ(requestsInVain(), first);
}

} // namespace
} // namespace tessarel::x11
