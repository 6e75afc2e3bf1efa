// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/qt/qt_main_queue.h"

#include <array>
#include <csignal>
#include <functional>

namespace tessarel::qt {

/// Delivers SIGTERM, SIGINT and SIGHUP, which ask the program to end, to the main thread.
///
/// Once such a signal has arrived, the process exits within a second, even if the main thread is blocked: a
/// timer ends it unless this object is destroyed before.
///
/// A signal that arrives before `onReceived` is called is not lost. A signal that the parent process has set
/// to be ignored stays ignored. At most one object of this class may exist at a time. Programs that this one
/// starts get the default effect of the signals.
class TerminationSignals {
public:
    /// Installs the signal handlers. If that fails, the signals keep their default effect.
    TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    /// Restores the default effect of the signals.
    ~TerminationSignals();

    /// Calls `received` on the main thread after one or more signals, until the returned subscription is
    /// destroyed. Returns null if the handlers could not be installed. Requires the application object.
    [[nodiscard]] SubscriptionPtr onReceived(QtMainQueue& queue, std::function<void()> received);

private:
    static constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

    std::array<int, 2> m_pipe{-1, -1}; ///< read end and write end; -1 if it could not be opened
};

} // namespace tessarel::qt
