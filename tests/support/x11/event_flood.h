// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/flood.h"
#include "support/x11/x_connection.h"

#include <string>

namespace tessarel::x11test {

/// The events that a flood consists of. None of them changes anything that a program has to react to, except
/// that `Windows` opens and closes a window and `Commands` wants replies.
enum class FloodKind {
    RootProperty,    ///< a property of the root window that no program reads
    ActiveWindow,    ///< `_NET_ACTIVE_WINDOW`, with its present value
    ClientList,      ///< `_NET_CLIENT_LIST`, with its present value
    WorkArea,        ///< `_NET_WORKAREA`, with its present value
    WindowProperty,  ///< a property of a window that no program reads
    WindowStrut,     ///< `_NET_WM_STRUT_PARTIAL` of a window, with its present value
    ForgedConfigure, ///< ConfigureNotify of a window, sent by another client
    ForgedKeys,      ///< presses of Ctrl+Alt+Left, sent by another client
    Windows,         ///< a window without the focus that is mapped and unmapped in turns
    Commands,        ///< the command `list layouts`, sent again before it is answered
};

/// A client that floods a display with events.
class EventFlood final : public Flood {
public:
    /// Sends `perSecond` events a second, or as many as the server takes. `window` is for the kinds that name
    /// one. Throws std::runtime_error if the server cannot be reached.
    EventFlood(const std::string& display, FloodKind kind, int perSecond,
               xcb_window_t window = XCB_WINDOW_NONE);
    EventFlood(const EventFlood&) = delete;
    EventFlood& operator=(const EventFlood&) = delete;
    ~EventFlood() override;

private:
    void send() override;
    void flush() override;
    void touch(xcb_window_t window, xcb_atom_t property, xcb_atom_t type);
    void openWindow();
    void createSender();
    void sendCommand();
    template <class Event>
    void forge(const Event& event, xcb_window_t destination);

    XConnection m_x;
    FloodKind m_kind;
    xcb_window_t m_window;
    xcb_atom_t m_property = XCB_ATOM_NONE;
    xcb_atom_t m_text = XCB_ATOM_NONE;      // the type of a command
    xcb_atom_t m_selection = XCB_ATOM_NONE; // whose owner gets commands
};

} // namespace tessarel::x11test
