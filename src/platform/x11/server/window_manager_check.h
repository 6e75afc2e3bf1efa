#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"

#include <xcb/xcb.h>

#include <string_view>
#include <vector>

namespace tessarel::x11 {

/// What the window manager of the display has to offer.
struct WindowManagerState {
    bool running = false;
    std::vector<std::string_view>
        missingHints; ///< those of the hints Tessarel lives on that it does not know

    [[nodiscard]] bool suffices() const { return running && missingHints.empty(); }
};

/// Watches whether a window manager runs that does what Tessarel needs.
///
/// It runs when the window that it names on the root window names itself, so the traces of one that has died
/// do not count.
class WindowManagerCheck {
public:
    /// `connection` outlives the check.
    explicit WindowManagerCheck(Connection& connection);

    /// The state as of the last event read. Asks the server, two round trips, only after something has
    /// changed.
    [[nodiscard]] const WindowManagerState& state();

private:
    [[nodiscard]] WindowManagerState ask();
    [[nodiscard]] bool namesItself(xcb_window_t window);
    [[nodiscard]] xcb_get_property_cookie_t askForWindow(xcb_window_t namedBy);
    void watch(const Connection::Event& event);

    Connection& m_connection;
    WindowManagerState m_state;
    bool m_current = false;
    xcb_window_t m_window = XCB_WINDOW_NONE; ///< of the window manager
    SubscriptionPtr m_reads;
};

} // namespace tessarel::x11
