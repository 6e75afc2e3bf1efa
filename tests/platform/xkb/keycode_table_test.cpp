// SPDX-License-Identifier: MIT

#include "platform/xkb/keycode_table.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <set>

namespace tessarel::xkb {
namespace {

/// Converts an evdev key code of the kernel to an X keycode.
constexpr std::uint8_t evdev(int code) {
    return static_cast<std::uint8_t>(code + 8);
}

TEST(KeyCodesTest, EveryCodeIsUniqueOnBothSides) {
    std::set<int> virtualKeys;
    std::set<int> keycodes;
    for (const PhysicalKey& key : kPhysicalKeys) {
        EXPECT_TRUE(virtualKeys.insert(key.virtualKey).second) << int{key.virtualKey};
        EXPECT_TRUE(keycodes.insert(key.keycode).second) << int{key.keycode};
    }
}

TEST(KeyCodesTest, EveryKeyIsFoundByBothCodes) {
    for (const PhysicalKey& key : kPhysicalKeys) {
        EXPECT_EQ(keycodeOf(key.virtualKey), key.keycode);
        EXPECT_EQ(virtualKeyOf(key.keycode), key.virtualKey);
    }
}

TEST(KeyCodesTest, DeleteIsTheBackspaceKeyAndForwardDeleteTheOther) {
    EXPECT_EQ(keycodeOf(51), evdev(14));
    EXPECT_EQ(keycodeOf(117), evdev(111));
}

TEST(KeyCodesTest, ReturnAndEnterOfTheKeypadAreTwoKeys) {
    EXPECT_EQ(keycodeOf(36), evdev(28));
    EXPECT_EQ(keycodeOf(76), evdev(96));
}

TEST(KeyCodesTest, KeysWithoutANameAreMapped) {
    EXPECT_EQ(keycodeOf(10), evdev(86));   // beside the left Shift of ISO keyboards
    EXPECT_EQ(keycodeOf(105), evdev(183)); // F13
    EXPECT_EQ(keycodeOf(90), evdev(190));  // F20
    EXPECT_EQ(keycodeOf(115), evdev(102)); // Home
    EXPECT_EQ(keycodeOf(119), evdev(107)); // End
    EXPECT_EQ(keycodeOf(116), evdev(104)); // Page Up
    EXPECT_EQ(keycodeOf(121), evdev(109)); // Page Down
}

TEST(KeyCodesTest, UnmappedCodesGiveNoKey) {
    for (const std::uint32_t virtualKey : {52U, 63U, 127U, 128U, 256U, 4000U, 0xffffffffU})
        EXPECT_FALSE(keycodeOf(virtualKey)) << virtualKey;
    for (const std::uint8_t keycode : std::initializer_list<std::uint8_t>{0, 8, 37, 64, 66, 133, 255})
        EXPECT_FALSE(virtualKeyOf(keycode)) << int{keycode};
}

} // namespace
} // namespace tessarel::xkb
