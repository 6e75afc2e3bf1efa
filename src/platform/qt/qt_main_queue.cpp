// SPDX-License-Identifier: MIT

#include "platform/qt/qt_main_queue.h"

#include "model/call_on_end.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QSocketNotifier>
#include <QTimerEvent>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <utility>

namespace tessarel::qt {

namespace {

using TimePoint = MainQueuePort::TimePoint;
using Duration = MainQueuePort::Duration;

/// Returns `start + delay`, limited to the end of the clock. A negative delay counts as zero.
TimePoint later(TimePoint start, Duration delay) {
    const Duration left = TimePoint::max() - start;
    return start + std::clamp(delay, Duration::zero(), left);
}

/// Converts `wait` to the milliseconds of Qt's timers, rounded up so that work never runs early. A wait that
/// is too long for a timer gives the longest interval; the timer is then started again.
int timerInterval(Duration wait) {
    using std::chrono::ceil;
    using std::chrono::milliseconds;
    constexpr milliseconds kLongest{std::numeric_limits<int>::max()};
    return static_cast<int>(std::clamp(ceil<milliseconds>(wait), milliseconds::zero(), kLongest).count());
}

/// Calls a function while a file descriptor is readable.
class ReadableSubscription : public Subscription {
public:
    ReadableSubscription(int fd, std::function<void()> readable) : m_notifier(fd, QSocketNotifier::Read) {
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, std::move(readable));
    }

private:
    QSocketNotifier m_notifier;
};

} // namespace

/// Work in the order of its due times. At most one posted event or timer is pending, for the first entry.
class QtMainQueue::Schedule : public QObject {
public:
    /// Due time and a running number, so that work due at the same time runs in the order in which it was
    /// added.
    using Key = std::pair<TimePoint, std::uint64_t>;

    [[nodiscard]] Key add(TimePoint due, std::function<void()> work) {
        const Key key(due, m_nextNumber++);
        m_work.emplace(key, std::move(work));
        arm();
        return key;
    }

    /// Does nothing for work that has started.
    void cancel(const Key& key) {
        if (m_work.erase(key) > 0)
            arm();
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        m_posted = false;
        runFirst();
        return true;
    }

    void timerEvent(QTimerEvent*) override {
        m_timer.stop();
        runFirst();
    }

private:
    /// Schedules the wake-up for the first entry. Posts an event if the entry is due, or if there is no
    /// application object yet, which timers need; otherwise starts the timer.
    void arm() {
        if (m_posted)
            return;
        if (m_work.empty()) {
            m_timer.stop();
            return;
        }
        const Duration wait = m_work.begin()->first.first - TimePoint::clock::now();
        if (wait > Duration::zero() && QCoreApplication::instance() != nullptr) {
            m_timer.start(timerInterval(wait), Qt::PreciseTimer, this);
            return;
        }
        m_timer.stop();
        m_posted = true;
        QCoreApplication::postEvent(this, new QEvent(QEvent::User)); // owned by the event loop
    }

    /// Runs the first entry if it is due. The wake-up for the next entry is scheduled before, because the
    /// work may run a nested event loop or destroy the queue.
    void runFirst() {
        const auto first = m_work.begin();
        if (first == m_work.end() || first->first.first > TimePoint::clock::now()) {
            arm();
            return;
        }
        const auto work = std::move(first->second);
        m_work.erase(first);
        arm();
        work();
    }

    std::map<Key, std::function<void()>> m_work;
    std::uint64_t m_nextNumber = 0;
    QBasicTimer m_timer;
    bool m_posted = false;
};

QtMainQueue::QtMainQueue() : m_schedule(std::make_shared<Schedule>()) {}

QtMainQueue::~QtMainQueue() = default;

MainQueuePort::TimePoint QtMainQueue::now() {
    return TimePoint::clock::now();
}

SubscriptionPtr QtMainQueue::asyncAfter(Duration delay, std::function<void()> work) {
    const Schedule::Key key = m_schedule->add(later(now(), delay), std::move(work));
    return callOnEnd([weak = std::weak_ptr(m_schedule), key] {
        if (const auto schedule = weak.lock())
            schedule->cancel(key);
    });
}

SubscriptionPtr QtMainQueue::onReadable(int fd, std::function<void()> readable) {
    return std::make_unique<ReadableSubscription>(fd, std::move(readable));
}

} // namespace tessarel::qt
