// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xkb/keymap.h"

#include <cstdlib>

namespace tessarel::xkb {

/// Returns the keymap of these layouts, as the environment of a desktop names them.
inline Keymap keymapOf(const char* layouts) {
    ::setenv("XKB_DEFAULT_LAYOUT", layouts, 1);
    auto keymap = Keymap::ofEnvironment();
    ::unsetenv("XKB_DEFAULT_LAYOUT");
    return keymap;
}

} // namespace tessarel::xkb
