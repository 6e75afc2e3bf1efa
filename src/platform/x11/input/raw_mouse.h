#pragma once

#include "platform/x11/server/connection.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

enum class RawMouseKind { Press, Release, Motion, Key };

/// What the mouse has done, or that a key has gone down or up, whatever window it was meant for and whoever
/// has grabbed it. Neither the pointer's place nor modifiers are known, nor which key it was.
struct RawMouseEvent {
    RawMouseKind kind = RawMouseKind::Motion;
    std::uint32_t button = 0; ///< a physical one, from 1; none of a motion or a key
};

/// The server's raw events of the mouse and, among everything, of the keyboard, as far as they are asked for.
class RawMouse {
public:
    enum class Selection { Nothing, Presses, Everything };

    /// Waits for the server once, to learn of the extension.
    explicit RawMouse(Connection& connection);

    /// Whether the server has such events at all.
    [[nodiscard]] bool isAvailable() const { return m_opcode.has_value(); }

    /// What is reported from now on.
    void select(Selection selection);

    /// `event`, if it is one of these.
    [[nodiscard]] std::optional<RawMouseEvent> read(const Connection::Event& event) const;

private:
    Connection& m_connection;
    std::optional<std::uint8_t> m_opcode;
    Selection m_selection = Selection::Nothing;
};

} // namespace tessarel::x11
