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

/// What a window manager is asked to do with a state of a window.
enum class StateChange : std::uint32_t { Remove = 0, Add = 1 };

/// Looks at a desktop, and asks its window manager for things as a pager would, over a connection that has
/// nothing to do with the program under test.
class Observer {
public:
    explicit Observer(const std::string& display);

    [[nodiscard]] XConnection& x() { return m_x; }
    [[nodiscard]] xcb_window_t root() const { return m_x.root(); }

    /// Waits until `holds` answers true; looks again at every event of the desktop and of watched windows.
    /// False when the deadline passes first.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& holds, const Deadline& deadline = Deadline());
    /// Makes waitUntil() look again when `window` moves or changes.
    void watch(xcb_window_t window);
    /// Waits until the window manager has handled all that was asked of it before, by any connection whose
    /// requests the server has already seen. False when it does not answer.
    [[nodiscard]] bool settle(const Deadline& deadline = Deadline());
    /// The same after the program of `window` has handled all events that have come to it: what they make it
    /// ask for has been done, too. False when one of the two does not answer.
    [[nodiscard]] bool settleProgram(xcb_window_t window, const Deadline& deadline = Deadline());

    /// The visible outer frame: with the window manager's decoration, without the shadows that a client
    /// draws itself. Empty when there is no such window.
    [[nodiscard]] std::optional<Frame> outerFrame(xcb_window_t window);
    /// The client's own window.
    [[nodiscard]] std::optional<Frame> clientFrame(xcb_window_t window);
    [[nodiscard]] std::optional<Extents> extents(xcb_window_t window, std::string_view property);

    /// The 32-bit values of a property; empty when it is missing or has another format.
    [[nodiscard]] std::vector<std::uint32_t> values(xcb_window_t window, std::string_view property);
    /// Returns whether a press where the pointer is would go to `window` or its decoration.
    [[nodiscard]] bool isUnderPointer(xcb_window_t window);

    [[nodiscard]] std::string text(xcb_window_t window, std::string_view property);

    [[nodiscard]] xcb_window_t activeWindow();
    /// The managed windows, the oldest first.
    [[nodiscard]] std::vector<xcb_window_t> clients();
    [[nodiscard]] bool managed(xcb_window_t window);
    /// Whether the window manager has taken charge of a new window. It may still list, and call active, one
    /// that has gone and whose number the new one was given.
    [[nodiscard]] bool hasTakenCharge(xcb_window_t window);
    /// Names of the states, such as "_NET_WM_STATE_SHADED".
    [[nodiscard]] std::set<std::string> states(xcb_window_t window);
    [[nodiscard]] bool hasState(xcb_window_t window, std::string_view state);
    /// The part of the root window that the window manager leaves to windows, for all monitors together.
    [[nodiscard]] std::optional<Frame> workArea();
    [[nodiscard]] bool supports(std::string_view hint);
    /// Name of the running window manager; empty without one.
    [[nodiscard]] std::string windowManagerName();
    [[nodiscard]] xcb_window_t selectionOwner(std::string_view selection);

    void activate(xcb_window_t window);
    void changeState(xcb_window_t window, StateChange change, std::string_view first,
                     std::string_view second = {});
    void iconify(xcb_window_t window);
    /// Moves the outer frame of `window`, as a user would by hand.
    void moveOuterFrame(xcb_window_t window, const Frame& frame);
    /// Sends a client message to the root window, to whoever manages windows.
    void sendToRoot(xcb_window_t window, std::string_view type, std::array<std::uint32_t, 5> data);

private:
    [[nodiscard]] Owned<xcb_get_property_reply_t> property(xcb_window_t window, std::string_view name,
                                                           std::uint32_t maximum);
    [[nodiscard]] bool isBarrierAnswer(const xcb_generic_event_t& event) const;
    [[nodiscard]] bool isPingAnswer(const xcb_generic_event_t& event);
    /// Takes every event that has come; waits for one until `deadline`, but not long.
    void drainEvents(const Deadline& deadline);

    XConnection m_x;
    xcb_window_t m_barrier = XCB_WINDOW_NONE;
    std::int16_t m_barrierX = 0;
    std::set<std::int16_t> m_barrierPlaces; // where it has been sent since settle() was called
    bool m_barrierAnswered = false;
    std::uint32_t m_ping = 0;
    bool m_pingAnswered = false;
};

} // namespace tessarel::x11test
