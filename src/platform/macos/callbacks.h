#pragma once

#include "model/subscription.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tessarel::macos {

/// Callbacks in the order in which they were added. Each belongs to its subscription, which may end inside
/// any of them and may outlive this list.
template <class Signature>
class Callbacks {
public:
    using Callback = std::function<Signature>;

    [[nodiscard]] SubscriptionPtr add(Callback callback) {
        std::erase_if(m_all, [](const auto& one) { return one.expired(); });
        auto registration = std::make_unique<Registration>(std::move(callback));
        m_all.push_back(registration->callback);
        return registration;
    }

    /// Those there are now, for a call of each that has not ended by the time it is its turn.
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
