// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

namespace tessarel::contract {
namespace {

class DisplaysContract : public ContractTest {};

TEST_F(DisplaysContract, ThePrimaryDisplayIsFirstAndAtTheOrigin) {
    const auto screens = desktop->displays().screens();

    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1440, 900}));
}

TEST_F(DisplaysContract, FramesAreRelativeToTheBottomLeftOfThePrimaryDisplay) {
    const auto screens = desktop->displays().screens();

    // The top edges are aligned, so a taller display extends below the primary one.
    const Rect second = desktop->second();
    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[1].frame, (Rect{1440, 900 - second.height, second.width, second.height}));
}

TEST_F(DisplaysContract, WithoutPanelsTheVisibleFrameIsTheWholeFrame) {
    for (const Screen& screen : desktop->displays().screens())
        EXPECT_EQ(screen.visibleFrame, screen.frame);
}

TEST_F(DisplaysContract, APanelReducesTheVisibleFrameOfItsOwnDisplayOnly) {
    desktop->addPanel(25);

    const auto screens = desktop->displays().screens();

    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1440, 900}));
    EXPECT_EQ(screens[0].visibleFrame, (Rect{0, 0, 1440, 875}));
    EXPECT_EQ(screens[1].visibleFrame, screens[1].frame);
}

TEST_F(DisplaysContract, DisplayIdsAreUniqueAndStable) {
    const auto before = desktop->displays().screens();
    const auto after = desktop->displays().screens();

    ASSERT_EQ(before.size(), 2U);
    EXPECT_NE(before[0].id, before[1].id);
    EXPECT_EQ(before, after);
}

TEST_F(DisplaysContract, ADisconnectedDisplayIsNotListed) {
    const auto before = desktop->displays().screens();
    desktop->disconnectSecondDisplay();

    const auto after = desktop->displays().screens();

    ASSERT_EQ(after.size(), 1U);
    EXPECT_EQ(after[0], before.at(0));
}

TEST_F(DisplaysContract, TheMainScreenIsTheScreenOfTheFocusedWindow) {
    const auto left = openWindow({.axFrame = {100, 100, 400, 300}});
    const auto right = openWindow({.axFrame = {1600, 100, 400, 300}});
    const auto screens = desktop->displays().screens();
    ASSERT_EQ(screens.size(), 2U);

    desktop->focus(right);
    EXPECT_EQ(desktop->displays().mainScreen(), screens[1]);

    desktop->focus(left);
    EXPECT_EQ(desktop->displays().mainScreen(), screens[0]);
}

TEST_F(DisplaysContract, WithoutAFocusedWindowThereIsStillAMainScreen) {
    EXPECT_TRUE(desktop->displays().mainScreen());
}

} // namespace
} // namespace tessarel::contract
