// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <string>

namespace tessarel::x11 {

/// Returns what is printed on the keys that type a character in the active layout of the keyboard, by virtual
/// key code. Waits for several replies. Returns an empty map when the server does not have the keyboard
/// extension.
[[nodiscard]] std::map<std::int64_t, std::string> layoutCharacters(xcb_connection_t* xcb);

} // namespace tessarel::x11
