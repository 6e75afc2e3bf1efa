#pragma once

#include "model/subscription.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tessarel::x11 {

/// Callbacks that are called one after the other, in the order in which they were added.
///
/// A callback may add and remove callbacks, itself included, while a call is under way: removed ones are not
/// called any more, added ones wait for the next call.
template <class... Args>
class CallbackList {
public:
    using Callback = std::function<void(Args...)>;

    /// Calls `callback` from now on until the returned subscription ends.
    [[nodiscard]] SubscriptionPtr add(Callback callback) {
        auto entry = std::make_shared<Entry>(std::move(callback));
        m_entries->list.push_back(entry);
        return std::make_unique<Registration>(m_entries, std::move(entry));
    }

    void call(Args... args) {
        const auto entries = m_entries; // keeps them if a callback destroys this list
        ++entries->calls;
        const std::size_t present = entries->list.size();
        for (std::size_t i = 0; i < present; ++i) {
            const auto entry = entries->list[i]; // keeps it if a callback adds others
            if (!entry->removed)
                entry->callback(args...);
        }
        if (--entries->calls == 0)
            entries->sweep();
    }

private:
    struct Entry {
        explicit Entry(Callback function) : callback(std::move(function)) {}
        Callback callback;
        bool removed = false;
    };

    struct Entries {
        std::vector<std::shared_ptr<Entry>> list;
        int calls = 0; // under way, nested ones included

        void sweep() {
            std::erase_if(list, [](const auto& entry) { return entry->removed; });
        }
    };

    class Registration : public Subscription {
    public:
        Registration(const std::shared_ptr<Entries>& entries, std::shared_ptr<Entry> entry)
            : m_entries(entries), m_entry(std::move(entry)) {}
        ~Registration() override {
            m_entry->removed = true;
            if (const auto entries = m_entries.lock(); entries && entries->calls == 0)
                entries->sweep();
        }

    private:
        std::weak_ptr<Entries> m_entries;
        std::shared_ptr<Entry> m_entry;
    };

    std::shared_ptr<Entries> m_entries = std::make_shared<Entries>(); // shared: subscriptions may outlive us
};

} // namespace tessarel::x11
