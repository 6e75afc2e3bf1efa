// SPDX-License-Identifier: MIT

#pragma once

#include "ports/single_instance_port.h"

#include <functional>
#include <memory>

namespace tessarel::sim {

/// The claim that all copies of the program compete for.
struct SimInstanceHolder {
    /// The callback of the copy that has the claim; null if there is none.
    std::shared_ptr<std::function<void()>> reopened;
    /// To be called by a test that takes the claim away from that copy.
    std::function<void()> lost;
    /// How that copy reacts to the start of another one.
    SingleInstancePort::Reaction reaction;
};

/// One copy of the program on the simulated desktop.
class SimSingleInstance : public SingleInstancePort {
public:
    explicit SimSingleInstance(std::shared_ptr<SimInstanceHolder> holder) : m_holder(std::move(holder)) {}

    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened, std::function<void()> lost) override;
    [[nodiscard]] Reaction awaitReaction() override;

    /// Returns the state that all copies share.
    [[nodiscard]] SimInstanceHolder& holder() { return *m_holder; }

private:
    std::shared_ptr<SimInstanceHolder> m_holder; ///< shared with claims, which may outlive this port
};

} // namespace tessarel::sim
