// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xkb/keymap.h"

#include <xcb/xcb.h>

#include <cstdint>

namespace tessarel::x11 {

/// What the keys of the keyboard type now.
struct ActiveLayout {
    xkb::Keymap keymap;
    std::uint32_t index = 0; ///< of the layout in use, in the keymap
};

/// Asks the server and waits for several replies. The keys of the keymap type nothing when the server does
/// not have the keyboard extension.
[[nodiscard]] ActiveLayout activeLayout(xcb_connection_t* xcb);

} // namespace tessarel::x11
