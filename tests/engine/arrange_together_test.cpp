// SPDX-License-Identifier: MIT

#include "arrange_test.h"

#include <gmock/gmock.h>

#include <string>

namespace tessarel {
namespace {

using ::testing::HasSubstr;

/// A desktop on which the frames of several windows can be read only once all have been written.
class ArrangeTogetherTest : public ArrangeAllTest {
protected:
    ArrangeTogetherTest() { desktop.accessibility().postponeReads(); }

    WindowId wide = open(at({20, 20, 800, 300}));
    WindowId second = open(at({30, 30, 300, 300}));
    WindowId first = open(at({40, 40, 300, 300}));
};

TEST_F(ArrangeTogetherTest, AWindowThatIsWiderThanItsZoneIsPulledBackIntoTheUsableArea) {
    desktop.window(wide).minimum = {400, 100};

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(first), kColumn1);
    EXPECT_EQ(desktop.frame(second), kColumn2);
    EXPECT_EQ(desktop.frame(wide), (Rect{-500, -575, 400, 820}));
}

TEST_F(ArrangeTogetherTest, AWindowIsCorrectedOnlyAfterAllHaveBeenWritten) {
    desktop.window(first).minimum = {400, 100};

    engine.arrangeAll();

    EXPECT_THAT(desktop.takeWrites().back(), HasSubstr(name(first)));
    EXPECT_EQ(desktop.frame(first), (Rect{-1400, -575, 400, 820}));
}

TEST_F(ArrangeTogetherTest, TheRestoreChainOfEachWindowGoesOn) {
    desktop.window(wide).minimum = {400, 100};
    engine.arrangeAll();
    desktop.focus(wide); // so that it comes into another zone
    engine.arrangeAll();
    ASSERT_EQ(desktop.frame(wide), (Rect{-1400, -575, 400, 820}));

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(wide), at({20, 20, 800, 300}));
}

} // namespace
} // namespace tessarel
