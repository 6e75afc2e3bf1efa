// SPDX-License-Identifier: MIT

#include "platform/plasma/single_instance.h"

#include "model/call_on_end.h"
#include "platform/wayland/bus_names.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace tessarel::plasma {

namespace {

using Delivery = wayland::BusLink::Delivery;

constexpr const char* kPath = "/org/tessarel/Tessarel";
constexpr const char* kReopen = "Reopen";

constexpr std::int64_t kDoNotQueue = 4;
constexpr std::int64_t kIsOwner = 1;

/// How long the bus may take to reply to a claim.
constexpr std::chrono::seconds kPatienceWithBus{1};

/// Sends a call. The returned object gets the reply, unless it has been destroyed by then.
std::shared_ptr<std::optional<wayland::BusMessage>> send(wayland::BusLink& link, wayland::BusCall call) {
    auto reply = std::make_shared<std::optional<wayland::BusMessage>>();
    link.call(
        std::move(call), [reply](const wayland::BusMessage& message) { *reply = message; }, Delivery::Urgent);
    return reply;
}

/// Waits until the reply is there, with a bound.
void await(wayland::BusLink& link, const std::optional<wayland::BusMessage>& reply,
           std::chrono::milliseconds patience) {
    link.waitUntil([&] { return reply.has_value() || link.isLost(); }, patience);
}

} // namespace

// Served before the name is requested, so that no call of another copy is missed.
SingleInstance::SingleInstance(wayland::BusLink& link)
    : m_link(link), m_calls(link.serve(
                        kPath, [this](const wayland::BusMessage& call) { handle(call); }, Delivery::InLoop)) {
}

SingleInstance::Reply SingleInstance::requestName() const {
    return send(m_link, wayland::busCall("RequestName", "su", {kName, kDoNotQueue}));
}

void SingleInstance::handle(const wayland::BusMessage& call) {
    if (call.member != kReopen || !m_reopened)
        return;
    m_link.answer(call.token, "");
    const auto reopened = m_reopened; // a copy, because the callback may end the claim
    reopened();
}

SubscriptionPtr SingleInstance::claim(std::function<void()> reopened, std::function<void()> lost) {
    const Reply request = m_request ? std::exchange(m_request, nullptr) : requestName();
    await(m_link, *request, kPatienceWithBus);
    const auto& reply = *request;
    m_isRefused = reply && !reply->error.empty();
    if (!reply || m_isRefused)
        return nullptr;
    if (reply->value<std::int64_t>(0) != kIsOwner) {
        m_notification = send(m_link, {kName, kPath, "org.tessarel.Tessarel", kReopen});
        return nullptr;
    }
    m_reopened = std::move(reopened);
    return callOnEnd([this, loss = std::shared_ptr<Subscription>(m_link.onLost(std::move(lost)))] {
        m_reopened = nullptr;
        m_link.call(wayland::busCall("ReleaseName", "s", {kName}));
    });
}

SingleInstance::Reaction SingleInstance::awaitReaction() {
    using Kind = Reaction::Kind;
    const auto notification = std::exchange(m_notification, nullptr);
    if (m_isRefused && !m_link.isLost())
        return {Kind::Missing, "the session bus refuses the name " + std::string(kName)};
    if (!notification || m_link.isLost())
        return {Kind::Missing, "the session bus does not reply"};
    await(m_link, *notification, kPatience);
    const auto& reply = *notification;
    if (!reply)
        return {Kind::Missing, "another copy of Tessarel runs, but does not react"};
    if (reply->error.empty())
        return {Kind::Reopened};
    // The bus gives up a call without a reply when the receiver ends; by itself, that takes 25 s.
    if (reply->error == "org.freedesktop.DBus.Error.NoReply" ||
        reply->error == "org.freedesktop.DBus.Error.ServiceUnknown" ||
        reply->error == "org.freedesktop.DBus.Error.NameHasNoOwner")
        return {Kind::Ended};
    return {Kind::Missing, "another copy of Tessarel runs, but does not react"};
}

} // namespace tessarel::plasma
