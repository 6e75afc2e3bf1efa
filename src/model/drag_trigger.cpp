// SPDX-License-Identifier: MIT

#include "model/drag_trigger.h"

#include <algorithm>

namespace tessarel {

DragTrigger dragTrigger(std::string_view name) {
    const auto found = std::ranges::find(kDragTriggers, name, &DragTriggerEntry::name);
    return found == kDragTriggers.end() ? DragTrigger::Shift : found->trigger;
}

bool isHeld(DragTrigger trigger, ModifierFlags modifierFlags) {
    const auto& entry = *std::ranges::find(kDragTriggers, trigger, &DragTriggerEntry::trigger);
    return (modifierFlags & entry.flag) == entry.flag;
}

} // namespace tessarel
