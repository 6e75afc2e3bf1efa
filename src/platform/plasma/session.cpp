// SPDX-License-Identifier: MIT

#include "platform/plasma/session.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace tessarel::plasma {

namespace {

/// Returns the unique name of KWin on the bus; empty if it does not run, or if the bus has not replied within
/// a second.
std::string ownerOfCompositor(wayland::BusLink& link) {
    constexpr std::chrono::seconds kPatience{1};
    // Shared, because the reply may come after this function has returned.
    const auto reply = std::make_shared<std::optional<std::string>>();
    link.call(
        {.destination = "org.freedesktop.DBus",
         .path = "/org/freedesktop/DBus",
         .interface = "org.freedesktop.DBus",
         .member = "GetNameOwner",
         .signature = "s",
         .values = {"org.kde.KWin"}},
        [reply](const wayland::BusMessage& message) { *reply = message.value<std::string>(0); },
        wayland::BusLink::Delivery::Urgent);
    link.waitUntil([&] { return reply->has_value() || link.isLost(); }, kPatience);
    return reply->value_or(std::string());
}

} // namespace

bool hasCompositor(wayland::BusLink& link) {
    return !ownerOfCompositor(link).empty();
}

bool awaitNewCompositor(wayland::BusLink& link, const std::string& before) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds kLongestRestart{20};
    constexpr std::chrono::milliseconds kInterval{100};
    for (const auto end = Clock::now() + kLongestRestart; Clock::now() < end && !link.isLost();) {
        const std::string owner = ownerOfCompositor(link);
        if (!owner.empty() && owner != before)
            return true;
        link.waitUntil([&link] { return link.isLost(); }, kInterval);
    }
    return false;
}

} // namespace tessarel::plasma
