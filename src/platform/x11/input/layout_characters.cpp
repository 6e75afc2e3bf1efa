// SPDX-License-Identifier: MIT

#include "platform/x11/input/layout_characters.h"

#include "platform/xkb/keycode_table.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace tessarel::x11 {

namespace {

/// Releases the objects of the library, which counts references.
struct Unref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};

template <class T>
using Owned = std::unique_ptr<T, Unref>;

/// Accents of dead keys, which type nothing by themselves.
constexpr std::array kAccents = std::to_array<std::pair<xkb_keysym_t, const char*>>({
    {XKB_KEY_dead_grave, "`"},
    {XKB_KEY_dead_acute, "´"},
    {XKB_KEY_dead_circumflex, "^"},
    {XKB_KEY_dead_tilde, "~"},
    {XKB_KEY_dead_macron, "¯"},
    {XKB_KEY_dead_breve, "˘"},
    {XKB_KEY_dead_abovedot, "˙"},
    {XKB_KEY_dead_diaeresis, "¨"},
    {XKB_KEY_dead_abovering, "°"},
    {XKB_KEY_dead_doubleacute, "˝"},
    {XKB_KEY_dead_caron, "ˇ"},
    {XKB_KEY_dead_cedilla, "¸"},
    {XKB_KEY_dead_ogonek, "˛"},
    {XKB_KEY_dead_stroke, "/"},
});

/// Returns the visible character of a key symbol; empty if it has none.
std::string characterOf(xkb_keysym_t symbol) {
    const auto* const accent =
        std::ranges::find(kAccents, symbol, &std::pair<xkb_keysym_t, const char*>::first);
    if (accent != kAccents.end())
        return accent->second;
    constexpr std::uint32_t kSpace = 0x20;
    constexpr std::uint32_t kDelete = 0x7F;
    const std::uint32_t codePoint = xkb_keysym_to_utf32(symbol);
    std::array<char, 8> text{};
    if (codePoint <= kSpace || codePoint == kDelete ||
        xkb_keysym_to_utf8(symbol, text.data(), text.size()) <= 0)
        return {};
    return text.data();
}

bool isDigit(const std::string& character) {
    return character.size() == 1 && character[0] >= '0' && character[0] <= '9';
}

/// The keyboard with the layout that is active now.
class ActiveLayout {
public:
    ActiveLayout(xkb_keymap* keymap, xkb_state* state)
        : m_keymap(keymap), m_layout(xkb_state_serialize_layout(state, XKB_STATE_LAYOUT_EFFECTIVE)) {}

    /// Returns what is printed on a key; empty if it types no character.
    [[nodiscard]] std::string printedOn(xkb_keycode_t keycode) const {
        const std::string shifted = characterOf(symbol(keycode, 1));
        return isDigit(shifted) ? shifted : characterOf(xkb_keysym_to_upper(symbol(keycode, 0)));
    }

private:
    /// Returns what the key types, without Shift (`level` 0) or with it (1).
    [[nodiscard]] xkb_keysym_t symbol(xkb_keycode_t keycode, xkb_level_index_t level) const {
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(m_keymap, keycode, m_layout, level, &symbols);
        return count > 0 ? symbols[0] : xkb_keysym_t{XKB_KEY_NoSymbol};
    }

    xkb_keymap* m_keymap;
    xkb_layout_index_t m_layout;
};

} // namespace

std::map<std::int64_t, std::string> layoutCharacters(xcb_connection_t* xcb) {
    if (xkb_x11_setup_xkb_extension(xcb, 1, 0, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr,
                                    nullptr, nullptr) == 0)
        return {};
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(xcb);
    const Owned<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (device < 0 || !context)
        return {};
    xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    const Owned<xkb_keymap> keymap(
        xkb_x11_keymap_new_from_device(context.get(), xcb, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    const Owned<xkb_state> state(keymap ? xkb_x11_state_new_from_device(keymap.get(), xcb, device) : nullptr);
    if (!state)
        return {};
    const ActiveLayout layout(keymap.get(), state.get());
    std::map<std::int64_t, std::string> all;
    for (const xkb::PhysicalKey& key : xkb::kPhysicalKeys)
        if (std::string printed = layout.printedOn(key.keycode); !printed.empty())
            all.emplace(key.virtualKey, std::move(printed));
    return all;
}

} // namespace tessarel::x11
