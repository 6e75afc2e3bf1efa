// SPDX-License-Identifier: MIT

#include "platform/xkb/keymap.h"

#include <utility>
#include <xkbcommon/xkbcommon.h>

namespace tessarel::xkb {

namespace {

struct Unref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};

using Context = std::unique_ptr<xkb_context, Unref>;

/// Returns a context that does not print what the user cannot change, such as unknown symbols in the system's
/// files.
Context makeContext(xkb_context_flags flags) {
    Context context(xkb_context_new(flags));
    if (context)
        xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    return context;
}

xkb_keymap* compiled(const Context& context, const char* description) {
    return context ? xkb_keymap_new_from_string(context.get(), description, XKB_KEYMAP_FORMAT_TEXT_V1,
                                                XKB_KEYMAP_COMPILE_NO_FLAGS)
                   : nullptr;
}

/// A US keyboard, made of the files that every system has.
constexpr const char* kUs = R"(xkb_keymap {
    xkb_keycodes { include "evdev" };
    xkb_types { include "complete" };
    xkb_compat {};
    xkb_symbols { include "pc+us" };
};)";

} // namespace

Keymap Keymap::us() {
    return owning(compiled(makeContext(XKB_CONTEXT_NO_FLAGS), kUs));
}

Keymap Keymap::parsed(const std::string& description) {
    return owning(compiled(makeContext(XKB_CONTEXT_NO_DEFAULT_INCLUDES), description.c_str()));
}

Keymap Keymap::owning(xkb_keymap* keymap) {
    return Keymap({keymap, Unref()});
}

std::uint32_t Keymap::symbol(std::uint32_t keycode, std::uint32_t layout, std::uint32_t level) const {
    if (!m_keymap)
        return XKB_KEY_NoSymbol;
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(m_keymap.get(), keycode, layout, level, &symbols);
    return count > 0 ? symbols[0] : xkb_keysym_t{XKB_KEY_NoSymbol};
}

} // namespace tessarel::xkb
