// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt/qt_main_queue.h"
#include "platform/qt_xdg/bus_probe.h"
#include "ports/deferred_work.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace tessarel::qt {

/// Finds out whether everything replies that Qt's accessibility bridge waits for, without blocking.
///
/// The bridge calls the accessibility service on the session bus. It connects to the accessibility bus, which
/// has a daemon of its own, if the service reports that accessibility is enabled. On X11 it also connects to
/// the bus that the screen announces.
class AccessibilityProbe {
public:
    enum class State : std::uint8_t {
        Waiting,
        /// Everything has replied, or fails without a wait.
        Replied,
        /// The bridge would wait.
        Silent,
    };
    /// Addresses of accessibility buses; empty where none is announced.
    struct Announced {
        std::string byEnvironment; ///< replaces all others
        std::string byScreen;
    };

    /// Starts to probe. `patience` limits the calls of the service. Calls `replied` whenever `proceed` may
    /// have something to do; `replied` may destroy this object. `queue` must outlive this object.
    AccessibilityProbe(QtMainQueue& queue, QDBusConnection sessionBus, const Announced& announced,
                       std::chrono::milliseconds patience, std::function<void()> replied);
    AccessibilityProbe(const AccessibilityProbe&) = delete;
    AccessibilityProbe& operator=(const AccessibilityProbe&) = delete;
    ~AccessibilityProbe() = default;

    /// Takes up the replies that have arrived and returns the new state.
    State proceed();

private:
    struct Bus {
        explicit Bus(const std::string& address) : probe(address) {}

        BusProbe probe;
        SubscriptionPtr reply;
    };
    using Call = std::unique_ptr<QDBusPendingCallWatcher>;

    void probe(const std::string& address);
    [[nodiscard]] Call call(const QDBusMessage& message);
    [[nodiscard]] QVariant resultOf(Call& finished);

    QtMainQueue& m_queue;
    QDBusConnection m_sessionBus;
    std::chrono::milliseconds m_patience;
    std::function<void()> m_replied;
    Call m_status;  // while the reply whether accessibility is enabled is pending
    Call m_address; // while the address of the bus is pending
    std::deque<Bus> m_buses;
    bool m_isSilent = false;
    DeferredWork m_later;
};

} // namespace tessarel::qt
