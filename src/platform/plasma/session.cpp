// SPDX-License-Identifier: MIT

#include "platform/plasma/session.h"

#include "model/call_on_end.h"
#include "platform/wayland/bus_names.h"

#include <chrono>
#include <memory>
#include <utility>

namespace tessarel::plasma {

namespace {

using std::chrono::milliseconds;
constexpr const char* kNameOfKWin = "org.kde.KWin";

wayland::BusCall getOwner() {
    return wayland::busCall("GetNameOwner", "s", {kNameOfKWin});
}

} // namespace

std::optional<std::string> compositorName(wayland::BusLink& link) {
    constexpr milliseconds kPatience{250};
    // Shared, because the reply may come after this function has returned.
    const auto reply = std::make_shared<std::optional<std::string>>();
    link.call(
        getOwner(), [reply](const wayland::BusMessage& message) { *reply = message.value<std::string>(0); },
        wayland::BusLink::Delivery::Urgent);
    link.waitUntil([&] { return reply->has_value() || link.isLost(); }, kPatience);
    return *reply;
}

std::string awaitCompositor(wayland::BusLink& link, const std::string& before) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds kLongestStart{20};
    constexpr milliseconds kInterval{100};
    for (const auto end = Clock::now() + kLongestStart; Clock::now() < end && !link.isLost();) {
        const auto name = compositorName(link);
        if (name && !name->empty() && *name != before)
            return *name;
        link.waitUntil([&link] { return link.isLost(); }, kInterval);
    }
    return {};
}

SubscriptionPtr onNewCompositor(wayland::BusLink& link, std::string before, std::function<void()> started) {
    const auto compare = [before = std::move(before), started = std::move(started)](const std::string& name) {
        if (!name.empty() && name != before)
            started();
    };
    auto changes = wayland::onOwnerChanged(link, kNameOfKWin, compare);
    // After the subscription, so that no change is missed.
    const auto present = std::make_shared<std::function<void(const std::string&)>>(compare);
    link.call(getOwner(), [weak = std::weak_ptr(present)](const wayland::BusMessage& reply) {
        if (const auto receiver = weak.lock())
            (*receiver)(reply.value<std::string>(0));
    });
    return callOnEnd([present, kept = std::shared_ptr<Subscription>(std::move(changes))] {});
}

} // namespace tessarel::plasma
