// SPDX-License-Identifier: MIT

#include "platform/xkb/keymap.h"

#include <array>
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

/// What a key types, without Shift and with it.
struct KeyOfUs {
    int keycode;
    const char* symbols;
};

constexpr std::array kUs = std::to_array<KeyOfUs>({
    {9, "Escape"},
    {10, "1, exclam"},
    {11, "2, at"},
    {12, "3, numbersign"},
    {13, "4, dollar"},
    {14, "5, percent"},
    {15, "6, asciicircum"},
    {16, "7, ampersand"},
    {17, "8, asterisk"},
    {18, "9, parenleft"},
    {19, "0, parenright"},
    {20, "minus, underscore"},
    {21, "equal, plus"},
    {22, "BackSpace, BackSpace"},
    {23, "Tab, ISO_Left_Tab"},
    {24, "q, Q"},
    {25, "w, W"},
    {26, "e, E"},
    {27, "r, R"},
    {28, "t, T"},
    {29, "y, Y"},
    {30, "u, U"},
    {31, "i, I"},
    {32, "o, O"},
    {33, "p, P"},
    {34, "bracketleft, braceleft"},
    {35, "bracketright, braceright"},
    {36, "Return"},
    {38, "a, A"},
    {39, "s, S"},
    {40, "d, D"},
    {41, "f, F"},
    {42, "g, G"},
    {43, "h, H"},
    {44, "j, J"},
    {45, "k, K"},
    {46, "l, L"},
    {47, "semicolon, colon"},
    {48, "apostrophe, quotedbl"},
    {49, "grave, asciitilde"},
    {51, "backslash, bar"},
    {52, "z, Z"},
    {53, "x, X"},
    {54, "c, C"},
    {55, "v, V"},
    {56, "b, B"},
    {57, "n, N"},
    {58, "m, M"},
    {59, "comma, less"},
    {60, "period, greater"},
    {61, "slash, question"},
    {63, "KP_Multiply, KP_Multiply"},
    {65, "space"},
    {67, "F1, F1"},
    {68, "F2, F2"},
    {69, "F3, F3"},
    {70, "F4, F4"},
    {71, "F5, F5"},
    {72, "F6, F6"},
    {73, "F7, F7"},
    {74, "F8, F8"},
    {75, "F9, F9"},
    {76, "F10, F10"},
    {77, "Num_Lock"},
    {79, "KP_Home, KP_7"},
    {80, "KP_Up, KP_8"},
    {81, "KP_Prior, KP_9"},
    {82, "KP_Subtract, KP_Subtract"},
    {83, "KP_Left, KP_4"},
    {84, "KP_Begin, KP_5"},
    {85, "KP_Right, KP_6"},
    {86, "KP_Add, KP_Add"},
    {87, "KP_End, KP_1"},
    {88, "KP_Down, KP_2"},
    {89, "KP_Next, KP_3"},
    {90, "KP_Insert, KP_0"},
    {91, "KP_Delete, KP_Decimal"},
    {94, "less, greater"},
    {95, "F11, F11"},
    {96, "F12, F12"},
    {104, "KP_Enter"},
    {106, "KP_Divide, KP_Divide"},
    {110, "Home"},
    {111, "Up"},
    {112, "Prior"},
    {113, "Left"},
    {114, "Right"},
    {115, "End"},
    {116, "Down"},
    {117, "Next"},
    {118, "Insert"},
    {119, "Delete"},
    {125, "KP_Equal"},
    {129, "KP_Decimal, KP_Decimal"},
    {135, "Menu"},
});

/// Returns the description of a US keyboard. The system's files, which have far more in them, take a
/// millisecond to read.
std::string descriptionOfUs() {
    std::string keycodes;
    std::string symbols;
    for (const KeyOfUs& key : kUs) {
        const std::string name = '<' + std::to_string(key.keycode) + '>';
        keycodes += name + '=' + std::to_string(key.keycode) + ';';
        symbols += "key" + name + "{[" + key.symbols + "]};";
    }
    return "xkb_keymap{xkb_keycodes{" + keycodes +
           "};xkb_types{type \"ONE_LEVEL\"{modifiers=none;};type "
           "\"TWO_LEVEL\"{modifiers=Shift;map[Shift]=2;};};"
           "xkb_compat{};xkb_symbols{key.type=\"TWO_LEVEL\";" +
           symbols + "};};";
}

} // namespace

Keymap Keymap::us() {
    return parsed(descriptionOfUs());
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
