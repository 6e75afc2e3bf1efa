// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tessarel {

/// The names of the keys on the user's keyboard.
class KeyNamesPort {
public:
    virtual ~KeyNamesPort() = default;

    /// Returns the name of the key with a virtual key code. Never empty: a key that the system does not know
    /// has the name that `KeyNames::name` returns.
    [[nodiscard]] virtual std::string name(std::int64_t keyCode) = 0;

    /// Calls `changed` whenever names may have changed, until the returned subscription is destroyed.
    [[nodiscard]] virtual SubscriptionPtr onChange(std::function<void()> changed) = 0;
};

} // namespace tessarel
