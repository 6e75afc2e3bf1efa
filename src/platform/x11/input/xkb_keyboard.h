// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// Enables detectable auto-repeat on the connection and recognises changes of the keyboard mapping.
///
/// With detectable auto-repeat the server repeats a held key as further presses without a release before each
/// of them. A server without XKB sends releases in between, so every repetition looks like a new press.
class XkbKeyboard {
public:
    /// Takes a round trip to find the extension.
    explicit XkbKeyboard(Connection& connection);

    /// Returns whether `event` reports a new mapping of keys or modifiers. With XKB in use the server sends
    /// `XkbMapNotify` or `XkbNewKeyboardNotify` instead of `MappingNotify`.
    [[nodiscard]] bool isMappingChange(const Connection::Event& event) const;

    /// Selects events about a switch between the layouts of the mapping, which `isLayoutChange` recognises.
    void selectLayoutChanges(Connection& connection) const;
    /// Returns whether `event` reports that another layout of the mapping is active.
    [[nodiscard]] bool isLayoutChange(const Connection::Event& event) const;

private:
    std::optional<std::uint8_t> m_eventNumber; ///< the type of all XKB events; empty without the extension
};

} // namespace tessarel::x11
