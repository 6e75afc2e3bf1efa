// SPDX-License-Identifier: MIT

#include "platform/xkb/printed_names.h"

#include "support/keymap_of.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace tessarel::xkb {
namespace {

// Virtual key codes, named after the keys of a US keyboard.
constexpr std::int64_t kA = 0;
constexpr std::int64_t kZ = 6;
constexpr std::int64_t kDigit1 = 18;
constexpr std::int64_t kBackspace = 51;

TEST(PrintedNamesTest, EachLayoutOfAKeymapHasItsOwnNames) {
    const Keymap keymap = keymapOf("de,fr,ru");

    EXPECT_EQ(PrintedNames(keymap, 0).name(kZ), "Y");
    EXPECT_EQ(PrintedNames(keymap, 1).name(kZ), "W");
    EXPECT_EQ(PrintedNames(keymap, 1).name(kDigit1), "1") << "needs Shift there";
    EXPECT_EQ(PrintedNames(keymap, 2).name(kA), "\u0424");
}

TEST(PrintedNamesTest, KeysWithoutACharacterHaveTheSameNameInEveryLayout) {
    const Keymap keymap = keymapOf("us,fr");
    for (const std::uint32_t layout : {0U, 1U})
        EXPECT_EQ(PrintedNames(keymap, layout).name(kBackspace), "Backspace");
    EXPECT_EQ(PrintedNames::fixedName(kBackspace), "Backspace");
    EXPECT_EQ(PrintedNames::fixedName(kA), std::nullopt);
}

TEST(PrintedNamesTest, WithoutAKeymapTheKeysHaveTheirUsualNames) {
    const PrintedNames names(Keymap::parsed("not a keymap"), 0);

    EXPECT_EQ(names.name(kZ), "Z");
    EXPECT_EQ(names.name(kBackspace), "Backspace");
    EXPECT_EQ(names.name(-1), "Key-1");
}

} // namespace
} // namespace tessarel::xkb
