// SPDX-License-Identifier: MIT

#include "platform/sim/sim_single_instance.h"

#include "model/call_on_end.h"

namespace tessarel::sim {

SubscriptionPtr SimSingleInstance::claim(std::function<void()> reopened, std::function<void()> lost) {
    // A copy of the pointer, because the callback may end the claim that owns it.
    if (const auto holder = m_holder->reopened) {
        if (m_holder->reaction.kind == Reaction::Kind::Reopened)
            (*holder)();
        return nullptr;
    }
    m_holder->reopened = std::make_shared<std::function<void()>>(std::move(reopened));
    m_holder->lost = std::move(lost);
    return callOnEnd([holder = m_holder] { holder->reopened.reset(); });
}

SingleInstancePort::Reaction SimSingleInstance::awaitReaction() {
    if (m_holder->reaction.kind == Reaction::Kind::Ended)
        m_holder->reopened.reset();
    return m_holder->reaction;
}

} // namespace tessarel::sim
