// SPDX-License-Identifier: MIT

#pragma once

#include <memory>

namespace tessarel {

/// A handle for a registration. Destroying it unregisters.
///
/// It may be destroyed inside the callback that it was returned for, and before or after the object that
/// returned it.
class Subscription {
public:
    Subscription() = default;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    virtual ~Subscription() = default;
};

using SubscriptionPtr = std::unique_ptr<Subscription>;

} // namespace tessarel
