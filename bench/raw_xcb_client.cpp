// SPDX-License-Identifier: MIT

// The limit for a program outside the window manager: global hot keys that place the active window, with only
// the round trips that correctness requires between the key and the request.
//
//   raw_xcb_client KEYCODE X Y WIDTH HEIGHT [KEYCODE X Y WIDTH HEIGHT ...]
//
// Ctrl+Alt and the key KEYCODE give the active window the outer frame that follows. As a correct program
// must, the client reads the window's borders and state at the press, uses a barrier to know when the window
// manager has processed the request, and reads back the resulting frame.

#include "support/connection.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <deque>
#include <exception>
#include <poll.h>
#include <string>
#include <unordered_map>
#include <vector>

namespace tessarel::bench {

namespace {

constexpr int kBarrierTimeoutMs = 250;
constexpr std::uint32_t kNorthWestFromPagerWithAll = 1U | (0xFU << 8U) | (2U << 12U);
constexpr std::uint16_t kModifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
constexpr std::array<std::uint16_t, 4> kLocks{0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                              XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

struct Frame {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

/// Widths of the borders around the client: left, right, top, bottom; negative where the client draws its own
/// shadow.
using Extents = std::array<std::int32_t, 4>;

struct WindowState {
    Extents extents{};
    Frame outer;
    bool maximised = false;
};

class Client {
public:
    Client();
    void bind(std::uint8_t keyCode, const Frame& frame);
    void run();

private:
    using PropertyReply = Received<xcb_get_property_reply_t>;

    xcb_get_property_cookie_t ask(xcb_window_t window, xcb_atom_t property) const;
    PropertyReply answer(xcb_get_property_cookie_t cookie) const;
    xcb_window_t activeWindow() const;
    WindowState read(xcb_window_t window) const;
    void place(const Frame& frame);
    void send(xcb_window_t window, xcb_atom_t type, const std::array<std::uint32_t, 5>& data) const;
    void request(xcb_window_t window, const Frame& frame, const WindowState& state);
    void awaitBarrier();
    bool isBarrier(const xcb_generic_event_t& event) const;

    Connection m_connection;
    xcb_connection_t* m_x = m_connection.get();
    xcb_window_t m_barrier = xcb_generate_id(m_x);
    std::int32_t m_barrierX = -10;
    std::unordered_map<std::uint8_t, Frame> m_frames;
    std::deque<Received<xcb_generic_event_t>> m_later; // events that arrived while waiting for the barrier
    xcb_atom_t m_activeWindow = m_connection.atom("_NET_ACTIVE_WINDOW");
    xcb_atom_t m_frameExtents = m_connection.atom("_NET_FRAME_EXTENTS");
    xcb_atom_t m_shadowExtents = m_connection.atom("_GTK_FRAME_EXTENTS");
    xcb_atom_t m_state = m_connection.atom("_NET_WM_STATE");
    xcb_atom_t m_maximisedHorz = m_connection.atom("_NET_WM_STATE_MAXIMIZED_HORZ");
    xcb_atom_t m_maximisedVert = m_connection.atom("_NET_WM_STATE_MAXIMIZED_VERT");
    xcb_atom_t m_moveResize = m_connection.atom("_NET_MOVERESIZE_WINDOW");
};

template <typename T>
std::vector<T> values(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 8 * sizeof(T))
        return {};
    std::vector<T> result(reply->value_len);
    std::memcpy(result.data(), xcb_get_property_value(reply), result.size() * sizeof(T));
    return result;
}

Client::Client() {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_create_window(m_x, XCB_COPY_FROM_PARENT, m_barrier, m_connection.root(), -10, -10, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
}

void Client::bind(std::uint8_t keyCode, const Frame& frame) {
    m_frames[keyCode] = frame;
    for (const auto lock : kLocks)
        xcb_grab_key(m_x, 0, m_connection.root(), kModifiers | lock, keyCode, XCB_GRAB_MODE_ASYNC,
                     XCB_GRAB_MODE_ASYNC);
}

void Client::run() {
    m_connection.flush();
    for (;;) {
        Received<xcb_generic_event_t> event;
        if (!m_later.empty()) {
            event = std::move(m_later.front());
            m_later.pop_front();
        } else {
            event.reset(xcb_wait_for_event(m_x));
        }
        if (!event)
            return;
        if ((event->response_type & 0x7F) != XCB_KEY_PRESS)
            continue;
        const auto* const press = reinterpret_cast<const xcb_key_press_event_t*>(event.get());
        if (const auto found = m_frames.find(press->detail); found != m_frames.end())
            place(found->second);
    }
}

xcb_get_property_cookie_t Client::ask(xcb_window_t window, xcb_atom_t property) const {
    return xcb_get_property(m_x, 0, window, property, XCB_ATOM_ANY, 0, 64);
}

Client::PropertyReply Client::answer(xcb_get_property_cookie_t cookie) const {
    return PropertyReply(xcb_get_property_reply(m_x, cookie, nullptr));
}

xcb_window_t Client::activeWindow() const {
    const auto windows = values<xcb_window_t>(answer(ask(m_connection.root(), m_activeWindow)).get());
    return windows.empty() ? XCB_NONE : windows.front();
}

WindowState Client::read(xcb_window_t window) const {
    const auto frameCookie = ask(window, m_frameExtents);
    const auto shadowCookie = ask(window, m_shadowExtents);
    const auto stateCookie = ask(window, m_state);
    const auto geometryCookie = xcb_get_geometry(m_x, window);
    const auto originCookie = xcb_translate_coordinates(m_x, window, m_connection.root(), 0, 0);

    WindowState result;
    const auto borders = values<std::int32_t>(answer(frameCookie).get());
    const auto shadow = values<std::int32_t>(answer(shadowCookie).get());
    for (std::size_t side = 0; side < result.extents.size(); ++side)
        result.extents[side] = shadow.size() == 4 ? -shadow[side] : borders.size() == 4 ? borders[side] : 0;
    for (const auto state : values<xcb_atom_t>(answer(stateCookie).get()))
        result.maximised |= state == m_maximisedHorz || state == m_maximisedVert;

    const Received<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(m_x, geometryCookie, nullptr));
    const Received<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(m_x, originCookie, nullptr));
    if (!size || !origin)
        return result;
    const auto [left, right, top, bottom] = result.extents;
    result.outer = {origin->dst_x - left, origin->dst_y - top, size->width + left + right,
                    size->height + top + bottom};
    return result;
}

void Client::place(const Frame& frame) {
    const auto window = activeWindow();
    if (window == XCB_NONE)
        return;
    const auto before = read(window);
    request(window, frame, before);
    const auto after = read(window);
    if (after.extents != before.extents) {
        request(window, frame, after);
        (void)read(window);
    }
}

void Client::send(xcb_window_t window, xcb_atom_t type, const std::array<std::uint32_t, 5>& data) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::memcpy(message.data.data32, data.data(), sizeof message.data.data32);
    xcb_send_event(m_x, 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

void Client::request(xcb_window_t window, const Frame& frame, const WindowState& state) {
    if (state.maximised)
        send(window, m_state, {0, m_maximisedHorz, m_maximisedVert, 2, 0});
    const auto [left, right, top, bottom] = state.extents;
    send(window, m_moveResize,
         {kNorthWestFromPagerWithAll, static_cast<std::uint32_t>(frame.x),
          static_cast<std::uint32_t>(frame.y), static_cast<std::uint32_t>(frame.width - left - right),
          static_cast<std::uint32_t>(frame.height - top - bottom)});
    m_barrierX = m_barrierX == -10 ? -11 : -10;
    const auto x = static_cast<std::uint32_t>(m_barrierX);
    xcb_configure_window(m_x, m_barrier, XCB_CONFIG_WINDOW_X, &x);
    m_connection.flush();
    awaitBarrier();
}

void Client::awaitBarrier() {
    for (;;) {
        while (Received<xcb_generic_event_t> event{xcb_poll_for_event(m_x)}) {
            if (isBarrier(*event))
                return;
            m_later.push_back(std::move(event));
        }
        pollfd socket{xcb_get_file_descriptor(m_x), POLLIN, 0};
        if (poll(&socket, 1, kBarrierTimeoutMs) <= 0)
            return;
    }
}

bool Client::isBarrier(const xcb_generic_event_t& event) const {
    return event.response_type == XCB_CONFIGURE_NOTIFY &&
           reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == m_barrier;
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    try {
        tessarel::bench::Client client;
        for (int at = 1; at + 4 < count; at += 5)
            client.bind(static_cast<std::uint8_t>(std::stoi(arguments[at])),
                        {std::stoi(arguments[at + 1]), std::stoi(arguments[at + 2]),
                         std::stoi(arguments[at + 3]), std::stoi(arguments[at + 4])});
        client.run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "raw_xcb_client: %s\n", error.what());
        return 1;
    }
}
