// SPDX-License-Identifier: MIT

#include "app/updates/updater.h"

#include <gtest/gtest.h>

#include <string>

namespace tessarel {
namespace {

TEST(UpdaterVersionTest, TheFirstDifferenceFromTheLeftDecides) {
    EXPECT_TRUE(Updater::isNewer("2.0", "1.9"));
    EXPECT_FALSE(Updater::isNewer("1.9", "2.0"));
    EXPECT_TRUE(Updater::isNewer("1.2.4", "1.2.3.9"));
}

TEST(UpdaterVersionTest, ComponentsAreComparedAsNumbers) {
    EXPECT_TRUE(Updater::isNewer("1.10", "1.9"));
    EXPECT_FALSE(Updater::isNewer("1.9", "1.10"));
    EXPECT_FALSE(Updater::isNewer("1.01", "1.1"));
    EXPECT_FALSE(Updater::isNewer("1.1", "1.01"));
}

TEST(UpdaterVersionTest, AVersionIsNotNewerThanItself) {
    for (const char* version : {"1.2.3", "", ".", "beta", "0", "-1"})
        EXPECT_FALSE(Updater::isNewer(version, version)) << version;
}

TEST(UpdaterVersionTest, AMissingComponentCountsAsZero) {
    EXPECT_FALSE(Updater::isNewer("1.2", "1.2.0"));
    EXPECT_FALSE(Updater::isNewer("1.2.0", "1.2"));
    EXPECT_TRUE(Updater::isNewer("1.2.0.1", "1.2"));
    EXPECT_TRUE(Updater::isNewer("0.1", ""));
}

TEST(UpdaterVersionTest, EmptyComponentsAreDropped) {
    EXPECT_FALSE(Updater::isNewer("1..2", "1.2"));
    EXPECT_FALSE(Updater::isNewer("1.2", "1..2"));
    EXPECT_FALSE(Updater::isNewer(".1.2.", "1.2"));
    EXPECT_TRUE(Updater::isNewer("...1.3", "1.2"));
}

TEST(UpdaterVersionTest, AComponentThatIsNotANumberCountsAsZero) {
    EXPECT_FALSE(Updater::isNewer("2.0-beta", "2"));
    EXPECT_FALSE(Updater::isNewer("2", "2.0-beta"));
    for (const char* component : {"3b", "b3", "+", "-", "+-3", "3-", " 3", "3 ", "0x3", "1e3", "\xD9\xA3"})
        EXPECT_FALSE(Updater::isNewer(std::string("1.") + component, "1")) << component;
}

TEST(UpdaterVersionTest, AComponentMayHaveASign) {
    EXPECT_TRUE(Updater::isNewer("1.+3", "1.2"));
    EXPECT_TRUE(Updater::isNewer("1", "1.-3"));
    EXPECT_TRUE(Updater::isNewer("1.-2", "1.-3"));
    EXPECT_FALSE(Updater::isNewer("1.-3", "1.-2"));
    EXPECT_FALSE(Updater::isNewer("1.-0", "1.0"));
    EXPECT_FALSE(Updater::isNewer("1.0", "1.-0"));
}

TEST(UpdaterVersionTest, NumbersOfAnyLengthAreCompared) {
    const std::string huge(100'000, '9');

    EXPECT_TRUE(Updater::isNewer(huge, "1"));
    EXPECT_FALSE(Updater::isNewer("-" + huge, "1"));
    EXPECT_TRUE(Updater::isNewer("1" + huge, huge));
    EXPECT_FALSE(Updater::isNewer("0000" + huge, huge));
    EXPECT_TRUE(Updater::isNewer("18446744073709551617", "18446744073709551616"));
}

TEST(UpdaterVersionTest, AMillionComponentsAreCompared) {
    std::string dots;
    for (int component = 0; component < 500'000; ++component)
        dots += "0.";

    EXPECT_TRUE(Updater::isNewer(dots + "1", "0"));
    EXPECT_FALSE(Updater::isNewer(dots, dots + "1"));
}

} // namespace
} // namespace tessarel
