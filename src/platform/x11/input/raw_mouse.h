// SPDX-License-Identifier: MIT

#pragma once

#include "model/carbon_mods.h"
#include "platform/x11/server/connection.h"
#include "ports/desktop/rect.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// The id of an XInput 2 device.
using DeviceId = std::uint16_t;

/// The kind of a raw event; `Key` is a press or release of any key.
enum class RawMouseKind { Press, Release, Motion, Key };

/// A raw event of the mouse or the keyboard. It is reported for all windows and during other clients' grabs.
/// It carries neither the pointer position nor the modifiers.
struct RawMouseEvent {
    RawMouseKind kind = RawMouseKind::Motion;
    std::uint32_t button = 0;  ///< physical button, from 1; 0 for motion and keys
    std::uint32_t keycode = 0; ///< of a key that went down; 0 for everything else
    DeviceId device = 0;       ///< the master pointer or, for a key, the master keyboard
};

/// A master pointer at the moment of a query.
struct PointerState {
    Point rootPoint;           ///< in root coordinates
    xcb_window_t child = 0;    ///< the child of the root window under the pointer; 0 for none
    std::uint32_t buttons = 0; ///< a bit for each held button after the user's mapping; bit 1 is the left one
    ModifierFlags modifiers = 0; ///< those of the keyboard that belongs to the pointer
};

/// Selects and decodes XInput 2 raw events of all master devices.
class RawMouse {
public:
    /// Which events the server reports. `Everything` adds motion, button releases and keys.
    enum class Selection { Nothing, Presses, Everything };

    /// Queries the extension and its version, which waits for the server. `connection` must outlive this
    /// object.
    explicit RawMouse(Connection& connection);

    /// Returns whether the server supports XInput 2.
    [[nodiscard]] bool isAvailable() const { return m_opcode.has_value(); }

    /// Selects the events that are reported from now on. Sends no request when nothing changes; does not
    /// flush.
    void select(Selection selection);

    /// Decodes `event`, or returns `std::nullopt` when it is not a raw event of these kinds.
    [[nodiscard]] std::optional<RawMouseEvent> read(const Connection::Event& event) const;

    /// Returns the state of a master pointer, or `std::nullopt` when there is no such device any more. Takes
    /// a round trip.
    [[nodiscard]] std::optional<PointerState> query(DeviceId pointer);

    /// Returns the master keyboard that belongs to a master pointer; 0 when there is no such device any more.
    /// Takes a round trip.
    [[nodiscard]] DeviceId keyboardOf(DeviceId pointer);

private:
    Connection& m_connection;
    std::optional<std::uint8_t> m_opcode;
    Selection m_selection = Selection::Nothing;
};

} // namespace tessarel::x11
