// SPDX-License-Identifier: MIT

#pragma once

#include "ports/platform_words.h"

namespace tessarel::plasma {

/// Returns the texts of the user interface that differ between systems, as they apply to Plasma.
[[nodiscard]] inline PlatformWords words() {
    return {.modifierNames = {.ctrl = "Ctrl", .opt = "Alt", .shift = "Shift", .cmd = "Meta"},
            .welcomeFirst =
                "Tessarel moves other programs' windows with the help of the desktop and needs no "
                "permission for it.",
            .welcomeNamesTaken = true,
            .statusItem = "icon in the panel",
            .grantAccess = "Why windows cannot be moved...",
            .usableArea = "what panels leave free",
            .otherEdgeTiling = "Plasma has its own edge tiling (System Settings > Screen Edges)",
            .controlKey = "Control",
            .commandKey = "Meta",
            .permission = "Moving windows",
            .trusted = "Tessarel can move and resize windows.",
            .openPermission = "What is missing?",
            .notTrusted = "Not possible: KWin does not run Tessarel's script.",
            .thisComputer = "this computer"};
}

} // namespace tessarel::plasma
