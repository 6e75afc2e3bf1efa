#pragma once

#include "model/subscription.h"
#include "platform/sim/call_on_end.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace tessarel::sim {

/// Callbacks that wait for something with a `Key` to happen, called in the order in which they were added.
///
/// A callback may add and remove callbacks: removed ones are not called any more, added ones wait for the
/// next call.
template <typename Key, typename Argument>
class SimObservers {
public:
    using Callback = std::function<void(const Argument&)>;

    [[nodiscard]] SubscriptionPtr add(const Key& key, Callback callback) {
        const std::size_t number = m_entries->next++;
        m_entries->all.emplace(number, Entry{key, std::move(callback)});
        return std::make_unique<CallOnEnd>([entries = m_entries, number] { entries->all.erase(number); });
    }

    void call(const Key& key, const Argument& argument) {
        const auto entries = m_entries; // a callback may end the desktop
        const auto present = entries->all;
        for (const auto& [number, entry] : present) {
            if (entry.key == key && entries->all.contains(number)) // or an earlier one has ended it
                entry.callback(argument);
        }
    }

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

    std::shared_ptr<Entries> m_entries = std::make_shared<Entries>(); // registrations may outlive us
};

} // namespace tessarel::sim
