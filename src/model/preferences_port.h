#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// The user's preferences: byte strings under keys.
///
/// This port stands in `model`, beside the store, which is its only caller and may not look outside.
class PreferencesPort {
public:
    virtual ~PreferencesPort() = default;

    /// The bytes under `key`; empty when there are none or they cannot be read.
    [[nodiscard]] virtual std::optional<std::string> data(std::string_view key) = 0;

    /// Replaces the bytes under `key`. At any moment, whatever happens to the process or the disk, what is
    /// stored is the old or the new bytes, whole. A failure leaves the old ones and is not reported.
    virtual void setData(std::string_view key, std::string_view bytes) = 0;

    /// Tells that the bytes stored under `key` could not be made sense of: the next `setData` keeps a copy of
    /// them beside the new ones, where a person can find it.
    virtual void keepRejected(std::string_view key) = 0;
};

} // namespace tessarel
