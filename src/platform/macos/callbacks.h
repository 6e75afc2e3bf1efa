#pragma once

#include "model/subscription.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tessarel::macos {

/// List of callbacks in the order in which they were added. Each callback is owned by its subscription, which
/// may be destroyed while any callback runs and may outlive this list.
template <class Signature>
class Callbacks {
public:
    using Callback = std::function<Signature>;

    /// Adds `callback`, which stays in the list until the returned subscription is destroyed. Never returns
    /// null.
    [[nodiscard]] SubscriptionPtr add(Callback callback) {
        // A subscription cannot remove its own entry, since it may outlive the list.
        std::erase_if(m_all, [](const auto& one) { return one.expired(); });
        auto registration = std::make_unique<Registration>(std::move(callback));
        m_all.push_back(registration->callback);
        return registration;
    }

    /// Returns the callbacks that the list holds now. Lock each one just before calling it: a callback called
    /// earlier may have destroyed its subscription.
    [[nodiscard]] std::vector<std::weak_ptr<const Callback>> present() const { return m_all; }

private:
    struct Registration : Subscription {
        explicit Registration(Callback function)
            : callback(std::make_shared<const Callback>(std::move(function))) {}

        std::shared_ptr<const Callback> callback;
    };

    std::vector<std::weak_ptr<const Callback>> m_all;
};

} // namespace tessarel::macos
