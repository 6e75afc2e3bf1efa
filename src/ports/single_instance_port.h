#pragma once

#include "model/subscription.h"

#include <functional>

namespace tessarel {

/// One copy of the program per desktop.
class SingleInstancePort {
public:
    virtual ~SingleInstancePort() = default;

    /// Claims the desktop for this copy until the answer ends; `reopened` is called on the main thread
    /// whenever another copy tries to start. Null when another copy holds it already; that copy has then been
    /// told.
    [[nodiscard]] virtual SubscriptionPtr claim(std::function<void()> reopened) = 0;
};

} // namespace tessarel
