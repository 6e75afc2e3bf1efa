// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/bus_link.h"

#include <string>
#include <string_view>

namespace tessarel::plasma {

/// Returns whether the environment describes a Wayland session, for the values of $WAYLAND_DISPLAY and
/// $XDG_SESSION_TYPE, null if unset. Sends nothing.
[[nodiscard]] inline bool mayBeWayland(const char* waylandDisplay, const char* sessionType) {
    using std::string_view_literals::operator""sv;
    return waylandDisplay != nullptr && *waylandDisplay != '\0' &&
           (sessionType == nullptr || sessionType != "x11"sv);
}

/// Returns whether KWin runs on the bus. Waits at most a second for the bus.
[[nodiscard]] bool hasCompositor(wayland::BusLink& link);

/// Waits until KWin runs on the bus with another unique name than `before`, at most 20 s. Returns false if it
/// does not, or at once if the bus is lost.
[[nodiscard]] bool awaitNewCompositor(wayland::BusLink& link, const std::string& before);

} // namespace tessarel::plasma
