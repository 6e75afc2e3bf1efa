// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/local_keys_port.h"

#include <cstddef>
#include <map>
#include <memory>

namespace tessarel::sim {

/// The keyboard of the simulated desktop while a window of the program under test has the focus.
class SimLocalKeys : public LocalKeysPort {
public:
    [[nodiscard]] SubscriptionPtr monitorKeyDown(Handler handler) override;

    /// Presses a key. Returns true if a handler has consumed it.
    bool press(const KeyDown& key);
    /// Returns the number of subscriptions.
    [[nodiscard]] std::size_t monitors() const { return m_handlers->all.size(); }

private:
    struct Handlers {
        int next = 0;
        std::map<int, Handler> all;
    };

    /// Shared with subscriptions, which may outlive this port.
    std::shared_ptr<Handlers> m_handlers = std::make_shared<Handlers>();
};

} // namespace tessarel::sim
