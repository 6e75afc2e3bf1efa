// SPDX-License-Identifier: MIT

#include "platform/plasma/session.h"

#include <chrono>
#include <memory>
#include <optional>

namespace tessarel::plasma {

bool hasCompositor(wayland::BusLink& link) {
    constexpr std::chrono::seconds kPatience{1};
    const auto reply = std::make_shared<std::optional<bool>>();
    link.call(
        {.destination = "org.freedesktop.DBus",
         .path = "/org/freedesktop/DBus",
         .interface = "org.freedesktop.DBus",
         .member = "NameHasOwner",
         .signature = "s",
         .values = {"org.kde.KWin"}},
        [reply](const wayland::BusMessage& message) { *reply = message.value<std::int64_t>(0) != 0; },
        wayland::BusLink::Delivery::Urgent);
    link.waitUntil([&] { return reply->has_value() || link.isLost(); }, kPatience);
    return reply->value_or(false);
}

} // namespace tessarel::plasma
