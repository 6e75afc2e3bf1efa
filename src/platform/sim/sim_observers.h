#pragma once

#include "model/subscription.h"
#include "platform/sim/call_on_end.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
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
        const std::size_t number = m_entries->next++;
        m_entries->all.emplace(number, Entry{key, std::move(callback)});
        return std::make_unique<CallOnEnd>([entries = m_entries, number] { entries->all.erase(number); });
    }

    /// Calls the callbacks for `key` in the order in which they were registered.
    void call(const Key& key, const Argument& argument) {
        // Copies, because a callback may destroy subscriptions or this list.
        const auto entries = m_entries;
        const auto present = entries->all;
        for (const auto& [number, entry] : present) {
            if (entry.key == key && entries->all.contains(number)) // not if an earlier callback removed it
                entry.callback(argument);
        }
    }

    /// Returns the number of callbacks for all keys.
    [[nodiscard]] std::size_t count() const { return m_entries->all.size(); }

private:
    struct Entry {
        Key key;
        Callback callback;
    };

    struct Entries {
        std::size_t next = 0;
        std::map<std::size_t, Entry> all;
    };

    /// Shared with subscriptions, which may outlive this list.
    std::shared_ptr<Entries> m_entries = std::make_shared<Entries>();
};

} // namespace tessarel::sim
