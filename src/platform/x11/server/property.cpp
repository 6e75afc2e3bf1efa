// SPDX-License-Identifier: MIT

#include "platform/x11/server/property.h"

#include "platform/x11/server/event.h"

namespace tessarel::x11 {

namespace {

// Property formats, in bits per value.
constexpr std::uint8_t kWords = 32;
constexpr std::uint8_t kBytes = 8;

constexpr std::uint32_t kMostWindows = 0x10000; // far more than any desktop has

/// Returns whether the reply holds the complete value in that format. A property that is missing, longer than
/// requested, or of another type than requested does not.
bool isWhole(const PropertyReply& reply, std::uint8_t format) {
    return reply && reply->format == format && reply->bytes_after == 0;
}

} // namespace

xcb_get_property_cookie_t requestProperty(Connection& connection, xcb_window_t window, xcb_atom_t property,
                                          xcb_atom_t type, std::uint32_t maximum) {
    return xcb_get_property(connection.xcb(), 0, window, property, type, 0, maximum);
}

xcb_get_property_cookie_t requestNumber(Connection& connection, xcb_window_t window, Atom property) {
    return requestProperty(connection, window, connection.atom(property), XCB_ATOM_CARDINAL, 1);
}

xcb_get_property_cookie_t requestWindowList(Connection& connection, Atom list) {
    return requestProperty(connection, connection.root(), connection.atom(list), XCB_ATOM_WINDOW,
                           kMostWindows);
}

PropertyReply propertyReply(Connection& connection, xcb_get_property_cookie_t cookie) {
    return connection.reply<xcb_get_property_reply>(cookie);
}

std::span<const std::uint32_t> values(const PropertyReply& reply) {
    if (!isWhole(reply, kWords))
        return {};
    return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::optional<std::uint32_t> value(const PropertyReply& reply) {
    const auto all = values(reply);
    return all.size() == 1 ? std::optional(all.front()) : std::nullopt;
}

std::string bytes(const PropertyReply& reply) {
    if (!isWhole(reply, kBytes))
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::optional<xcb_atom_t> changedProperty(const Connection::Event& event, xcb_window_t window) {
    if (eventType(event) != XCB_PROPERTY_NOTIFY)
        return std::nullopt;
    const auto& change = eventAs<xcb_property_notify_event_t>(event);
    return change.window == window ? std::optional(change.atom) : std::nullopt;
}

} // namespace tessarel::x11
