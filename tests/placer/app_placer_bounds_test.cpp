// SPDX-License-Identifier: MIT

#include "placer/placer_test.h"

namespace tessarel {
namespace {

class AppPlacerBoundsTest : public PlacerTest {
protected:
    AppPlacerBoundsTest() { placer->start(); }

    /// Reports a window that was placed before once more and returns whether it is placed again.
    bool isPlacedAgain(sim::WindowId window) {
        desktop.drag(window, kStart);
        accessibility.reportCreated(window);
        desktop.advance(kWindowDelay);
        return desktop.frame(window) != kStart;
    }

    void placeAndClose(int count) {
        for (int i = 0; i < count; ++i)
            desktop.close(openAndWait(editor));
    }
};

TEST_F(AppPlacerBoundsTest, FiveHundredAndOneWindowsAreRemembered) {
    const auto first = openAndWait(editor);
    placeAndClose(500);

    EXPECT_FALSE(isPlacedAgain(first));
}

TEST_F(AppPlacerBoundsTest, AfterFiveHundredAndOneWindowsTheMemoryIsCleared) {
    const auto first = openAndWait(editor);
    placeAndClose(501);

    EXPECT_TRUE(isPlacedAgain(first));
    EXPECT_FALSE(isPlacedAgain(first));
}

TEST_F(AppPlacerBoundsTest, SkippedWindowsAreNotRemembered) {
    const auto first = openAndWait(editor);
    for (int i = 0; i < 600; ++i)
        desktop.close(openAndWait(editor, {.axFrame = kStart, .minimized = true}));

    EXPECT_FALSE(isPlacedAgain(first));
}

TEST_F(AppPlacerBoundsTest, TenThousandWindowsLeaveNoObserversOrTimersBehind) {
    for (int i = 0; i < 10'000; ++i) {
        const ProcessId pid = desktop.launch({.bundleIdentifier = "org.example.editor"});
        (void)open(pid);
        if (i % 2 == 0)
            desktop.advance(kWindowDelay);
        desktop.kill(pid);
        (void)desktop.takeRequests();
    }
    desktop.advance(kLaunchDelay);

    EXPECT_EQ(accessibility.observers(), 1U);
    EXPECT_EQ(desktop.clock().waiting(), 0U);
}

} // namespace
} // namespace tessarel
