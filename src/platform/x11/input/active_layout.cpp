// SPDX-License-Identifier: MIT

#include "platform/x11/input/active_layout.h"

#include <memory>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace tessarel::x11 {

namespace {

/// Releases the objects of the library, which counts references.
struct Unref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};

template <class T>
using Owned = std::unique_ptr<T, Unref>;

xkb_keymap* keymapOf(xcb_connection_t* xcb, std::int32_t device) {
    const Owned<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (!context)
        return nullptr;
    xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    return xkb_x11_keymap_new_from_device(context.get(), xcb, device, XKB_KEYMAP_COMPILE_NO_FLAGS);
}

} // namespace

ActiveLayout activeLayout(xcb_connection_t* xcb) {
    if (xkb_x11_setup_xkb_extension(xcb, 1, 0, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr,
                                    nullptr, nullptr) == 0)
        return {xkb::Keymap::owning(nullptr)};
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(xcb);
    xkb_keymap* const keymap = device < 0 ? nullptr : keymapOf(xcb, device);
    const Owned<xkb_state> state(keymap != nullptr ? xkb_x11_state_new_from_device(keymap, xcb, device)
                                                   : nullptr);
    return {xkb::Keymap::owning(keymap),
            state ? xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE) : 0};
}

} // namespace tessarel::x11
