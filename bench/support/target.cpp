// SPDX-License-Identifier: MIT

#include "support/target.h"

#include <array>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <thread>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kOpenTimeout = 10s;
constexpr Milliseconds kQuiet = 50ms;

} // namespace

Target::Target() : m_window(xcb_generate_id(m_x)) {
    constexpr std::string_view title = "target";
    xcb_create_window(m_x, XCB_COPY_FROM_PARENT, m_window, m_connection.root(), 200, 150, 640, 480, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(m_x, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        title.size(), title.data());
    xcb_map_window(m_x, m_window);
    m_connection.flush();
    awaitActive(XCB_NONE);
    watch();
}

Target::Target(const std::vector<std::string>& command) {
    const auto before = activeWindow();
    m_program = std::make_unique<ChildProcess>(command);
    m_window = awaitActive(before);
    watch();
}

xcb_window_t Target::activeWindow() const {
    const auto cookie = xcb_get_property(m_x, 0, m_connection.root(), m_activeWindow, XCB_ATOM_WINDOW, 0, 1);
    const Received<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_x, cookie, nullptr));
    xcb_window_t window = XCB_NONE;
    if (reply && reply->value_len == 1)
        std::memcpy(&window, xcb_get_property_value(reply.get()), sizeof window);
    return window;
}

xcb_window_t Target::awaitActive(xcb_window_t notThis) {
    const auto end = Clock::now() + kOpenTimeout;
    while (Clock::now() < end) {
        const auto active = activeWindow();
        if (active != XCB_NONE && active != notThis)
            return active;
        std::this_thread::sleep_for(5ms);
    }
    throw std::runtime_error("the target's window did not become active");
}

void Target::watch() {
    // Watches the window and all its ancestors below the root; the topmost of them is the window manager's
    // frame.
    const std::uint32_t structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    for (auto window = m_window; window != m_connection.root();) {
        xcb_change_window_attributes(m_x, window, XCB_CW_EVENT_MASK, &structure);
        const Received<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(m_x, xcb_query_tree(m_x, window), nullptr));
        if (!tree)
            throw std::runtime_error("the target has gone");
        window = tree->parent;
    }
    // Waits until a program that has just started no longer changes its own window.
    while (untilQuiet(300ms).last)
        continue;
}

void Target::discardEvents() {
    m_connection.roundTrip();
    while (Received<xcb_generic_event_t> event{xcb_poll_for_event(m_x)})
        continue;
}

/// Counts the ConfigureNotify events that have arrived; with `size`, only those of the client window with
/// that size. Returns true if there was any.
bool Target::takeEvents(Reaction& reaction, const std::optional<ClientSize>& size) {
    bool any = false;
    while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(m_x)}) {
        if ((event->response_type & 0x7F) != XCB_CONFIGURE_NOTIFY)
            continue;
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(*event);
        if (size && (change.window != m_window || ClientSize{change.width, change.height} != size))
            continue;
        reaction.last = Clock::now();
        ++reaction.events;
        any = true;
    }
    return any;
}

std::optional<Clock::time_point> Target::untilOfSize(const ClientSize& size, Milliseconds patience) {
    return untilQuiet(patience, size).last;
}

Reaction Target::untilQuiet(Milliseconds patience, const std::optional<ClientSize>& size) {
    Reaction reaction;
    auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(patience);
    for (auto now = Clock::now(); now < end; now = Clock::now()) {
        if (takeEvents(reaction, size))
            end = *reaction.last + std::chrono::duration_cast<Clock::duration>(kQuiet);
        pollfd socket{xcb_get_file_descriptor(m_x), POLLIN, 0};
        poll(&socket, 1, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(end - now).count()));
    }
    return reaction;
}

ClientSize Target::clientSize() const {
    const Received<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(m_x, xcb_get_geometry(m_x, m_window), nullptr));
    if (!size)
        throw std::runtime_error("the target has gone");
    return {size->width, size->height};
}

Frame Target::frame() const {
    const auto geometryCookie = xcb_get_geometry(m_x, m_window);
    const auto originCookie = xcb_translate_coordinates(m_x, m_window, m_connection.root(), 0, 0);
    const auto bordersCookie = xcb_get_property(m_x, 0, m_window, m_frameExtents, XCB_ATOM_CARDINAL, 0, 4);
    const Received<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(m_x, geometryCookie, nullptr));
    const Received<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(m_x, originCookie, nullptr));
    const Received<xcb_get_property_reply_t> borders(xcb_get_property_reply(m_x, bordersCookie, nullptr));
    if (!size || !origin || !borders)
        throw std::runtime_error("the target has gone");
    std::array<int, 4> extents{};
    if (borders->value_len == extents.size())
        std::memcpy(extents.data(), xcb_get_property_value(borders.get()), sizeof extents);
    const auto [left, right, top, bottom] = extents;
    return {origin->dst_x - left, origin->dst_y - top, size->width + left + right,
            size->height + top + bottom};
}

} // namespace tessarel::bench
