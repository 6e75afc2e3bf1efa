#pragma once

#include "model/lifetime.h"
#include "model/subscription.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/server/window_manager_check.h"
#include "ports/alerts_port.h"
#include "ports/main_queue_port.h"
#include "ports/open_url_port.h"
#include "ports/trust_port.h"

namespace tessarel::x11 {

/// The kind of desktop session.
enum class Session { X11, Wayland };

/// Returns the kind of session for the values of $WAYLAND_DISPLAY and $XDG_SESSION_TYPE; null means unset.
/// Either one is enough for Wayland: a program on XWayland also has a $DISPLAY.
[[nodiscard]] Session sessionOf(const char* waylandDisplay, const char* sessionType);

/// Trust on X11: whether other programs' windows can be moved at all.
///
/// X11 needs no permission. It takes a window manager with the EWMH hints that Tessarel uses, and a session
/// that is not Wayland, because native Wayland windows are not on the X display.
class X11Trust : public TrustPort {
public:
    /// All referenced objects must outlive this one.
    X11Trust(Connection& connection, Session session, MainQueuePort& queue, AlertsPort& alerts,
             OpenUrlPort& openUrl);
    X11Trust(const X11Trust&) = delete;
    X11Trust& operator=(const X11Trust&) = delete;
    ~X11Trust() override = default;

    /// Returns whether windows can be moved. Takes no round trip unless the window manager has changed.
    [[nodiscard]] bool isTrusted() override;

    /// Shows an alert that explains what is missing, in the next iteration of the main queue and only if it
    /// is still missing then. Does nothing when trusted, nor while such an alert is pending or open.
    void prompt() override;

    /// Opens the web page about supported platforms: there is no system setting to change.
    void openSettings() override;

private:
    [[nodiscard]] Alert explanation();
    void explain();

    WindowManagerCheck m_windowManager;
    Session m_session;
    MainQueuePort& m_queue;
    AlertsPort& m_alerts;
    OpenUrlPort& m_openUrl;
    Lifetime m_lifetime;
    SubscriptionPtr m_prompt; // null unless an alert is pending or open
};

} // namespace tessarel::x11
