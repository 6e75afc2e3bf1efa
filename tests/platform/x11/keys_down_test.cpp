#include "platform/x11/keys_down.h"

#include <gtest/gtest.h>

namespace tessarel::x11 {
namespace {

TEST(KeysDownTest, AKeyThatIsHeldIsPressedOnce) {
    KeysDown keys;

    EXPECT_TRUE(keys.press(10));
    EXPECT_FALSE(keys.press(10));
    EXPECT_FALSE(keys.press(10));
}

TEST(KeysDownTest, AKeyThatWasReleasedIsPressedAnew) {
    KeysDown keys;
    EXPECT_TRUE(keys.press(10));
    keys.release(10);

    EXPECT_TRUE(keys.press(10));
}

TEST(KeysDownTest, AnotherKeyDoesNotMakeTheRepetitionsPresses) {
    KeysDown keys;
    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(133));

    EXPECT_FALSE(keys.press(10));

    keys.release(133);
    EXPECT_FALSE(keys.press(10));
    EXPECT_TRUE(keys.press(133));
}

TEST(KeysDownTest, NothingIsKnownOfOtherKeysOnceTheGrabHasEnded) {
    KeysDown keys;
    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(11));

    keys.release(10); // the release of 11 goes to another client

    EXPECT_TRUE(keys.press(11));
}

TEST(KeysDownTest, AReleaseThatDidNotComeCostsOnePressAtMost) {
    KeysDown keys;
    EXPECT_TRUE(keys.press(10));

    EXPECT_FALSE(keys.press(10));
    keys.release(10);

    EXPECT_TRUE(keys.press(10));
}

TEST(KeysDownTest, ReleasesOfKeysThatWereNotPressedDoNotMatter) {
    KeysDown keys;
    keys.release(10);
    keys.release(255);

    EXPECT_TRUE(keys.press(10));
    EXPECT_TRUE(keys.press(255));
    EXPECT_TRUE(keys.press(0));
}

} // namespace
} // namespace tessarel::x11
