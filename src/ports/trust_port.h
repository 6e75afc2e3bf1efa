// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <functional>

namespace tessarel {

/// The system's permission to see and move other programs' windows.
class TrustPort {
public:
    virtual ~TrustPort() = default;

    /// Returns whether the program has the permission now. The state may change at any time.
    [[nodiscard]] virtual bool isTrusted() = 0;

    /// Explains to the user, in the system's own way, how to grant the permission. Does nothing if the
    /// program is trusted.
    virtual void prompt() = 0;

    /// Calls `lost` when it turns out at runtime that the program is not trusted, unless the user has been
    /// told so already. Returns null if the system does not report it.
    [[nodiscard]] virtual SubscriptionPtr onLost(std::function<void()> lost) = 0;

    /// Returns whether the system has a place where the user grants the permission and takes it back.
    [[nodiscard]] virtual bool hasSettings() const = 0;

    /// Opens that place; does nothing if there is none.
    virtual void openSettings() = 0;
};

} // namespace tessarel
