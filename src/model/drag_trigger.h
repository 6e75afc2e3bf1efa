// SPDX-License-Identifier: MIT

#pragma once

#include "model/carbon_mods.h"

#include <array>
#include <string_view>

namespace tessarel {

/// The modifier key that shows the zones during a drag. The Option key is deliberately not available, because
/// many programs use it themselves.
enum class DragTrigger {
    Shift,
    Control,
    Command,
    Always, ///< needs no key
};

/// A trigger with its name in the settings document and the key that has to be held.
struct DragTriggerEntry {
    DragTrigger trigger;
    std::string_view name;
    ModifierFlags flag; ///< of the key; 0 if none is needed
};

/// All triggers, in the order in which the settings window lists them.
inline constexpr std::array kDragTriggers = std::to_array<DragTriggerEntry>({
    {DragTrigger::Shift, "shift", kShiftFlag},
    {DragTrigger::Control, "control", kControlFlag},
    {DragTrigger::Command, "command", kCommandFlag},
    {DragTrigger::Always, "always", 0},
});

/// Returns the trigger with that name; `Shift` if the name is unknown.
[[nodiscard]] DragTrigger dragTrigger(std::string_view name);

/// Returns whether the key of `trigger` is among `modifierFlags`, the flags of an event. Other keys may be
/// held as well.
[[nodiscard]] bool isHeld(DragTrigger trigger, ModifierFlags modifierFlags);

} // namespace tessarel
