// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tessarel {

/// Starts this program when the user logs in.
class LoginItemPort {
public:
    /// State of the login item. `RequiresApproval`: it is registered, but the user has not allowed it in the
    /// system's settings yet.
    enum class Status : std::uint8_t { NotRegistered = 0, Enabled = 1, RequiresApproval = 2, NotFound = 3 };

    virtual ~LoginItemPort() = default;

    /// Returns the current state, which the user can also change outside the program.
    [[nodiscard]] virtual Status status() = 0;

    /// Makes the program start at login. Returns `std::nullopt` on success, otherwise an error text for the
    /// user.
    [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;

    /// Removes the login item. Returns `std::nullopt` on success or when there was none, otherwise an error
    /// text for the user.
    [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace tessarel
