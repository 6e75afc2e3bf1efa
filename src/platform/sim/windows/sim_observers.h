// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"

#include <cstddef>
#include <functional>
#include <map>
#include <utility>

namespace tessarel::sim {

/// A list of callbacks, each of which is registered for one key.
///
/// A callback may add and remove callbacks, and destroy the list. Removed callbacks are not called any more;
/// added ones are called from the next event on.
template <typename Key, typename Argument>
class SimObservers {
public:
    using Callback = std::function<void(const Argument&)>;

    /// Registers `callback` for `key` until the returned subscription is destroyed.
    [[nodiscard]] SubscriptionPtr add(const Key& key, Callback callback) {
        return m_signals[key].connect(std::move(callback));
    }

    /// Calls the callbacks for `key` in the order in which they were registered.
    void call(const Key& key, const Argument& argument) {
        if (const auto found = m_signals.find(key); found != m_signals.end())
            found->second.send(argument);
    }

    /// Returns the number of callbacks for all keys.
    [[nodiscard]] std::size_t count() const {
        std::size_t count = 0;
        for (const auto& [key, signal] : m_signals)
            count += signal.connections();
        return count;
    }

private:
    std::map<Key, Signal<const Argument&>> m_signals;
};

} // namespace tessarel::sim
