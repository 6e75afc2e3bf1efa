// SPDX-License-Identifier: MIT

#include "platform/x11/input/key_lookup.h"

#include "platform/x11/input/modifier_flags.h"
#include "platform/xkb/keycode_table.h"

#include <gtest/gtest.h>
#include <xcb/xproto.h>

#include <initializer_list>

namespace tessarel::x11 {
namespace {

constexpr std::uint32_t kKeyB = 56;

TEST(KeyDownTest, TheFourModifiersMapToHotKeyFlags) {
    EXPECT_EQ(modifierFlags(XCB_MOD_MASK_CONTROL), kControlFlag);
    EXPECT_EQ(modifierFlags(XCB_MOD_MASK_1), kOptionFlag);
    EXPECT_EQ(modifierFlags(XCB_MOD_MASK_SHIFT), kShiftFlag);
    EXPECT_EQ(modifierFlags(XCB_MOD_MASK_4), kCommandFlag);
    EXPECT_EQ(modifierFlags(XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4), kControlFlag | kCommandFlag);
}

TEST(KeyDownTest, LocksAndButtonsAreNoModifiers) {
    EXPECT_EQ(modifierFlags(0), 0U);
    EXPECT_EQ(modifierFlags(XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2 | XCB_MOD_MASK_3 | XCB_MOD_MASK_5), 0U);
    EXPECT_EQ(modifierFlags(XCB_BUTTON_MASK_1 | 0x2000U), 0U); // group bits: the second of several layouts
}

TEST(KeyDownTest, AKeyMapsToTheVirtualKeyCodeOfHotKeys) {
    EXPECT_EQ(keyDown(kKeyB, XCB_MOD_MASK_CONTROL), (KeyDown{11, kControlFlag}));
    for (const xkb::PhysicalKey& key : xkb::kPhysicalKeys)
        EXPECT_EQ(keyDown(key.keycode, 0), (KeyDown{key.virtualKey}));
}

TEST(KeyDownTest, ModifierKeysAndUnmappedKeysAreNotTranslated) {
    constexpr std::uint32_t kControlL = 37;
    constexpr std::uint32_t kShiftL = 50;
    constexpr std::uint32_t kAltL = 64;
    constexpr std::uint32_t kCapsLock = 66;
    constexpr std::uint32_t kControlR = 105;
    constexpr std::uint32_t kAltR = 108;
    constexpr std::uint32_t kSuperL = 133;
    constexpr std::uint32_t kLouder = 123;
    for (const auto keycode :
         {kControlL, kShiftL, kAltL, kCapsLock, kControlR, kAltR, kSuperL, kLouder, 0U, 8U, 255U})
        EXPECT_EQ(keyDown(keycode, XCB_MOD_MASK_CONTROL), std::nullopt) << keycode;
}

TEST(KeyDownTest, AKeycodeOutOfRangeIsNotTranslated) {
    EXPECT_EQ(keyDown(256 + kKeyB, 0), std::nullopt);
    EXPECT_EQ(keyDown(0xffffffff, 0), std::nullopt);
}

} // namespace
} // namespace tessarel::x11
