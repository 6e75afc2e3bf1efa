// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tessarel {

/// Allows one running copy of the program per desktop.
class SingleInstancePort {
public:
    /// How the copy that has claimed the desktop has reacted to the start of this one.
    struct Reaction {
        enum class Kind : std::uint8_t {
            /// It has received the notification.
            Reopened,
            /// It has quit meanwhile, so the desktop can be claimed.
            Ended,
            /// It does not react, or it is not a copy of this program.
            Missing,
        };
        Kind kind = Kind::Reopened;
        /// Why there is no reaction, for the user: one sentence without a capital letter and a full stop.
        std::string problem = {};
    };

    virtual ~SingleInstancePort() = default;

    /// Claims the desktop for this copy until the returned subscription is destroyed. Calls `reopened` on the
    /// main thread each time another copy tries to start, and `lost` when another program has taken the claim
    /// away; this copy must then quit. Returns null if another copy has claimed the desktop; that copy is
    /// notified.
    [[nodiscard]] virtual SubscriptionPtr claim(std::function<void()> reopened,
                                                std::function<void()> lost) = 0;

    /// Waits, with a bound, for the reaction of the other copy. Call only after `claim` has returned null.
    [[nodiscard]] virtual Reaction awaitReaction() = 0;
};

} // namespace tessarel
