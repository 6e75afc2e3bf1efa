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
    /// How long another copy may take to react.
    static constexpr std::chrono::seconds kPatience{5};

    /// `link` must outlive this object and the claims.
    explicit SingleInstance(wayland::BusLink& link);
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance() override = default;

    /// Sends the request of the next claim ahead. The bus replies in order, so that claim waits for nothing
    /// if a later call of `link` has been replied to.
    void request() { m_request = requestName(); }
    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened, std::function<void()> lost) override;
    [[nodiscard]] Reaction awaitReaction() override;

private:
    using Reply = std::shared_ptr<std::optional<wayland::BusMessage>>;

    [[nodiscard]] Reply requestName() const;
    void handle(const wayland::BusMessage& call);

    wayland::BusLink& m_link;
    std::function<void()> m_reopened; ///< empty while the desktop is not claimed
    SubscriptionPtr m_calls;
    Reply m_request; ///< the reply of the bus to the next claim; null if that has not been sent
    /// The reply of the copy that runs already to the notification; null if none was sent.
    Reply m_notification;
    bool m_isRefused = false; ///< the bus does not let this program have the name
};

} // namespace tessarel::plasma
