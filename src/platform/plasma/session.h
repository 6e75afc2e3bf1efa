// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/bus_link.h"

namespace tessarel::plasma {

/// Returns whether the environment describes a Wayland session, for the values of $WAYLAND_DISPLAY and
/// $XDG_SESSION_TYPE, null if unset. Sends nothing.
[[nodiscard]] bool mayBeWayland(const char* waylandDisplay, const char* sessionType);

/// Returns whether KWin runs on the bus. Waits at most a second for the bus.
[[nodiscard]] bool hasCompositor(wayland::BusLink& link);

} // namespace tessarel::plasma
