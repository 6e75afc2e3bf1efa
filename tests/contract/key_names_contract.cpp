// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace tessarel::contract {
namespace {

using KeyNamesContract = ContractTest;

TEST_F(KeyNamesContract, EachKeyHasANameOfItsOwn) {
    std::set<std::string> names;
    for (std::int64_t keyCode = 0; keyCode < 128; ++keyCode) {
        const std::string name = desktop->keyNames().name(keyCode);
        EXPECT_NE(name, "") << keyCode;
        EXPECT_TRUE(names.insert(name).second) << name;
    }
}

TEST_F(KeyNamesContract, AUsKeyboardHasTheNamesOfItsKeys) {
    constexpr std::pair<std::int64_t, const char*> kNames[] = {
        {0, "A"},       {6, "Z"},      {18, "1"},   {29, "0"},     {24, "="},   {42, "\\"},  {50, "`"},
        {36, "Return"}, {49, "Space"}, {53, "Esc"}, {123, "Left"}, {126, "Up"}, {122, "F1"}, {111, "F12"}};
    for (const auto& [keyCode, name] : kNames)
        EXPECT_EQ(desktop->keyNames().name(keyCode), name);
}

TEST_F(KeyNamesContract, AnUnknownKeyIsNamedByItsCode) {
    EXPECT_EQ(desktop->keyNames().name(57), "Key57");
    EXPECT_EQ(desktop->keyNames().name(-1), "Key-1");
}

} // namespace
} // namespace tessarel::contract
