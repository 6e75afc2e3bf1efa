// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xkb/keymap.h"

#include <xkbcommon/xkbcommon.h>

namespace tessarel::xkb {

/// Returns the complete keymap of these layouts.
inline Keymap keymapOf(const char* layouts) {
    xkb_context* const context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    const xkb_rule_names names{
        .rules = nullptr, .model = nullptr, .layout = layouts, .variant = nullptr, .options = nullptr};
    auto keymap = Keymap::owning(xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    xkb_context_unref(context);
    return keymap;
}

} // namespace tessarel::xkb
