// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// The user's preferences: byte strings under keys, which other copies of the program and editors may change
/// at any time.
///
/// This port is in `model` because the store, its main caller, may not include other folders.
class PreferencesPort {
public:
    virtual ~PreferencesPort() = default;

    /// Returns the bytes stored under `key`, or `std::nullopt` if there are none or they cannot be read.
    [[nodiscard]] virtual std::optional<std::string> data(std::string_view key) = 0;

    /// Replaces the bytes stored under `key` atomically: even after a crash or a power failure, either the
    /// old or the new bytes are stored, complete. Returns false, and keeps the old bytes, on failure.
    virtual bool setData(std::string_view key, std::string_view bytes) = 0;

    /// Marks the bytes stored under `key` as undecodable. The next `setData` keeps a copy of them where the
    /// user can find it.
    virtual void keepRejected(std::string_view key) = 0;

    /// Locks the bytes under `key` against other copies of the program, until the returned subscription is
    /// destroyed. Waits for another copy for a fraction of a second; returns null if it still has the lock.
    /// Where the system cannot lock, the result is not null and has no effect.
    [[nodiscard]] virtual SubscriptionPtr lock(std::string_view key) = 0;

    /// Calls `changed` from the event loop whenever the bytes under `key` may have changed, also by this
    /// object, until the returned subscription is destroyed. Several changes may be reported by one call.
    /// Requires a running event loop.
    [[nodiscard]] virtual SubscriptionPtr watch(std::string_view key, std::function<void()> changed) = 0;
};

} // namespace tessarel
