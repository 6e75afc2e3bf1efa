// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/wayland/bus_link.h"

#include <functional>
#include <optional>
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

/// Returns the unique name of KWin on the bus, which is empty if it does not run. Returns nothing if the bus
/// has not replied within 250 ms.
[[nodiscard]] std::optional<std::string> compositorName(wayland::BusLink& link);

/// Waits until KWin runs on the bus with another unique name than `before`, at most 20 s. Returns that name;
/// empty if there is none, or at once if the bus is lost.
[[nodiscard]] std::string awaitCompositor(wayland::BusLink& link, const std::string& before = {});

/// Calls `started` once KWin runs on the bus with another unique name than `before`, until the returned
/// subscription is destroyed. `link` must outlive the subscription.
[[nodiscard]] SubscriptionPtr onNewCompositor(wayland::BusLink& link, std::string before,
                                              std::function<void()> started);

} // namespace tessarel::plasma
