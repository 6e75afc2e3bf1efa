// SPDX-License-Identifier: MIT

#include "platform/sim/sim_local_keys.h"

#include "model/call_on_end.h"

#include <utility>

namespace tessarel::sim {

SubscriptionPtr SimLocalKeys::monitorKeyDown(Handler handler) {
    const int number = m_handlers->next++;
    m_handlers->all.emplace(number, std::move(handler));
    return callOnEnd([handlers = m_handlers, number] { handlers->all.erase(number); });
}

bool SimLocalKeys::press(const KeyDown& key) {
    // Copies, because a handler may destroy subscriptions or this port.
    const auto handlers = m_handlers;
    const auto present = handlers->all;
    for (const auto& [number, handler] : present) {
        if (handlers->all.contains(number) && handler(key)) // not if an earlier handler has unsubscribed it
            return true;
    }
    return false;
}

} // namespace tessarel::sim
