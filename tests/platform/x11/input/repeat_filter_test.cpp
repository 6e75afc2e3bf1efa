// SPDX-License-Identifier: MIT

#include "platform/x11/input/repeat_filter.h"

#include <gtest/gtest.h>

namespace tessarel::x11 {
namespace {

TEST(RepeatFilterTest, AHeldKeyCountsAsOnePress) {
    RepeatFilter keys;

    EXPECT_TRUE(keys.press(10));
    EXPECT_FALSE(keys.press(10));
    EXPECT_FALSE(keys.press(10));
}

TEST(RepeatFilterTest, AReleasedKeyCanBePressedAgain) {
    RepeatFilter keys;
    EXPECT_TRUE(keys.press(10));
    keys.release(10);

    EXPECT_TRUE(keys.press(10));
}

TEST(RepeatFilterTest, AutoRepeatsAreFilteredWhileAnotherKeyIsPressed) {
    RepeatFilter keys;
    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(133));

    EXPECT_FALSE(keys.press(10));

    keys.release(133);
    EXPECT_FALSE(keys.press(10));
    EXPECT_TRUE(keys.press(133));
}

TEST(RepeatFilterTest, AReleaseForgetsAllKeysBecauseTheGrabEnds) {
    RepeatFilter keys;
    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(11));

    keys.release(10); // the release of 11 goes to another client

    EXPECT_TRUE(keys.press(11));
}

TEST(RepeatFilterTest, AMissedReleaseLosesOnePressAtMost) {
    RepeatFilter keys;
    EXPECT_TRUE(keys.press(10));

    EXPECT_FALSE(keys.press(10));
    keys.release(10);

    EXPECT_TRUE(keys.press(10));
}

TEST(RepeatFilterTest, ReleasesOfUnpressedKeysAreIgnored) {
    RepeatFilter keys;
    keys.release(10);
    keys.release(255);

    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(255));
    EXPECT_TRUE(keys.press(0));
}

} // namespace
} // namespace tessarel::x11
