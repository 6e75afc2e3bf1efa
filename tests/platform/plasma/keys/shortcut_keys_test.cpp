// SPDX-License-Identifier: MIT

#include "platform/plasma/keys/shortcut_keys.h"

#include "support/keymap_of.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tessarel::plasma {
namespace {

// Numbers of Qt.
constexpr std::int32_t kShift = 0x02000000;
constexpr std::int32_t kCtrl = 0x04000000;
constexpr std::int32_t kAlt = 0x08000000;
constexpr std::int32_t kMeta = 0x10000000;
constexpr std::int32_t kQtLeft = 0x01000012;

// Bits of a binding.
constexpr std::uint32_t kCommandBit = 256;
constexpr std::uint32_t kShiftBit = 512;
constexpr std::uint32_t kOptionBit = 2048;
constexpr std::uint32_t kControlBit = 4096;
constexpr std::uint32_t kCtrlAlt = kControlBit + kOptionBit;

// Keys of a binding.
constexpr std::uint32_t kKeyA = 0;
constexpr std::uint32_t kKeyQ = 12;
constexpr std::uint32_t kKey1 = 18;
constexpr std::uint32_t kKey4 = 21;
constexpr std::uint32_t kKeyLeft = 123;
constexpr std::uint32_t kKeyF5 = 96;
constexpr std::uint32_t kKeypad5 = 87;
constexpr std::uint32_t kKeyYen = 93;
constexpr std::uint32_t kKeypadEnter = 76;

using xkb::keymapOf;

TEST(ShortcutKeysTest, LettersCountAsCapitalsWithTheirModifiers) {
    const auto us = keymapOf("us");

    EXPECT_EQ(shortcutKey(us, 0, kKeyA, kCtrlAlt), 'A' | kCtrl | kAlt);
    EXPECT_EQ(shortcutKey(us, 0, kKeyA, kCommandBit), 'A' | kMeta);
    EXPECT_EQ(shortcutKey(us, 0, kKeyA, 0), 'A');
}

TEST(ShortcutKeysTest, ShiftThatOnlyMakesACapitalStays) {
    EXPECT_EQ(shortcutKey(keymapOf("us"), 0, kKeyA, kControlBit + kShiftBit), 'A' | kCtrl | kShift);
}

TEST(ShortcutKeysTest, ShiftThatMakesAnotherSymbolIsUsedUp) {
    EXPECT_EQ(shortcutKey(keymapOf("us"), 0, kKey4, kCtrlAlt + kShiftBit), '$' | kCtrl | kAlt);
    EXPECT_EQ(shortcutKey(keymapOf("us"), 0, kKey4, kCtrlAlt), '4' | kCtrl | kAlt);
}

TEST(ShortcutKeysTest, ShiftStaysOnKeysThatTypeTheSameWithIt) {
    EXPECT_EQ(shortcutKey(keymapOf("us"), 0, kKeyLeft, kControlBit + kShiftBit), kQtLeft | kCtrl | kShift);
}

TEST(ShortcutKeysTest, ThePhysicalKeyGivesWhatTheLayoutTypes) {
    const auto french = keymapOf("fr");

    EXPECT_EQ(shortcutKey(french, 0, kKey1, kCtrlAlt), '&' | kCtrl | kAlt);
    EXPECT_EQ(shortcutKey(french, 0, kKey1, kCtrlAlt + kShiftBit), '1' | kCtrl | kAlt);
    EXPECT_EQ(shortcutKey(french, 0, kKeyQ, kCtrlAlt), 'A' | kCtrl | kAlt);
}

TEST(ShortcutKeysTest, EachLayoutOfAKeymapHasItsOwnSymbols) {
    const auto both = keymapOf("us,ru");

    EXPECT_EQ(shortcutKey(both, 0, kKeyA, kCtrlAlt), 'A' | kCtrl | kAlt);
    EXPECT_EQ(shortcutKey(both, 1, kKeyA, kCtrlAlt), 0x0424 | kCtrl | kAlt); // the capital of the Cyrillic ef
    EXPECT_EQ(shortcutKey(both, 1, kKeyLeft, kCtrlAlt), kQtLeft | kCtrl | kAlt);
}

TEST(ShortcutKeysTest, FunctionKeysAreNumberedAsQtDoes) {
    const auto us = keymapOf("us");

    EXPECT_EQ(shortcutKey(us, 0, kKeyF5, 0), 0x01000034);
    EXPECT_EQ(shortcutKey(us, 0, kKeypadEnter, kControlBit), 0x01000005 | kCtrl);
}

TEST(ShortcutKeysTest, TheKeypadGivesTheSymbolWithoutNumLockAndTheDigitWithShift) {
    const auto us = keymapOf("us");

    EXPECT_EQ(shortcutKey(us, 0, kKeypad5, kControlBit), 0x0100000b | kCtrl);
    EXPECT_EQ(shortcutKey(us, 0, kKeypad5, kControlBit + kShiftBit), '5' | kCtrl);
}

TEST(ShortcutKeysTest, KeysThatNoKeyboardHasAndOddModifiersAreRefused) {
    const auto us = keymapOf("us");

    for (const std::uint32_t keyCode : {4000U, 0x7fffffffU, 0xffffffffU})
        EXPECT_FALSE(shortcutKey(us, 0, keyCode, kCtrlAlt)) << keyCode;
    for (const std::uint32_t bit : {1U, 128U, 1024U, 8192U, 0x80000000U})
        EXPECT_FALSE(shortcutKey(us, 0, kKeyA, kCtrlAlt + bit)) << bit;
}

TEST(ShortcutKeysTest, AKeyThatTypesNothingInALayoutHasANumberInAnother) {
    EXPECT_EQ(shortcutKey(keymapOf("us"), 0, kKeyYen, kCtrlAlt), 0);
    EXPECT_EQ(shortcutKey(keymapOf("jp"), 0, kKeyYen, kCtrlAlt), '\\' | kCtrl | kAlt);
}

TEST(ShortcutKeysTest, EveryKeyThatHasANumberKeepsItsModifiers) {
    const auto us = keymapOf("us");
    for (std::uint32_t keyCode = 0; keyCode < 128; ++keyCode) {
        const auto key = shortcutKey(us, 0, keyCode, kCtrlAlt);
        if (key.value_or(0) != 0) {
            EXPECT_EQ(*key & (kCtrl | kAlt | kShift | kMeta), kCtrl | kAlt) << keyCode;
        }
    }
}

TEST(ShortcutKeysTest, TheShortKeymapOfAUsKeyboardHasAllNumbersOfTheCompleteOne) {
    const auto complete = keymapOf("us");
    const auto brief = xkb::Keymap::us();
    for (std::uint32_t keyCode = 0; keyCode < 128; ++keyCode) {
        for (const std::uint32_t mods : {kCtrlAlt, kCtrlAlt + kShiftBit})
            EXPECT_EQ(shortcutKey(brief, 0, keyCode, mods), shortcutKey(complete, 0, keyCode, mods))
                << keyCode;
    }
}

TEST(ShortcutKeysTest, AMalformedKeymapTypesNothing) {
    for (const char* const text : {"", "xkb_keymap {", "nonsense"})
        EXPECT_EQ(shortcutKey(xkb::Keymap::parsed(text), 0, kKeyA, kCtrlAlt), 0) << text;
}

} // namespace
} // namespace tessarel::plasma
