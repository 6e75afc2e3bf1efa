#pragma once

#include "model/subscription.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tessarel::x11 {

/// A list of callbacks that are called in the order in which they were added.
///
/// A callback may add and remove callbacks, including itself, and may destroy the list. A callback that is
/// removed during a call is skipped; one that is added during a call is first called by the next call.
/// Calls may nest. Not thread-safe.
template <class... Args>
class CallbackList {
public:
    using Callback = std::function<void(Args...)>;

    /// Calls `callback` on every `call` until the returned subscription is destroyed. The subscription may
    /// outlive the list.
    [[nodiscard]] SubscriptionPtr add(Callback callback) {
        auto entry = std::make_shared<Entry>(std::move(callback));
        m_entries->list.push_back(entry);
        return std::make_unique<Registration>(m_entries, std::move(entry));
    }

    /// Calls all callbacks that are in the list now, with `args`.
    void call(Args... args) {
        const auto entries = m_entries; // keeps the entries alive if a callback destroys this list
        ++entries->calls;
        const std::size_t present = entries->list.size();
        for (std::size_t i = 0; i < present; ++i) {
            // A copy, because the vector may reallocate while the callback adds others.
            const auto entry = entries->list[i];
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
        /// Calls in progress, including nested ones. Entries are erased only when this is zero, so that the
        /// indices of a running call stay valid.
        int calls = 0;

        /// Erases the entries that were removed during a call.
        void sweep() {
            std::erase_if(list, [](const auto& entry) { return entry->removed; });
        }
    };

    /// Removes its entry on destruction. It refers to the list weakly, because it may outlive the list.
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

    std::shared_ptr<Entries> m_entries = std::make_shared<Entries>(); // weakly shared with registrations
};

} // namespace tessarel::x11
