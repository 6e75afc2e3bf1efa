// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <functional>
#include <memory>
#include <utility>

namespace tessarel {

/// Returns a subscription that calls `end` when it is destroyed.
[[nodiscard]] inline SubscriptionPtr callOnEnd(std::function<void()> end) {
    class CallOnEnd : public Subscription {
    public:
        explicit CallOnEnd(std::function<void()> function) : m_end(std::move(function)) {}
        ~CallOnEnd() override { m_end(); }

    private:
        std::function<void()> m_end;
    };
    return std::make_unique<CallOnEnd>(std::move(end));
}

} // namespace tessarel
