#pragma once

#include "model/subscription.h"
#include "platform/qt/qt_main_queue.h"

#include <array>
#include <csignal>
#include <functional>

namespace tessarel::qt {

/// The signals that ask a program to end: SIGTERM, SIGINT and SIGHUP, as work for the main thread.
///
/// A signal that comes before anybody listens is not lost. One that the parent process has set to be ignored
/// stays ignored. There is at most one object of this class; programs that are started have the signals as
/// usual.
class TerminationSignals {
public:
    TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    /// Gives the signals back their usual effect.
    ~TerminationSignals();

    /// Calls `received` on the main thread after one or more signals, until the answer ends. Needs the
    /// application object.
    [[nodiscard]] SubscriptionPtr onReceived(QtMainQueue& queue, std::function<void()> received);

private:
    static constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

    std::array<int, 2> m_pipe{-1, -1}; // to read from, to write to
};

} // namespace tessarel::qt
