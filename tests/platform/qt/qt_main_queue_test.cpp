// SPDX-License-Identifier: MIT

#include "platform/qt/qt_main_queue.h"

#include "support/main_queue.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

namespace tessarel::qt {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

class QtMainQueueTest : public testing::Test {
protected:
    /// Runs the event loop until work that is queued now has run; everything due earlier has run by then.
    void drain() {
        bool last = false;
        async(*queue, [&last] { last = true; });
        while (!last)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    static void runUntil(const bool& done) {
        while (!done)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    std::optional<QCoreApplication> application{std::in_place, argumentCount, arguments.data()};
    std::unique_ptr<QtMainQueue> queue = std::make_unique<QtMainQueue>();
};

TEST_F(QtMainQueueTest, WorkRunsInTheOrderInWhichItWasQueued) {
    std::string ran;
    async(*queue, [&] { ran += "a"; });
    async(*queue, [&] { ran += "b"; });
    asyncAfter(*queue, milliseconds(0), [&] { ran += "c"; });

    drain();

    EXPECT_EQ(ran, "abc");
}

TEST_F(QtMainQueueTest, AsyncNeverRunsWorkBeforeItReturns) {
    bool ran = false;

    async(*queue, [&] { ran = true; });

    EXPECT_FALSE(ran);
    drain();
    EXPECT_TRUE(ran);
}

TEST_F(QtMainQueueTest, DelayedWorkRunsInTheOrderInWhichItIsDue) {
    std::string ran;
    bool done = false;
    asyncAfter(*queue, std::chrono::hours(1), [&] { ran += "d"; });
    // These are added in the order of their times, so a pause between two of them does not change it.
    async(*queue, [&] { ran += "a"; });
    asyncAfter(*queue, milliseconds(10), [&] { ran += "b"; });
    asyncAfter(*queue, milliseconds(20), [&] {
        ran += "c";
        done = true;
    });

    runUntil(done);

    EXPECT_EQ(ran, "abc");
}

TEST_F(QtMainQueueTest, WorkIsNeverEarly) {
    const auto due = queue->now() + milliseconds(15);
    std::optional<MainQueuePort::TimePoint> ranAt;
    bool done = false;
    asyncAfter(*queue, milliseconds(15), [&] {
        ranAt = queue->now();
        done = true;
    });

    runUntil(done);

    EXPECT_GE(*ranAt, due);
}

TEST_F(QtMainQueueTest, WorkQueuedByWorkRunsInTheNextTurn) {
    std::string ran;
    async(*queue, [&] {
        async(*queue, [&] { ran += "c"; });
        ran += "a";
    });
    async(*queue, [&] { ran += "b"; });

    drain();
    drain();

    EXPECT_EQ(ran, "abc");
}

TEST_F(QtMainQueueTest, WorkRunsInsideANestedEventLoop) {
    std::string ran;
    async(*queue, [&] {
        QEventLoop inner;
        async(*queue, [&] { inner.quit(); });
        inner.exec();
        ran += "outer";
    });
    async(*queue, [&] { ran += "inner "; });

    drain();
    drain();

    EXPECT_EQ(ran, "inner outer");
}

TEST_F(QtMainQueueTest, ANegativeDelayCountsAsZero) {
    bool ran = false;
    asyncAfter(*queue, milliseconds(-500), [&] { ran = true; });

    drain();

    EXPECT_TRUE(ran);
}

TEST_F(QtMainQueueTest, ADelayBeyondTheEndOfTheClockNeverComesDue) {
    bool ran = false;
    asyncAfter(*queue, MainQueuePort::Duration::max(), [&] { ran = true; });
    asyncAfter(*queue, hours(24 * 365), [&] { ran = true; });

    drain();

    EXPECT_FALSE(ran);
}

TEST_F(QtMainQueueTest, NothingRunsAfterTheQueueWasDestroyed) {
    bool ran = false;
    async(*queue, [&] { ran = true; });
    asyncAfter(*queue, milliseconds(1), [&] { ran = true; });

    queue = std::make_unique<QtMainQueue>();
    bool done = false;
    asyncAfter(*queue, milliseconds(5), [&] { done = true; });
    runUntil(done);

    EXPECT_FALSE(ran);
}

TEST_F(QtMainQueueTest, WorkMayDestroyTheQueue) {
    bool ran = false;
    bool destroyed = false;
    async(*queue, [&] {
        queue.reset();
        destroyed = true;
    });
    async(*queue, [&] { ran = true; });

    runUntil(destroyed);
    QCoreApplication::processEvents();

    EXPECT_FALSE(ran);
}

TEST_F(QtMainQueueTest, AnIdleQueueCausesNoWakeUps) {
    asyncAfter(*queue, milliseconds(1), [] {});
    bool done = false;
    asyncAfter(*queue, milliseconds(2), [&] { done = true; });
    runUntil(done);

    EXPECT_FALSE(QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents));
}

TEST_F(QtMainQueueTest, WorkQueuedBeforeTheApplicationExistsWaitsForTheLoop) {
    queue.reset();
    application.reset();
    std::string ran;
    bool done = false;
    queue = std::make_unique<QtMainQueue>();
    asyncAfter(*queue, milliseconds(5), [&] {
        ran += "b";
        done = true;
    });
    async(*queue, [&] { ran += "a"; });

    application.emplace(argumentCount, arguments.data());
    runUntil(done);

    EXPECT_EQ(ran, "ab");
}

class QtMainQueueReadableTest : public QtMainQueueTest {
protected:
    void SetUp() override { ASSERT_EQ(::pipe(ends.data()), 0); }
    void TearDown() override {
        ::close(ends[0]);
        ::close(ends[1]);
    }

    void write() const { ASSERT_EQ(::write(ends[1], "x", 1), 1); }
    void read() const {
        char byte = 0;
        ASSERT_EQ(::read(ends[0], &byte, 1), 1);
    }

    std::array<int, 2> ends{};
};

TEST_F(QtMainQueueReadableTest, CallsTheHandlerWhenAFileIsReadable) {
    bool readable = false;
    const auto subscription = queue->onReadable(ends[0], [&] {
        read();
        readable = true;
    });
    drain();
    ASSERT_FALSE(readable);

    write();
    runUntil(readable);

    EXPECT_TRUE(readable);
}

TEST_F(QtMainQueueReadableTest, DoesNotCallTheHandlerAfterTheSubscriptionEnded) {
    int calls = 0;
    auto subscription = queue->onReadable(ends[0], [&] { ++calls; });
    write();

    subscription.reset();
    QCoreApplication::processEvents();

    EXPECT_EQ(calls, 0);
}

TEST_F(QtMainQueueReadableTest, TheSubscriptionMayBeDestroyedInItsOwnCallback) {
    int calls = 0;
    bool done = false;
    SubscriptionPtr subscription;
    subscription = queue->onReadable(ends[0], [&] {
        ++calls;
        done = true;
        subscription.reset();
    });
    write();

    runUntil(done);
    QCoreApplication::processEvents();

    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace tessarel::qt
