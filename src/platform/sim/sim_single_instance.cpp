#include "platform/sim/sim_single_instance.h"

#include "model/call_on_end.h"

namespace tessarel::sim {

SubscriptionPtr SimSingleInstance::claim(std::function<void()> reopened) {
    // A copy of the pointer, because the callback may end the claim that owns it.
    if (const auto holder = m_holder->reopened) {
        (*holder)();
        return nullptr;
    }
    m_holder->reopened = std::make_shared<std::function<void()>>(std::move(reopened));
    return callOnEnd([holder = m_holder] { holder->reopened.reset(); });
}

} // namespace tessarel::sim
