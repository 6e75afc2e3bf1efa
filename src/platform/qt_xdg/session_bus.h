// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "platform/qt/qt_main_queue.h"
#include "platform/qt_xdg/accessibility_probe.h"
#include "platform/qt_xdg/bus_connecting.h"
#include "platform/qt_xdg/bus_probe.h"
#include "ports/deferred_work.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tessarel::qt {

/// Replaces the address of a bus in the environment by one that nothing can connect to.
class HiddenBus {
public:
    /// `variable` must live as long as this object.
    explicit HiddenBus(const char* variable);
    HiddenBus(const HiddenBus&) = delete;
    HiddenBus& operator=(const HiddenBus&) = delete;
    /// Restores the address.
    ~HiddenBus();

    /// Returns the address that is hidden; empty if there is none.
    [[nodiscard]] const QByteArray& address() const { return m_address; }

private:
    const char* m_variable;
    bool m_wasSet;
    QByteArray m_address;
};

/// The connection to the session bus. Blocks the main thread only before a window or an input method, and to
/// break off a connection, for a limited time. The calls that Qt makes itself have no such limit.
///
/// Qt and the D-Bus library block until a bus has replied, and abort the process when they use a connection
/// that was lost. This class probes the bus before Qt connects, reports a loss, and connects again when the
/// bus replies again.
///
/// Qt has two parts that use the bus: StatusNotifierItems, and the accessibility bridge for screen readers,
/// which Qt creates with the first window or menu. Each connects only once. The bus is therefore hidden from
/// them until it has replied, the bridge also until the accessibility service and its bus have replied.
class SessionBus {
public:
    static constexpr std::chrono::milliseconds kWindowPatience{100};

    /// Starts probing the bus of the environment and hides it. `windowPatience` limits how long
    /// `beforeWindow` and `beforeInputMethod` wait for replies; for Qt to connect, it waits up to a second,
    /// and up to another to break that off. `queue` must outlive this object.
    explicit SessionBus(QtMainQueue& queue, std::chrono::milliseconds windowPatience = kWindowPatience);
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;
    ~SessionBus();

    /// Waits for a short time until the bus has replied, and hides it no longer if it has. Call it before the
    /// application object is created if Qt's input method connects to the bus then.
    void beforeInputMethod();

    /// Connects, with Qt's parts, as soon as the bus replies; reconnects whenever the bus is restarted.
    /// Requires the application object. `accessibilityBusOfScreen` returns the address that the X screen
    /// announces; empty if there is none.
    ///
    /// Run the event loop with QCoreApplication::exec() afterwards: that of QGuiApplication would create the
    /// accessibility bridge before the bus has replied.
    void start(std::function<std::string()> accessibilityBusOfScreen = {});

    /// Waits for a short time until the accessibility bridge can be created. Call it before a window or a
    /// menu is created, because Qt then creates the bridge, which stays without a bus if it is still hidden.
    void beforeWindow();

    /// Makes Qt's parts do without the bus until the program ends, unless they are connected. Call it before
    /// an icon in the system tray of the X screen is created, because Qt then looks for a StatusNotifierHost.
    void keepQtOff();

    enum class QtParts : std::uint8_t {
        /// The bus, the accessibility service or its bus has not replied yet, but may do so soon.
        Undecided,
        Connected,
        WithoutBus,
    };
    /// Returns whether Qt's parts have been connected; `Connected` even if the bus has been lost since.
    [[nodiscard]] QtParts qtParts() const;
    /// Returns the connection if there is one at present. Use only asynchronous calls, and signals without a
    /// sender's name: for a name, Qt asks the bus who owns it, and waits for the reply.
    [[nodiscard]] std::optional<QDBusConnection> connection() const;
    /// Calls `changed` after `connection` or `qtParts` has changed, until the returned subscription is
    /// destroyed.
    [[nodiscard]] SubscriptionPtr onChanged(std::function<void()> changed);

private:
    void probe();
    void proceed();
    void retry();
    void awaitConnection();
    void stopConnecting();
    void stopExpecting();
    void connect();
    void finishConnecting();
    void probeAccessibility();
    void proceedWithAccessibility();
    void finishAccessibility();
    void createBridge();
    void disconnect();
    void lost();

    QtMainQueue& m_queue;
    std::chrono::milliseconds m_windowPatience;
    std::string m_address;
    std::optional<HiddenBus> m_hiddenFromQt;
    std::optional<HiddenBus> m_hiddenFromBridge; // until the bridge has been created
    std::optional<BusProbe> m_probe;             // while the bus is being probed
    std::optional<BusConnecting> m_connecting;   // while a connection is being made
    SubscriptionPtr m_reply;                     // of the probe, or the end of the connecting
    std::optional<QDBusConnection> m_connection;
    std::function<std::string()> m_accessibilityBusOfScreen;
    std::optional<AccessibilityProbe> m_accessibility; // while the service's or its bus's reply is pending
    SubscriptionPtr m_accessibilityEnd;                // of the patience with them
    SubscriptionPtr m_expectation;                     // while the first reply of the bus may come soon
    bool m_isQtConnected = false;
    int m_connections = 0;
    std::chrono::milliseconds m_nextRetry;
    QTimer m_lost; // started by Qt when the connection is lost
    Signal<> m_changed;
    DeferredWork m_later;
};

} // namespace tessarel::qt
