#include "platform/x11/input/lock_modifiers.h"

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>

namespace tessarel::x11 {

namespace {

// Keysyms of Num Lock and Scroll Lock. Caps Lock needs none: the core modifier Lock is always included.
constexpr std::array<xcb_keysym_t, 2> kLockKeys = {0xff7f, 0xff14};
constexpr std::size_t kModifiers = 8; // Shift, Lock, Control, Mod1 to Mod5: bit n is modifier n

struct FreeSymbols {
    void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};

struct FreeKeycodes {
    void operator()(xcb_keycode_t* keycodes) const { std::free(keycodes); }
};

/// Returns whether `keys` contains a keycode of `wanted`, a list that ends with XCB_NO_SYMBOL or is null.
bool isAmong(std::span<const xcb_keycode_t> keys, const xcb_keycode_t* wanted) {
    for (; wanted && *wanted != XCB_NO_SYMBOL; ++wanted) {
        if (std::ranges::find(keys, *wanted) != keys.end())
            return true;
    }
    return false;
}

} // namespace

std::uint16_t lockModifiers(Connection& connection) {
    std::uint16_t modifiers = XCB_MOD_MASK_LOCK;
    const std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols(xcb_key_symbols_alloc(connection.xcb()));
    const auto mapping =
        connection.reply<xcb_get_modifier_mapping_reply>(xcb_get_modifier_mapping(connection.xcb()));
    if (!symbols || !mapping)
        return modifiers;

    // Num Lock and Scroll Lock have no fixed modifiers: the user's keymap assigns them, usually Num Lock to
    // Mod2.
    const std::size_t keysPerModifier = mapping->keycodes_per_modifier;
    const std::span keys(xcb_get_modifier_mapping_keycodes(mapping.get()), kModifiers * keysPerModifier);
    for (const xcb_keysym_t lockKey : kLockKeys) {
        // Does not wait: the keyboard mapping was requested before the modifier mapping, so its reply has
        // arrived.
        const std::unique_ptr<xcb_keycode_t, FreeKeycodes> keycodes(
            xcb_key_symbols_get_keycode(symbols.get(), lockKey));
        for (std::size_t modifier = 0; modifier < kModifiers; ++modifier) {
            if (isAmong(keys.subspan(modifier * keysPerModifier, keysPerModifier), keycodes.get()))
                modifiers |= static_cast<std::uint16_t>(1U << modifier);
        }
    }
    return modifiers;
}

} // namespace tessarel::x11
