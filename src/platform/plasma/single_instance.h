// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/wayland/bus_link.h"
#include "ports/single_instance_port.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace tessarel::plasma {

/// Allows one copy of the program per session bus, by a name on it.
class SingleInstance : public SingleInstancePort {
public:
    /// The name on the bus.
    static constexpr const char* kName = "org.tessarel.Tessarel";
    /// How long another copy may take to react, and the bus to reply.
    static constexpr std::chrono::seconds kPatience{5};

    /// `claimed` is called with each successful claim, before it is returned. `link` must outlive this object
    /// and the claims.
    SingleInstance(wayland::BusLink& link, std::function<void()> claimed);
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance() override = default;

    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened, std::function<void()> lost) override;
    [[nodiscard]] Reaction awaitReaction() override;

private:
    wayland::BusLink& m_link;
    std::function<void()> m_claimed;
    /// The reply of the copy that runs already to the notification; null if none was sent.
    std::shared_ptr<std::optional<wayland::BusMessage>> m_notification;
};

} // namespace tessarel::plasma
