// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_queue_port.h"

#include <QObject>

#include <chrono>

namespace tessarel::qt {

/// Limits the work for calls of other programs to Qt's icon and its menu, so that a program that calls all
/// the time cannot stop this one.
///
/// Qt posts an event for each call, and handles all posted events, also those that are posted meanwhile,
/// before it looks at anything else: at X events, timers and signals.
class CallLimit : public QObject {
public:
    /// Once the calls within an interval have taken this long, further ones get an error, except for the
    /// first: what a panel needs when it starts, however slow the machine is.
    static constexpr std::chrono::milliseconds kMostWork{20};
    static constexpr int kFirstCalls = 30;
    static constexpr std::chrono::milliseconds kInterval{100};

    /// `queue` must outlive this object.
    explicit CallLimit(MainQueuePort& queue) : m_queue(queue) {}

    /// Limits the calls to the object, together with those to the others.
    void add(QObject& object) { object.installEventFilter(this); }
    /// Adds the objects that Qt has put on the session bus for icons. Call it after every change of the icon.
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    MainQueuePort& m_queue;
    MainQueuePort::TimePoint m_began{}; // of the interval
    int m_calls = 0;                    // within it
    MainQueuePort::Duration m_work{};   // for these calls
};

} // namespace tessarel::qt
