#pragma once

#include "platform/x11/server/connection.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace tessarel::x11 {

using PropertyReply = Reply<xcb_get_property_reply_t>;

/// Asks for a property of `type`, of which at most `maximum` 32-bit units are of interest.
[[nodiscard]] xcb_get_property_cookie_t requestProperty(Connection& connection, xcb_window_t window,
                                                        xcb_atom_t property, xcb_atom_t type,
                                                        std::uint32_t maximum);

/// Asks for a list of windows that the manager keeps on the root window; longer than on any real desktop, it
/// has no values.
[[nodiscard]] xcb_get_property_cookie_t requestWindowList(Connection& connection, Atom list);

[[nodiscard]] PropertyReply propertyReply(Connection& connection, xcb_get_property_cookie_t cookie);

/// The 32-bit values of a property. Anybody may set anything: a property of another type or format, or longer
/// than was asked for, has no values. They live as long as the reply.
[[nodiscard]] std::span<const std::uint32_t> values(const PropertyReply& reply);
std::span<const std::uint32_t> values(PropertyReply&&) = delete;

/// The one value of a property; empty unless it has exactly one.
[[nodiscard]] std::optional<std::uint32_t> value(const PropertyReply& reply);

/// The bytes of a property of any text type; empty on the same conditions.
[[nodiscard]] std::string bytes(const PropertyReply& reply);

/// The property of `window` that `event` tells has changed.
[[nodiscard]] std::optional<xcb_atom_t> changedProperty(const Connection::Event& event, xcb_window_t window);

} // namespace tessarel::x11
