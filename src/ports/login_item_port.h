#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tessarel {

/// Start of this program when the user logs in.
class LoginItemPort {
public:
    enum class Status : std::uint8_t { NotRegistered = 0, Enabled = 1, RequiresApproval = 2, NotFound = 3 };

    virtual ~LoginItemPort() = default;

    [[nodiscard]] virtual Status status() = 0;

    /// Makes the program start at login; empty on success, else a sentence for the user that says why not.
    [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;

    /// Takes that back; empty on success or when there was nothing to take back, else a sentence for the
    /// user.
    [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace tessarel
