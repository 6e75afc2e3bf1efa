#pragma once

#include "model/subscription.h"

#include <functional>

namespace tessarel {

/// Allows one running copy of the program per desktop.
class SingleInstancePort {
public:
    virtual ~SingleInstancePort() = default;

    /// Claims the desktop for this copy until the returned subscription is destroyed, and calls `reopened` on
    /// the main thread each time another copy tries to start. Returns null if another copy has claimed the
    /// desktop; that copy is notified.
    [[nodiscard]] virtual SubscriptionPtr claim(std::function<void()> reopened) = 0;
};

} // namespace tessarel
