// SPDX-License-Identifier: MIT

#include "support/pager.h"

#include "support/await.h"

#include <algorithm>
#include <string_view>

namespace tessarel::bench {

std::vector<xcb_window_t> Pager::windows() const {
    constexpr std::uint32_t kMost = 1024;
    const Received<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection.get(),
        xcb_get_property(m_connection.get(), 0, m_connection.root(), m_connection.atom("_NET_CLIENT_LIST"),
                         XCB_ATOM_WINDOW, 0, kMost),
        nullptr));
    if (!reply)
        return {};
    const auto* const list = static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
    return {list, list + reply->value_len};
}

bool Pager::lists(xcb_window_t window) const {
    const auto all = windows();
    return std::ranges::find(all, window) != all.end();
}

xcb_window_t Pager::awaitWindowOf(const std::string& program) const {
    xcb_window_t found = XCB_NONE;
    await("a window of the program", [&] {
        for (const xcb_window_t window : windows()) {
            if (belongsTo(window, program) && isShown(window))
                found = window;
        }
        return found != XCB_NONE;
    });
    return found;
}

bool Pager::isShown(xcb_window_t window) const {
    xcb_connection_t* const x = m_connection.get();
    const Received<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool Pager::belongsTo(xcb_window_t window, const std::string& program) const {
    constexpr std::uint32_t kMost = 64;
    xcb_connection_t* const x = m_connection.get();
    const Received<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        x, xcb_get_property(x, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, kMost), nullptr));
    if (!reply)
        return false;
    const std::string_view names(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                 static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    return names.starts_with(program) && names.substr(program.size()).starts_with('\0');
}

void Pager::close(xcb_window_t window) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = m_connection.atom("_NET_CLOSE_WINDOW");
    xcb_send_event(m_connection.get(), 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    m_connection.flush();
}

} // namespace tessarel::bench
