// SPDX-License-Identifier: MIT

#pragma once

#include "ports/platform_words.h"

namespace tessarel::x11 {

/// Returns the texts of the user interface that differ between systems, as they apply to an X11 desktop.
[[nodiscard]] inline PlatformWords words() {
    return {.modifierNames = {.ctrl = "Ctrl", .opt = "Alt", .shift = "Shift", .cmd = "Super"},
            .welcomeFirst = "Tessarel moves other programs' windows with the help of your window manager and "
                            "needs no permission for it.",
            .welcomeDragNote = "If the window does not move while Shift is held, press Shift once it moves.",
            .welcomeNamesTaken = true,
            .statusItem = "icon in the panel",
            .grantAccess = "Why windows cannot be moved...",
            .usableArea = "what panels and docks leave free",
            .otherEdgeTiling = "Your window manager may have its own edge tiling",
            .controlKey = "Control",
            .commandKey = "Super",
            .permission = "Moving windows",
            .trusted = "Tessarel can move and resize windows.",
            .openPermission = "What is missing?",
            .notTrusted = "Not possible yet. The button below tells what is missing.",
            .thisComputer = "this computer"};
}

} // namespace tessarel::x11
