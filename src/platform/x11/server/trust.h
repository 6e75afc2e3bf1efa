// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/server/window_manager_check.h"
#include "ports/alerts_port.h"
#include "ports/main_queue_port.h"
#include "ports/trust_port.h"

#include <chrono>

namespace tessarel::x11 {

/// The kind of desktop session.
enum class Session { X11, Wayland };

/// Returns the kind of session for the values of $WAYLAND_DISPLAY and $XDG_SESSION_TYPE, null if unset. They
/// are only a reason to ask whether the server is Xwayland: one that is nested or remote inherits them, too.
[[nodiscard]] Session sessionOf(Connection& connection, const char* waylandDisplay, const char* sessionType);

/// Trust on X11: whether other programs' windows can be moved at all.
///
/// X11 needs no permission. It takes a window manager with the EWMH hints that Tessarel uses, and a session
/// that is not Wayland, because native Wayland windows are not on the X display.
class X11Trust : public TrustPort {
public:
    /// All referenced objects must outlive this one.
    X11Trust(Connection& connection, Session session, MainQueuePort& queue, AlertsPort& alerts);
    X11Trust(const X11Trust&) = delete;
    X11Trust& operator=(const X11Trust&) = delete;
    ~X11Trust() override = default;

    /// Returns whether windows can be moved. Takes no round trip unless the window manager has changed.
    [[nodiscard]] bool isTrusted() override;

    /// How long after the start of the program an alert about a missing window manager waits, because one may
    /// be about to start, too.
    static constexpr std::chrono::seconds kPatience{10};

    /// Shows an alert that explains what is missing, in the next iteration of the main queue; if no window
    /// manager is running, not before `kPatience` has passed since the start. By then it may be trusted; an
    /// open alert is closed as soon as it is. An alert that is open already is shown anew, in front of other
    /// windows. Does nothing when trusted, nor while an alert is pending.
    void prompt() override;

    // There is no system setting to change: the alert says all there is to know.
    [[nodiscard]] bool hasSettings() const override { return false; }
    void openSettings() override {}

private:
    [[nodiscard]] Alert explanation();
    void explain();
    void close();
    void closeWhenTrusted();

    Connection& m_connection;
    WindowManagerCheck m_windowManager;
    Session m_session;
    MainQueuePort& m_queue;
    AlertsPort& m_alerts;
    MainQueuePort::TimePoint m_startedAt;
    SubscriptionPtr m_prompt; // null unless an alert is pending
    SubscriptionPtr m_alert;  // null unless one is open
    SubscriptionPtr m_events; // while an alert is open
};

} // namespace tessarel::x11
