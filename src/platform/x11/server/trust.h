// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/server/window_manager_check.h"
#include "ports/alerts_port.h"
#include "ports/explained_trust.h"
#include "ports/main_queue_port.h"

#include <functional>

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
class X11Trust : public ExplainedTrust {
public:
    /// All referenced objects must outlive this one.
    X11Trust(Connection& connection, Session session, MainQueuePort& queue, AlertsPort& alerts)
        : ExplainedTrust(queue, alerts), m_connection(connection), m_windowManager(connection),
          m_session(session) {}

    /// Returns whether windows can be moved. Takes no round trip unless the window manager has changed.
    [[nodiscard]] bool isTrusted() override;

protected:
    /// A window manager may be about to start, too.
    [[nodiscard]] bool mayComeYet() override;
    [[nodiscard]] Alert explanation() override;
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()> changed) override;

private:
    Connection& m_connection;
    WindowManagerCheck m_windowManager;
    Session m_session;
};

} // namespace tessarel::x11
