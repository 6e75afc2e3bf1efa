// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace tessarel {

/// Identifies a registered hot key when it is pressed.
struct HotKeyId {
    std::uint32_t signature = 0; ///< four-character code of the program
    std::uint32_t id = 0;

    bool operator==(const HotKeyId&) const = default;
};

/// A key combination to register.
struct HotKeyRequest {
    std::uint32_t keyCode = 0; ///< virtual key code: a physical key, whatever the keyboard layout
    std::uint32_t mods = 0;    ///< modifier bits: Cmd 256, Shift 512, Opt 2048, Ctrl 4096
    HotKeyId hotKey;

    bool operator==(const HotKeyRequest&) const = default;
};

/// Registers system-wide hot keys.
class HotKeyPort {
public:
    virtual ~HotKeyPort() = default;

    /// Calls `pressed` on the main thread with the `HotKeyId::id` of each registered hot key when its key
    /// goes down, until the returned subscription is destroyed.
    [[nodiscard]] virtual SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) = 0;

    /// Registers the combinations in order and returns one entry per request: a subscription that keeps the
    /// combination registered, or null if an earlier request has registered it, if there is no such key, or
    /// if `mods` has bits beyond the four modifiers. A combination that another program holds is registered,
    /// too, but it is taken: nothing happens when it is pressed.
    [[nodiscard]] virtual std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) = 0;

    /// Returns the ids of the registered combinations that are taken, in any order. Always empty where
    /// several programs can have the same combination.
    [[nodiscard]] virtual std::vector<std::uint32_t> taken() const = 0;

    /// Takes over the taken combinations that have become free. No system reports that they have.
    virtual void retryTaken() = 0;

    /// Calls `changed` when `retryTaken` has taken over a combination, and when a registered combination has
    /// become taken or has been given back, until the returned subscription is destroyed.
    [[nodiscard]] virtual SubscriptionPtr onTakenChange(std::function<void()> changed) = 0;
};

} // namespace tessarel
