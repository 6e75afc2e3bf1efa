// SPDX-License-Identifier: MIT

#include "model/key_names.h"

#include <algorithm>
#include <utility>

namespace tessarel {

constexpr std::array<KeyNames::Entry, 68> KeyNames::names{{
    {0, "A"},       {1, "S"},       {2, "D"},      {3, "F"},       {4, "H"},     {5, "G"},   {6, "Z"},
    {7, "X"},       {8, "C"},       {9, "V"},      {11, "B"},      {12, "Q"},    {13, "W"},  {14, "E"},
    {15, "R"},      {16, "Y"},      {17, "T"},     {31, "O"},      {32, "U"},    {34, "I"},  {35, "P"},
    {37, "L"},      {38, "J"},      {40, "K"},     {45, "N"},      {46, "M"},

    {18, "1"},      {19, "2"},      {20, "3"},     {21, "4"},      {23, "5"},    {22, "6"},  {26, "7"},
    {28, "8"},      {25, "9"},      {29, "0"},

    {24, "="},      {27, "-"},      {30, "]"},     {33, "["},      {39, "'"},    {41, ";"},  {42, "\\"},
    {43, ","},      {44, "/"},      {47, "."},     {50, "`"},

    {36, "Return"}, {48, "Tab"},    {49, "Space"}, {51, "Delete"}, {53, "Esc"},

    {123, "Left"},  {124, "Right"}, {125, "Down"}, {126, "Up"},

    {122, "F1"},    {120, "F2"},    {99, "F3"},    {118, "F4"},    {96, "F5"},   {97, "F6"}, {98, "F7"},
    {100, "F8"},    {101, "F9"},    {109, "F10"},  {103, "F11"},   {111, "F12"},
}};

std::string KeyNames::name(std::int64_t keyCode) {
    const auto entry = std::find_if(names.begin(), names.end(),
                                    [&](const Entry& candidate) { return candidate.keyCode == keyCode; });
    if (entry == names.end())
        return "Key" + std::to_string(keyCode);
    return std::string(entry->name);
}

std::string KeyNames::describe(const std::optional<Binding>& binding, const ModifierNames& modifierNames,
                               const Naming& nameOf) {
    if (!binding)
        return "None";

    const std::array<std::pair<std::int64_t, std::string_view>, 4> modifiers{{
        {kCtrlKey, modifierNames.ctrl},
        {kOptKey, modifierNames.opt},
        {kShiftKey, modifierNames.shift},
        {kCmdKey, modifierNames.cmd},
    }};
    std::string text;
    for (const auto& [bit, modifierName] : modifiers) {
        if ((binding->mods & bit) != 0)
            text.append(modifierName).append("+");
    }
    return text + nameOf(binding->keyCode);
}

} // namespace tessarel
