// SPDX-License-Identifier: MIT

#include "support/x11/x_connection.h"

#include <stdexcept>

namespace tessarel::x11test {

XConnection::XConnection(const std::string& display) {
    int screenNumber = 0;
    m_connection = xcb_connect(display.empty() ? nullptr : display.c_str(), &screenNumber);
    if (xcb_connection_has_error(m_connection) != 0) {
        xcb_disconnect(m_connection);
        throw std::runtime_error("no X server at " + display);
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (; screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);
    m_screen = screens.data;
}

XConnection::~XConnection() {
    xcb_disconnect(m_connection);
}

xcb_atom_t XConnection::atom(std::string_view name) const {
    const auto known = m_atoms.find(name);
    if (known != m_atoms.end())
        return known->second;
    const auto cookie =
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = own(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    m_atoms.emplace(name, atom);
    return atom;
}

std::string XConnection::atomName(xcb_atom_t atom) const {
    const auto reply =
        own(xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, atom), nullptr));
    if (!reply)
        return {};
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

void XConnection::roundTrip() const {
    // The server may write the reply before the events for other clients, but it has written all of them
    // before it reads the next request.
    for (int reply = 0; reply < 2; ++reply)
        static_cast<void>(
            own(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)));
}

} // namespace tessarel::x11test
