#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// The user's preferences: byte strings under keys.
///
/// This port is in `model` because the store, its only caller, may not include other folders.
class PreferencesPort {
public:
    virtual ~PreferencesPort() = default;

    /// Returns the bytes stored under `key`, or `std::nullopt` if there are none or they cannot be read.
    [[nodiscard]] virtual std::optional<std::string> data(std::string_view key) = 0;

    /// Replaces the bytes stored under `key` atomically: even after a crash or a power failure, either the
    /// old or the new bytes are stored, complete. A failure keeps the old bytes and is not reported.
    virtual void setData(std::string_view key, std::string_view bytes) = 0;

    /// Marks the bytes stored under `key` as undecodable. The next `setData` keeps a copy of them where the
    /// user can find it.
    virtual void keepRejected(std::string_view key) = 0;
};

} // namespace tessarel
