// SPDX-License-Identifier: MIT

#pragma once

#include "model/carbon_mods.h"
#include "model/subscription.h"
#include "ports/desktop/rect.h"

#include <cstdint>
#include <functional>

namespace tessarel {

/// What the left mouse button has done.
enum class MouseEventKind {
    LeftDown,
    LeftDragged, ///< a movement while the button is held
    LeftUp,
    Cancelled, ///< Escape was pressed while the button was held, which ends a move on systems that report it
};

/// An event of the left mouse button.
struct MouseEvent {
    MouseEventKind kind = MouseEventKind::LeftDown;
    /// The pointer, in screen coordinates: origin at the bottom-left corner of the primary display, y up.
    Point screenLocation;
    ModifierFlags modifierFlags = 0; ///< the modifier keys that are held

    bool operator==(const MouseEvent&) const = default;
};

/// Observes the mouse over other programs' windows without consuming any event.
class MousePort {
public:
    virtual ~MousePort() = default;

    /// Calls `handler` on the main thread for every event of `kind` that is meant for another program, until
    /// the returned subscription is destroyed. Returns null if the system refuses.
    ///
    /// - The pointer position and the modifiers are those at delivery.
    /// - Movements may be coalesced, and a very short click may not be reported at all.
    /// - A modifier key that goes down or up while the button is held counts as a movement at the current
    ///   pointer position, and is delivered before the release. It may be missed while a program reads the
    ///   keyboard exclusively, as for a password; the next movement then has the current modifiers.
    /// - `Cancelled` is reported before the release, and only where Escape takes a dragged window back.
    /// - Every delivered press is followed by a release, at the latest with the next mouse event, even if
    ///   another program consumes the release. Where a lost release cannot be detected, two presses may
    ///   arrive in a row.
    [[nodiscard]] virtual SubscriptionPtr
    addGlobalMonitor(MouseEventKind kind, std::function<void(const MouseEvent&)> handler) = 0;
};

} // namespace tessarel
