#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/server/window_manager_check.h"
#include "ports/alerts_port.h"
#include "ports/main_queue_port.h"
#include "ports/open_url_port.h"
#include "ports/trust_port.h"

#include <memory>

namespace tessarel::x11 {

/// What the user has logged in to.
enum class Session { X11, Wayland };

/// The kind of session that the values of $WAYLAND_DISPLAY and $XDG_SESSION_TYPE, each null when there is
/// none, speak of.
[[nodiscard]] Session sessionOf(const char* waylandDisplay, const char* sessionType);

/// X11 asks no permission; what other programs' windows need is a window manager that moves them for us, and
/// a session in which their windows are those of this display.
class X11Trust : public TrustPort {
public:
    /// All references outlive the trust.
    X11Trust(Connection& connection, Session session, MainQueuePort& queue, AlertsPort& alerts,
             OpenUrlPort& openUrl);
    X11Trust(const X11Trust&) = delete;
    X11Trust& operator=(const X11Trust&) = delete;
    ~X11Trust() override;

    /// Costs no round trip while the window manager stays the same.
    [[nodiscard]] bool isTrusted() override;

    /// Returns at once; at the next turn of the main queue an alert tells what is missing, if it still is.
    /// Does nothing while such an alert waits or stands.
    void prompt() override;

    /// Opens the page about what Tessarel needs.
    void openSettings() override;

private:
    [[nodiscard]] Alert explanation();
    void explain();

    WindowManagerCheck m_windowManager;
    Session m_session;
    MainQueuePort& m_queue;
    AlertsPort& m_alerts;
    OpenUrlPort& m_openUrl;
    bool m_prompting = false;
    std::shared_ptr<X11Trust*> m_self; // shared with work on the main queue, which may outlive us
};

} // namespace tessarel::x11
