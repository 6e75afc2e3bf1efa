// SPDX-License-Identifier: MIT

#include "model/key_names.h"

#include "model/action_id.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

namespace tessarel {
namespace {

const std::map<std::int64_t, std::string> kTable{
    {0, "A"},       {1, "S"},       {2, "D"},       {3, "F"},      {4, "H"},     {5, "G"},    {6, "Z"},
    {7, "X"},       {8, "C"},       {9, "V"},       {11, "B"},     {12, "Q"},    {13, "W"},   {14, "E"},
    {15, "R"},      {16, "Y"},      {17, "T"},      {18, "1"},     {19, "2"},    {20, "3"},   {21, "4"},
    {22, "6"},      {23, "5"},      {24, "="},      {25, "9"},     {26, "7"},    {27, "-"},   {28, "8"},
    {29, "0"},      {30, "]"},      {31, "O"},      {32, "U"},     {33, "["},    {34, "I"},   {35, "P"},
    {36, "Return"}, {37, "L"},      {38, "J"},      {39, "'"},     {40, "K"},    {41, ";"},   {42, "\\"},
    {43, ","},      {44, "/"},      {45, "N"},      {46, "M"},     {47, "."},    {48, "Tab"}, {49, "Space"},
    {50, "`"},      {51, "Delete"}, {53, "Esc"},    {96, "F5"},    {97, "F6"},   {98, "F7"},  {99, "F3"},
    {100, "F8"},    {101, "F9"},    {103, "F11"},   {109, "F10"},  {111, "F12"}, {118, "F4"}, {120, "F2"},
    {122, "F1"},    {123, "Left"},  {124, "Right"}, {125, "Down"}, {126, "Up"},
};

TEST(KeyNamesTest, TheNamesMatchTheTable) {
    std::map<std::int64_t, std::string> names;
    for (const auto& entry : KeyNames::names)
        names.emplace(entry.keyCode, entry.name);

    EXPECT_EQ(names, kTable);
    EXPECT_EQ(KeyNames::names.size(), 68U);
}

TEST(KeyNamesTest, EveryKeyCodeIsShownAsItsNameOrNumber) {
    for (std::int64_t code = -1; code <= 130; ++code) {
        const auto named = kTable.find(code);
        EXPECT_EQ(KeyNames::name(code), named == kTable.end() ? "Key" + std::to_string(code) : named->second);
    }
}

TEST(KeyNamesTest, KeysWithoutANameAreShownByKeyCode) {
    EXPECT_EQ(KeyNames::name(57), "Key57");
    EXPECT_EQ(KeyNames::name(10), "Key10");   // the extra key of ISO keyboards
    EXPECT_EQ(KeyNames::name(117), "Key117"); // forward delete
    EXPECT_EQ(KeyNames::name(-1), "Key-1");
    EXPECT_EQ(KeyNames::name(std::numeric_limits<std::int64_t>::min()), "Key-9223372036854775808");
}

TEST(KeyNamesTest, NoBindingIsShownAsNone) {
    EXPECT_EQ(KeyNames::describe(std::nullopt), "None");
}

TEST(KeyNamesTest, ModifiersHaveAFixedOrder) {
    EXPECT_EQ(KeyNames::describe(Binding{0, 4096 + 512 + 256}), "Ctrl+Shift+Cmd+A");
    EXPECT_EQ(KeyNames::describe(Binding{0, 256 + 512 + 2048 + 4096}), "Ctrl+Opt+Shift+Cmd+A");
    EXPECT_EQ(KeyNames::describe(Binding{0, 4096}), "Ctrl+A");
    EXPECT_EQ(KeyNames::describe(Binding{0, 2048}), "Opt+A");
    EXPECT_EQ(KeyNames::describe(Binding{0, 512}), "Shift+A");
    EXPECT_EQ(KeyNames::describe(Binding{0, 256}), "Cmd+A");
}

TEST(KeyNamesTest, ABindingWithoutModifiersIsShownAsItsKey) {
    EXPECT_EQ(KeyNames::describe(Binding{49, 0}), "Space");
    EXPECT_EQ(KeyNames::describe(Binding{105, 0}), "Key105");
}

TEST(KeyNamesTest, OtherModifierBitsAreIgnored) {
    EXPECT_EQ(KeyNames::describe(Binding{49, ~std::int64_t{4096 + 2048 + 512 + 256}}), "Space");
    EXPECT_EQ(KeyNames::describe(Binding{49, -1}), "Ctrl+Opt+Shift+Cmd+Space");
}

TEST(KeyNamesTest, TheDefaultBindingsAreShownByTheNamesOfTheirKeys) {
    const auto described = [](ActionID action) { return KeyNames::describe(action.defaultBinding()); };

    EXPECT_EQ(described(ActionID::zone5), "Ctrl+Opt+5");
    EXPECT_EQ(described(ActionID::zone6), "Ctrl+Opt+6");
    EXPECT_EQ(described(ActionID::maximize), "Ctrl+Opt+Return");
    EXPECT_EQ(described(ActionID::restore), "Ctrl+Opt+Delete");
    EXPECT_EQ(described(ActionID::nextDisplay), "Ctrl+Opt+Cmd+Right");
    EXPECT_EQ(described(ActionID::previousDisplay), "Ctrl+Opt+Cmd+Left");
}

} // namespace
} // namespace tessarel
