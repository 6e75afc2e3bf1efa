// SPDX-License-Identifier: MIT

#pragma once

#include "model/carbon_mods.h"
#include "model/subscription.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace tessarel {

/// A key press.
struct KeyDown {
    /// Virtual key code, as in `Binding`; empty for a key that bindings cannot name.
    std::optional<std::int64_t> keyCode;
    ModifierFlags modifierFlags = 0; ///< the modifier keys that are held

    bool operator==(const KeyDown&) const = default;
};

/// The keyboard input of this program's own windows.
class LocalKeysPort {
public:
    /// Returns whether the key press is consumed. A consumed key press reaches no other part of the program.
    using Handler = std::function<bool(const KeyDown&)>;

    virtual ~LocalKeysPort() = default;

    /// Calls `handler` on the main thread for every key press while a window of this program has the keyboard
    /// focus, until the returned subscription is destroyed. As far as the system allows, combinations that
    /// this or another program has registered as hot keys go to the handler instead of triggering.
    ///
    /// A key that is held down is delivered once. If it is consumed, it has no other effect until it is
    /// released, even if its handler has been removed by then. The modifier keys of bindings are consumed
    /// without being delivered. Several handlers are called in the order in which they were added, until one
    /// consumes the key press.
    [[nodiscard]] virtual SubscriptionPtr monitorKeyDown(Handler handler) = 0;
};

} // namespace tessarel
