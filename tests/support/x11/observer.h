// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/deadline.h"
#include "support/x11/frame.h"
#include "support/x11/x_connection.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::x11test {

/// What a _NET_WM_STATE message does with a state.
enum class StateChange : std::uint32_t { Remove = 0, Add = 1 };

/// Observes a desktop, and sends requests to its window manager as a pager would, over a connection of its
/// own that the program under test does not share.
class Observer {
public:
    explicit Observer(const std::string& display);

    [[nodiscard]] XConnection& x() { return m_x; }
    [[nodiscard]] xcb_window_t root() const { return m_x.root(); }

    /// Waits until `holds` returns true; checks again at every event of the desktop and of watched windows.
    /// Returns false at the deadline.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& holds, const Deadline& deadline = Deadline());
    /// Makes waitUntil() check again when `window` moves or changes.
    void watch(xcb_window_t window);
    /// Waits until the window manager has processed all earlier requests, from any connection, that the
    /// server has already received. Returns false if it does not reply.
    [[nodiscard]] bool settle(const Deadline& deadline = Deadline());
    /// Pings the program of `window`, then settles: the program has processed all events sent to it, and the
    /// window manager the requests that followed. Returns false if either does not reply.
    [[nodiscard]] bool settleProgram(xcb_window_t window, const Deadline& deadline = Deadline());

    /// Returns the visible outer frame: with the decoration of the window manager, without shadows that the
    /// client draws. Empty if there is no such window.
    [[nodiscard]] std::optional<Frame> outerFrame(xcb_window_t window);
    /// Returns the frame of the client window.
    [[nodiscard]] std::optional<Frame> clientFrame(xcb_window_t window);
    [[nodiscard]] std::optional<Extents> extents(xcb_window_t window, std::string_view property);
    /// Returns how far the window manager's decoration reaches beyond the client window. Where the window
    /// manager does not publish it, the frame's window is measured.
    [[nodiscard]] Extents decoration(xcb_window_t window);
    /// Returns the child of the root window that contains `window` or is it.
    [[nodiscard]] xcb_window_t topLevel(xcb_window_t window);
    /// Returns the frame, borders included, of the child of the root window that contains `window` or is it.
    [[nodiscard]] std::optional<Frame> topLevelFrame(xcb_window_t window);

    /// Returns the 32-bit values of a property; empty if it is missing or has another format.
    [[nodiscard]] std::vector<std::uint32_t> values(xcb_window_t window, std::string_view property);
    /// Returns true if a press at the pointer would go to `window` or its decoration.
    [[nodiscard]] bool isUnderPointer(xcb_window_t window);

    [[nodiscard]] std::string text(xcb_window_t window, std::string_view property);

    [[nodiscard]] xcb_window_t activeWindow();
    /// Returns the managed windows, the oldest first.
    [[nodiscard]] std::vector<xcb_window_t> clients();
    [[nodiscard]] bool managed(xcb_window_t window);
    /// Returns a managed window with this class (second part of WM_CLASS), or XCB_WINDOW_NONE.
    [[nodiscard]] xcb_window_t windowOfClass(std::string_view className);
    /// Returns true once the window manager manages a new window. Checks WM_STATE, too, because the window
    /// manager may still list a destroyed window whose id was reused.
    [[nodiscard]] bool hasTakenCharge(xcb_window_t window);
    /// Returns the names of the states, such as "_NET_WM_STATE_SHADED".
    [[nodiscard]] std::set<std::string> states(xcb_window_t window);
    [[nodiscard]] bool hasState(xcb_window_t window, std::string_view state);
    /// Returns the work area of the current desktop: the part of the root window that is not reserved, for
    /// all monitors together. Where the window manager does not publish it, it is what all bars leave free.
    [[nodiscard]] std::optional<Frame> workArea();
    [[nodiscard]] bool supports(std::string_view hint);
    /// Returns the name of the running window manager, "nameless" if it has none; empty if none is running.
    [[nodiscard]] std::string windowManagerName();
    [[nodiscard]] xcb_window_t selectionOwner(std::string_view selection);

    void activate(xcb_window_t window);
    /// Activates a window and waits until it is active. Returns false if the window manager does not do it.
    [[nodiscard]] bool activateAndWait(xcb_window_t window);
    void changeState(xcb_window_t window, StateChange change, std::string_view first,
                     std::string_view second = {});
    void iconify(xcb_window_t window);
    /// Requests an outer frame for `window`, as a pager would.
    void moveOuterFrame(xcb_window_t window, const Frame& frame);
    /// Sends a client message about `window` to the root window, for the window manager.
    void sendToRoot(xcb_window_t window, std::string_view type, std::array<std::uint32_t, 5> data);

private:
    /// Returns the root window without the struts of its children and of all managed windows.
    [[nodiscard]] Frame areaWithoutStruts();
    [[nodiscard]] Owned<xcb_get_property_reply_t> property(xcb_window_t window, std::string_view name,
                                                           std::uint32_t maximum);
    [[nodiscard]] bool isBarrierAnswer(const xcb_generic_event_t& event) const;
    [[nodiscard]] bool isPingAnswer(const xcb_generic_event_t& event);
    /// Reads all events that have arrived; if there are none, waits a moment for one, at most until
    /// `deadline`.
    void drainEvents(const Deadline& deadline);

    XConnection m_x;
    xcb_window_t m_barrier = XCB_WINDOW_NONE;
    std::int16_t m_barrierX = 0;
    std::set<std::int16_t> m_barrierPlaces; // positions of the barrier window since settle() was called
    bool m_barrierAnswered = false;
    std::uint32_t m_ping = 0;
    bool m_pingAnswered = false;
};

} // namespace tessarel::x11test
