#pragma once

#include "ports/platform_words.h"

namespace tessarel::x11 {

/// What is true on an X11 desktop.
[[nodiscard]] inline PlatformWords words() {
    return {.modifierNames = {.ctrl = "Ctrl", .opt = "Alt", .shift = "Shift", .cmd = "Super"},
            .welcomeFirst = "Tessarel moves other programs' windows with the help of your window manager and "
                            "needs no permission for it.",
            .statusItem = "icon in the panel"};
}

} // namespace tessarel::x11
