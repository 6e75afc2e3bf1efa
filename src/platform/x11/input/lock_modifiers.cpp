// SPDX-License-Identifier: MIT

#include "platform/x11/input/lock_modifiers.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace tessarel::x11 {

namespace {

// Keysyms. Caps Lock needs none: the core modifier Lock is always included.
constexpr xcb_keysym_t kNumLock = 0xff7f;
constexpr xcb_keysym_t kScrollLock = 0xff14;
constexpr std::size_t kModifiers = 8; // Shift, Lock, Control, Mod1 to Mod5: bit n is modifier n

/// A view of the keysyms of every keycode. The reply must outlive it.
class KeyboardMapping {
public:
    KeyboardMapping(xcb_keycode_t firstKeycode, const xcb_get_keyboard_mapping_reply_t& reply)
        : m_firstKeycode(firstKeycode), m_keysymsPerKeycode(reply.keysyms_per_keycode),
          m_keysyms(xcb_get_keyboard_mapping_keysyms(&reply),
                    static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(&reply))) {}

    /// Returns whether Num Lock or Scroll Lock is on the key, in any group or shift level.
    [[nodiscard]] bool isLockKey(xcb_keycode_t keycode) const {
        if (keycode < m_firstKeycode)
            return false; // unused entries of the modifier mapping are zero
        const std::size_t start = (std::size_t{keycode} - m_firstKeycode) * m_keysymsPerKeycode;
        if (start + m_keysymsPerKeycode > m_keysyms.size())
            return false;
        return std::ranges::any_of(m_keysyms.subspan(start, m_keysymsPerKeycode), [](xcb_keysym_t keysym) {
            return keysym == kNumLock || keysym == kScrollLock;
        });
    }

private:
    xcb_keycode_t m_firstKeycode;
    std::size_t m_keysymsPerKeycode;
    std::span<const xcb_keysym_t> m_keysyms;
};

} // namespace

std::uint16_t lockModifiers(Connection& connection) {
    xcb_connection_t* const xcb = connection.xcb();
    const xcb_setup_t& setup = *xcb_get_setup(xcb);
    const auto keycodes = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
    const auto keyboardCookie = xcb_get_keyboard_mapping(xcb, setup.min_keycode, keycodes);
    const auto modifierCookie = xcb_get_modifier_mapping(xcb);
    const auto keyboardReply = connection.reply<xcb_get_keyboard_mapping_reply>(keyboardCookie);
    const auto modifierReply = connection.reply<xcb_get_modifier_mapping_reply>(modifierCookie);
    std::uint16_t modifiers = XCB_MOD_MASK_LOCK;
    if (!keyboardReply || !modifierReply)
        return modifiers;

    // Num Lock and Scroll Lock have no fixed modifiers: the user's keymap assigns them, usually Num Lock to
    // Mod2.
    const KeyboardMapping mapping(setup.min_keycode, *keyboardReply);
    const std::size_t keysPerModifier = modifierReply->keycodes_per_modifier;
    const std::span keys(xcb_get_modifier_mapping_keycodes(modifierReply.get()),
                         kModifiers * keysPerModifier);
    for (std::size_t modifier = 0; modifier < kModifiers; ++modifier) {
        const auto ofModifier = keys.subspan(modifier * keysPerModifier, keysPerModifier);
        if (std::ranges::any_of(ofModifier, [&](xcb_keycode_t key) { return mapping.isLockKey(key); }))
            modifiers |= static_cast<std::uint16_t>(1U << modifier);
    }
    return modifiers;
}

} // namespace tessarel::x11
