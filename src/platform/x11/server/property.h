// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace tessarel::x11 {

/// The `_NET_WM_DESKTOP` of a window that is on all desktops.
inline constexpr std::uint32_t kAllDesktops = 0xFFFFFFFF;

/// The reply to a property request; null when the request failed, usually because the window does not exist.
using PropertyReply = Reply<xcb_get_property_reply_t>;

/// Requests a property of type `type`. A value of more than `maximum` 32-bit units is later treated as having
/// no values.
[[nodiscard]] xcb_get_property_cookie_t requestProperty(Connection& connection, xcb_window_t window,
                                                        xcb_atom_t property, xcb_atom_t type,
                                                        std::uint32_t maximum);

/// Requests a property that holds a single number, such as `_NET_WM_PID`.
[[nodiscard]] xcb_get_property_cookie_t requestNumber(Connection& connection, xcb_window_t window,
                                                      Atom property);

/// Requests one of the window lists that the window manager publishes on the root window. A list that is
/// longer than on any real desktop is treated as having no values.
[[nodiscard]] xcb_get_property_cookie_t requestWindowList(Connection& connection, Atom list);

/// Waits for the reply to a property request.
[[nodiscard]] PropertyReply propertyReply(Connection& connection, xcb_get_property_cookie_t cookie);

/// Returns the 32-bit values of a property, valid as long as the reply. Any client can set any property, so
/// one with another type or format, or longer than requested, is returned as empty.
[[nodiscard]] std::span<const std::uint32_t> values(const PropertyReply& reply);
std::span<const std::uint32_t> values(PropertyReply&&) = delete;

/// Returns the value of a property that has exactly one 32-bit value, else `std::nullopt`.
[[nodiscard]] std::optional<std::uint32_t> value(const PropertyReply& reply);

/// Returns the bytes of a property of format 8, which all text types have. Empty for another type or format,
/// and when the property is longer than requested. The encoding is not checked.
[[nodiscard]] std::string bytes(const PropertyReply& reply);

/// Returns the property that changed if `event` is a PropertyNotify of `window`, else `std::nullopt`.
[[nodiscard]] std::optional<xcb_atom_t> changedProperty(const Connection::Event& event, xcb_window_t window);

} // namespace tessarel::x11
