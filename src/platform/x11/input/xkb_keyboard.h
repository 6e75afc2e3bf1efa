#pragma once

#include "platform/x11/server/connection.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// What the server's keyboard extension tells beyond the core protocol: that a key repeats.
///
/// From its creation on the server repeats a held key as further presses, without a release before each of
/// them. A server without the extension goes on as before: then every repetition looks like a press.
class XkbKeyboard {
public:
    /// Waits for the server once, to learn of the extension.
    explicit XkbKeyboard(Connection& connection);

    /// Whether `event` says that keys or modifiers may mean something else now. A client that uses the
    /// extension hears of it in other words than all the rest.
    [[nodiscard]] bool isMappingChange(const Connection::Event& event) const;

private:
    std::optional<std::uint8_t> m_eventNumber; ///< of all its events; none without the extension
};

} // namespace tessarel::x11
