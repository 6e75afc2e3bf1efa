#pragma once

#include "ports/single_instance_port.h"

#include <functional>
#include <memory>

namespace tessarel::sim {

/// The claim that all copies of the program compete for.
struct SimInstanceHolder {
    /// The callback of the copy that has the claim; null if there is none.
    std::shared_ptr<std::function<void()>> reopened;
};

/// One copy of the program on the simulated desktop.
class SimSingleInstance : public SingleInstancePort {
public:
    explicit SimSingleInstance(std::shared_ptr<SimInstanceHolder> holder) : m_holder(std::move(holder)) {}

    [[nodiscard]] SubscriptionPtr claim(std::function<void()> reopened) override;

private:
    std::shared_ptr<SimInstanceHolder> m_holder; ///< shared with claims, which may outlive this port
};

} // namespace tessarel::sim
