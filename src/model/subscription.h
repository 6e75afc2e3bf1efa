#pragma once

#include <memory>

namespace tessarel {

/// Something registered, for as long as this object lives: destroying it unregisters.
///
/// A subscription may be destroyed from inside the very callback it stands for, and before or after the
/// service that gave it.
class Subscription {
public:
    Subscription() = default;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    virtual ~Subscription() = default;
};

using SubscriptionPtr = std::unique_ptr<Subscription>;

} // namespace tessarel
