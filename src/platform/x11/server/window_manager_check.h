// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"

#include <xcb/xcb.h>

#include <string_view>
#include <vector>

namespace tessarel::x11 {

/// What the window manager of the display supports.
struct WindowManagerState {
    bool running = false;
    /// The EWMH hints that Tessarel needs and `_NET_SUPPORTED` does not announce.
    std::vector<std::string_view> missingHints;
    bool movesOnMessage = false;                ///< announces `_NET_MOVERESIZE_WINDOW`
    bool publishesExtents = false;              ///< announces `_NET_FRAME_EXTENTS`
    bool maximizes = false;                     ///< announces the states of maximised windows
    xcb_window_t checkWindow = XCB_WINDOW_NONE; ///< differs from that of every other running window manager

    /// Returns whether Tessarel can move windows with this window manager.
    [[nodiscard]] bool suffices() const { return running && missingHints.empty(); }
};

/// Watches whether a window manager runs that supports the hints Tessarel needs.
///
/// A window manager runs when the window in `_NET_SUPPORTING_WM_CHECK` of the root window has the same
/// property with itself as the value. The property on the root window alone may be left over from one that
/// died.
class WindowManagerCheck {
public:
    /// `connection` must outlive the check.
    explicit WindowManagerCheck(Connection& connection);

    /// Returns the state as of the last event read. Takes up to two round trips after a change, else none.
    [[nodiscard]] const WindowManagerState& state();

private:
    [[nodiscard]] WindowManagerState ask();
    [[nodiscard]] bool namesItself(xcb_window_t window);
    [[nodiscard]] xcb_get_property_cookie_t askForWindow(xcb_window_t namedBy);
    void watch(const Connection::Event& event);

    Connection& m_connection;
    WindowManagerState m_state;
    bool m_current = false;
    SubscriptionPtr m_reads;
};

} // namespace tessarel::x11
