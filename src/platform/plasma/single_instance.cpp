// SPDX-License-Identifier: MIT

#include "platform/plasma/single_instance.h"

#include "model/call_on_end.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace tessarel::plasma {

namespace {

using Delivery = wayland::BusLink::Delivery;

constexpr const char* kName = "org.tessarel.Tessarel";
constexpr const char* kPath = "/org/tessarel/Tessarel";
constexpr const char* kReopen = "Reopen";

constexpr std::int64_t kDoNotQueue = 4;
constexpr std::int64_t kIsOwner = 1;

wayland::BusCall toBus(std::string member, std::string signature, std::vector<wayland::BusValue> values) {
    return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            std::move(member),      std::move(signature),    std::move(values)};
}

/// Sends a call and waits for its reply. Returns `std::nullopt` if there is none in time.
std::optional<wayland::BusMessage> replyTo(wayland::BusLink& link, wayland::BusCall call) {
    // Shared, because the reply may come after this function has returned.
    const auto reply = std::make_shared<std::optional<wayland::BusMessage>>();
    link.call(
        std::move(call), [reply](const wayland::BusMessage& message) { *reply = message; }, Delivery::Urgent);
    link.waitUntil([&] { return reply->has_value() || link.isLost(); }, SingleInstance::kPatience);
    return *reply;
}

} // namespace

SingleInstance::SingleInstance(wayland::BusLink& link, std::function<void()> claimed)
    : m_link(link), m_claimed(std::move(claimed)) {}

SubscriptionPtr SingleInstance::claim(std::function<void()> reopened, std::function<void()> lost) {
    // Before the name is claimed, so that no call of another copy is missed.
    auto calls = m_link.serve(
        kPath,
        [this, reopened = std::move(reopened)](const wayland::BusMessage& message) {
            if (message.member != kReopen)
                return;
            m_link.answer(message.token, "");
            reopened();
        },
        Delivery::InLoop);
    const auto reply = replyTo(m_link, toBus("RequestName", "su", {kName, kDoNotQueue}));
    if (!reply || reply->value<std::int64_t>(0) != kIsOwner)
        return nullptr;
    m_claimed();
    return callOnEnd([this, calls = std::shared_ptr<Subscription>(std::move(calls)),
                      loss = std::shared_ptr<Subscription>(m_link.onLost(std::move(lost)))] {
        m_link.call(toBus("ReleaseName", "s", {kName}));
    });
}

SingleInstance::Reaction SingleInstance::awaitReaction() {
    using Kind = Reaction::Kind;
    if (m_link.isLost())
        return {Kind::Missing, "the session bus does not reply"};
    const auto reply = replyTo(m_link, {kName, kPath, "org.tessarel.Tessarel", kReopen});
    if (!reply)
        return {Kind::Missing, "another copy of Tessarel runs, but does not react"};
    if (reply->error.empty())
        return {Kind::Reopened};
    if (reply->error == "org.freedesktop.DBus.Error.ServiceUnknown" ||
        reply->error == "org.freedesktop.DBus.Error.NameHasNoOwner")
        return {Kind::Ended};
    return {Kind::Missing, "another copy of Tessarel runs, but does not react"};
}

} // namespace tessarel::plasma
