// SPDX-License-Identifier: MIT

#include "platform/x11/input/key_names.h"

#include "model/key_names.h"
#include "platform/x11/input/layout_characters.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tessarel::x11 {

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

} // namespace

std::string X11KeyNames::name(std::int64_t keyCode) {
    const auto* const named = std::ranges::find(kNamedKeys, keyCode, &KeyNames::Entry::keyCode);
    if (named != kNamedKeys.end())
        return std::string(named->name);
    watch();
    if (!m_characters)
        m_characters = m_connection.withReplies(layoutCharacters);
    const auto character = m_characters->find(keyCode);
    return character == m_characters->end() ? KeyNames::name(keyCode) : character->second;
}

SubscriptionPtr X11KeyNames::onChange(std::function<void()> changed) {
    watch();
    return m_changed.connect(std::move(changed));
}

void X11KeyNames::watch() {
    if (m_keyboard)
        return;
    m_keyboard.emplace(m_connection);
    m_keyboard->selectLayoutChanges(m_connection);
    m_events = m_connection.onEvent([this](const Connection::Event& event) { handle(event); });
}

void X11KeyNames::handle(const Connection::Event& event) {
    if (!m_keyboard->isMappingChange(event) && !m_keyboard->isLayoutChange(event))
        return;
    m_characters.reset();
    m_changed.send();
}

} // namespace tessarel::x11
