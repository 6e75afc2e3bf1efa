#include "platform/sim/sim_local_keys.h"

#include "platform/sim/call_on_end.h"

#include <utility>

namespace tessarel::sim {

SubscriptionPtr SimLocalKeys::monitorKeyDown(Handler handler) {
    const int number = m_handlers->next++;
    m_handlers->all.emplace(number, std::move(handler));
    return std::make_unique<CallOnEnd>([handlers = m_handlers, number] { handlers->all.erase(number); });
}

bool SimLocalKeys::press(const KeyDown& key) {
    const auto handlers = m_handlers; // a handler may end this port
    const auto present = handlers->all;
    for (const auto& [number, handler] : present) {
        if (handlers->all.contains(number) && handler(key)) // or an earlier one has ended it
            return true;
    }
    return false;
}

} // namespace tessarel::sim
