// SPDX-License-Identifier: MIT

#include "model/carbon_mods.h"

#include <gtest/gtest.h>

namespace tessarel {
namespace {

TEST(CarbonModsTest, EachFlagBecomesItsBit) {
    EXPECT_EQ(carbonMods(0x20000), 512);
    EXPECT_EQ(carbonMods(0x40000), 4096);
    EXPECT_EQ(carbonMods(0x80000), 2048);
    EXPECT_EQ(carbonMods(0x100000), 256);
}

TEST(CarbonModsTest, SeveralFlagsAddUp) {
    EXPECT_EQ(carbonMods(0x100000 | 0x80000), 2304);
    EXPECT_EQ(carbonMods(0x20000 | 0x40000 | 0x80000 | 0x100000), 6912);
}

TEST(CarbonModsTest, NoFlagsGiveNoBits) {
    EXPECT_EQ(carbonMods(0), 0);
}

TEST(CarbonModsTest, OtherFlagsAreIgnored) {
    EXPECT_EQ(carbonMods(0x10000), 0);             // caps lock
    EXPECT_EQ(carbonMods(0x200000 | 0x800000), 0); // numeric pad, function
    EXPECT_EQ(carbonMods(~ModifierFlags{0x20000 | 0x40000 | 0x80000 | 0x100000}), 0);
    EXPECT_EQ(carbonMods(0x40000 | 0x10000 | 0x101), 4096);
}

TEST(CarbonModsTest, ModifierFlagsInvertsCarbonMods) {
    for (std::int64_t mods = 0; mods <= 6912; mods += 256)
        EXPECT_EQ(carbonMods(modifierFlags(mods)), mods & 6912) << mods;
    EXPECT_EQ(modifierFlags(512), kShiftFlag);
    EXPECT_EQ(modifierFlags(1 | 1024), ModifierFlags{0}) << "other bits are ignored";
}

} // namespace
} // namespace tessarel
