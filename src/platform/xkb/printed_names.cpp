// SPDX-License-Identifier: MIT

#include "platform/xkb/printed_names.h"

#include "model/key_names.h"
#include "platform/xkb/keycode_table.h"

#include <algorithm>
#include <array>
#include <utility>
#include <xkbcommon/xkbcommon.h>

namespace tessarel::xkb {

namespace {

/// Keys that have the same name in every layout. The characters of the keypad depend on Num Lock, and the
/// digits above the letters have the same ones.
constexpr std::array kNamedKeys = std::to_array<KeyNames::Entry>({
    {36, "Return"},     {48, "Tab"},          {49, "Space"},    {51, "Backspace"}, {53, "Esc"},
    {117, "Delete"},    {114, "Insert"},      {115, "Home"},    {119, "End"},      {116, "Page Up"},
    {121, "Page Down"}, {123, "Left"},        {124, "Right"},   {126, "Up"},       {125, "Down"},
    {110, "Menu"},      {122, "F1"},          {120, "F2"},      {99, "F3"},        {118, "F4"},
    {96, "F5"},         {97, "F6"},           {98, "F7"},       {100, "F8"},       {101, "F9"},
    {109, "F10"},       {103, "F11"},         {111, "F12"},     {105, "F13"},      {107, "F14"},
    {113, "F15"},       {106, "F16"},         {64, "F17"},      {79, "F18"},       {80, "F19"},
    {90, "F20"},        {82, "Keypad 0"},     {83, "Keypad 1"}, {84, "Keypad 2"},  {85, "Keypad 3"},
    {86, "Keypad 4"},   {87, "Keypad 5"},     {88, "Keypad 6"}, {89, "Keypad 7"},  {91, "Keypad 8"},
    {92, "Keypad 9"},   {65, "Keypad ."},     {67, "Keypad *"}, {69, "Keypad +"},  {71, "Num Lock"},
    {75, "Keypad /"},   {76, "Keypad Enter"}, {78, "Keypad -"}, {81, "Keypad ="},  {95, "Keypad ,"},
    {102, "Eisu"},      {104, "Kana"},
});

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

/// Returns what is printed on a key that types a character; empty for other keys.
std::string characterOn(const Keymap& keymap, std::uint32_t layout, std::uint32_t keycode) {
    const std::string shifted = characterOf(keymap.symbol(keycode, layout, 1));
    return isDigit(shifted) ? shifted : characterOf(xkb_keysym_to_upper(keymap.symbol(keycode, layout, 0)));
}

} // namespace

PrintedNames::PrintedNames(const Keymap& keymap, std::uint32_t layout) {
    for (const PhysicalKey& key : kPhysicalKeys)
        if (std::string character = characterOn(keymap, layout, key.keycode); !character.empty())
            m_characters.emplace(key.virtualKey, std::move(character));
}

std::string PrintedNames::name(std::int64_t keyCode) const {
    if (auto fixed = fixedName(keyCode))
        return *std::move(fixed);
    const auto character = m_characters.find(keyCode);
    return character == m_characters.end() ? KeyNames::name(keyCode) : character->second;
}

std::optional<std::string> PrintedNames::fixedName(std::int64_t keyCode) {
    const auto* const named = std::ranges::find(kNamedKeys, keyCode, &KeyNames::Entry::keyCode);
    if (named == kNamedKeys.end())
        return std::nullopt;
    return std::string(named->name);
}

} // namespace tessarel::xkb
