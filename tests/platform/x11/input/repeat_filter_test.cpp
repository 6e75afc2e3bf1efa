#include "platform/x11/input/repeat_filter.h"

#include <gtest/gtest.h>

namespace tessarel::x11 {
namespace {

TEST(RepeatFilterTest, AKeyThatIsHeldIsPressedOnce) {
    RepeatFilter keys;

    EXPECT_TRUE(keys.press(10));
    EXPECT_FALSE(keys.press(10));
    EXPECT_FALSE(keys.press(10));
}

TEST(RepeatFilterTest, AKeyThatWasReleasedIsPressedAnew) {
    RepeatFilter keys;
    EXPECT_TRUE(keys.press(10));
    keys.release(10);

    EXPECT_TRUE(keys.press(10));
}

TEST(RepeatFilterTest, AnotherKeyDoesNotMakeTheRepetitionsPresses) {
    RepeatFilter keys;
    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(133));

    EXPECT_FALSE(keys.press(10));

    keys.release(133);
    EXPECT_FALSE(keys.press(10));
    EXPECT_TRUE(keys.press(133));
}

TEST(RepeatFilterTest, NothingIsKnownOfOtherKeysOnceTheGrabHasEnded) {
    RepeatFilter keys;
    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(11));

    keys.release(10); // the release of 11 goes to another client

    EXPECT_TRUE(keys.press(11));
}

TEST(RepeatFilterTest, AReleaseThatDidNotComeCostsOnePressAtMost) {
    RepeatFilter keys;
    EXPECT_TRUE(keys.press(10));

    EXPECT_FALSE(keys.press(10));
    keys.release(10);

    EXPECT_TRUE(keys.press(10));
}

TEST(RepeatFilterTest, ReleasesOfKeysThatWereNotPressedDoNotMatter) {
    RepeatFilter keys;
    keys.release(10);
    keys.release(255);

    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(255));
    EXPECT_TRUE(keys.press(0));
}

} // namespace
} // namespace tessarel::x11
