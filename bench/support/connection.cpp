#include "support/connection.h"

#include <stdexcept>

namespace tessarel::bench {

Connection::Connection() : m_connection(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(m_connection) != 0) {
        xcb_disconnect(m_connection);
        throw std::runtime_error("no X server on DISPLAY");
    }
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
}

Connection::~Connection() {
    xcb_disconnect(m_connection);
}

xcb_atom_t Connection::atom(std::string_view name) const {
    const auto cookie =
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Received<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    if (!reply)
        throw std::runtime_error("the X server has gone");
    return reply->atom;
}

void Connection::roundTrip() const {
    const Received<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    if (!reply)
        throw std::runtime_error("the X server has gone");
}

} // namespace tessarel::bench
