// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/call_limit.h"

#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <functional>
#include <optional>

namespace tessarel::qt {
namespace {

using namespace std::chrono_literals;

/// An object that counts the calls that it carries out.
class Called : public QObject {
public:
    explicit Called(std::function<void()> work) : m_work(std::move(work)) {}

    bool event(QEvent* event) override {
        ++m_events;
        if (event->type() == QEvent::MetaCall)
            m_work();
        return true;
    }
    [[nodiscard]] int events() const { return m_events; }

private:
    std::function<void()> m_work;
    int m_events = 0;
};

class CallLimitTest : public testing::Test {
protected:
    CallLimitTest() {
        for (Called* const object : {&item, &menu})
            limit->add(*object);
    }

    static void call(Called& object, int times = 1, QEvent::Type type = QEvent::MetaCall) {
        for (int i = 0; i < times; ++i) {
            QEvent event(type);
            QCoreApplication::sendEvent(&object, &event);
        }
    }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    QCoreApplication application{argumentCount, arguments.data()};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    std::optional<CallLimit> limit{std::in_place, queue};
    MainQueuePort::Duration duration = 1ms; // of a call
    Called item{[this] { clock.block(duration); }};
    Called menu{[this] { clock.block(duration); }};
};

TEST_F(CallLimitTest, ShortCallsAreAllCarriedOut) {
    duration = CallLimit::kMostWork / 1000;

    call(item, 900);

    EXPECT_EQ(item.events(), 900);
}

TEST_F(CallLimitTest, CallsBeyondTheFirstAreRefusedOnceTheyHaveTakenTooLong) {
    call(item, CallLimit::kFirstCalls);
    call(menu);
    call(item);

    EXPECT_EQ(item.events(), CallLimit::kFirstCalls);
    EXPECT_EQ(menu.events(), 0);
}

TEST_F(CallLimitTest, TheFirstCallsAreCarriedOutHoweverLongTheyTake) {
    duration = CallLimit::kInterval / CallLimit::kFirstCalls;

    call(item, CallLimit::kFirstCalls - 1);
    call(menu);

    EXPECT_EQ(item.events() + menu.events(), CallLimit::kFirstCalls);
}

TEST_F(CallLimitTest, InTheNextIntervalCallsAreCarriedOutAgain) {
    call(item, 2 * CallLimit::kFirstCalls);
    clock.advance(CallLimit::kInterval);

    call(menu, 2 * CallLimit::kFirstCalls);

    EXPECT_EQ(menu.events(), CallLimit::kFirstCalls);
}

TEST_F(CallLimitTest, OtherEventsAreNeverRefused) {
    call(item, 2 * CallLimit::kFirstCalls);

    call(item, 1, QEvent::User);

    EXPECT_EQ(item.events(), CallLimit::kFirstCalls + 1);
}

TEST_F(CallLimitTest, ACallMayEndTheLimit) {
    Called last([this] { limit.reset(); });
    limit->add(last);

    call(last, 2);

    EXPECT_EQ(last.events(), 2);
}

} // namespace
} // namespace tessarel::qt
