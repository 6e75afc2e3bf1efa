// SPDX-License-Identifier: MIT

#pragma once

#include "ports/platform_words.h"

namespace tessarel::plasma {

/// Notes about the keys that can be held during a drag: unless KWin reports them, and once it does.
inline constexpr const char* kNoKeysReported =
    "KWin reports no held keys, which takes OpenGL: choose \"Nothing (always)\" above.";
inline constexpr const char* kKeysReported =
    "Plasma shows an outline of its own while you hold Shift; choose Control or Meta to avoid it.";

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
            .dragNote = kNoKeysReported,
            .controlKey = "Control",
            .commandKey = "Meta",
            .permission = "Moving windows",
            .trusted = "Tessarel can move and resize windows.",
            .openPermission = "What is missing?",
            .notTrusted = "Not possible: KWin does not run Tessarel's script.",
            .thisComputer = "this computer"};
}

} // namespace tessarel::plasma
