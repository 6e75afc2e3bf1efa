// SPDX-License-Identifier: MIT

#include "platform/x11/server/bell.h"

#include <xcb/xcb.h>

namespace tessarel::x11 {

void X11Bell::beep() {
    xcb_bell(m_connection.xcb(), 0); // percent relative to the user's base volume
    m_connection.flush();
}

} // namespace tessarel::x11
