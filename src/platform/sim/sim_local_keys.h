#pragma once

#include "ports/local_keys_port.h"

#include <cstddef>
#include <map>
#include <memory>

namespace tessarel::sim {

/// The keyboard of the simulated desktop, as far as windows of the program under test have it.
class SimLocalKeys : public LocalKeysPort {
public:
    [[nodiscard]] SubscriptionPtr monitorKeyDown(Handler handler) override;

    /// The user presses a key while such a window has the focus; true when it has been consumed.
    bool press(const KeyDown& key);
    /// How many handlers wait for keys now.
    [[nodiscard]] std::size_t monitors() const { return m_handlers->all.size(); }

private:
    struct Handlers {
        int next = 0;
        std::map<int, Handler> all;
    };

    std::shared_ptr<Handlers> m_handlers = std::make_shared<Handlers>(); // monitors may outlive this port
};

} // namespace tessarel::sim
