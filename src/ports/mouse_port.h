#pragma once

#include "model/carbon_mods.h"
#include "model/subscription.h"
#include "ports/rect.h"

#include <cstdint>
#include <functional>

namespace tessarel {

enum class MouseEventKind { LeftDown, LeftDragged, LeftUp };

/// What the user has done with the left button of the mouse, or with the modifier keys while it is held.
struct MouseEvent {
    MouseEventKind kind = MouseEventKind::LeftDown;
    /// The pointer, in screen coordinates: origin at the bottom-left corner of the primary display, y up.
    Point screenLocation;
    ModifierFlags modifierFlags = 0; ///< the modifier keys that are held

    bool operator==(const MouseEvent&) const = default;
};

/// The mouse over other programs' windows: watched, never touched.
class MousePort {
public:
    virtual ~MousePort() = default;

    /// Calls `handler` with every event of `kind` that is meant for another program, on the main thread,
    /// until the answer ends. Null when the system refuses.
    ///
    /// Pointer and modifiers are those of the moment at which the event is delivered. Several movements may
    /// come as one, and a click that is over at once may not be reported at all. A modifier key that goes
    /// down or up between a press and its release counts as a movement, at the place where the pointer rests,
    /// and is delivered before the release. It may be missed while a program has made the keyboard private,
    /// as for a password; then the next movement brings it. A release follows every press that has been
    /// delivered, even when another program has swallowed it, at the latest with the next event of the mouse;
    /// two presses may come without one when that cannot be told.
    [[nodiscard]] virtual SubscriptionPtr
    addGlobalMonitor(MouseEventKind kind, std::function<void(const MouseEvent&)> handler) = 0;
};

} // namespace tessarel
