// SPDX-License-Identifier: MIT

#include "support/plasma/plasma_session.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tessarel::plasmatest {
namespace {

constexpr const char* kAlwaysShown = R"({"hasOnboarded":true,"rememberApps":false,"dragTrigger":"always"})";

class PlasmaDragTest : public testing::Test {
protected:
    void SetUp() override {
        session.writeSettings(kAlwaysShown);
        ASSERT_TRUE(session.startProgram()) << session.program().errors();
        session.open({"kwrite"}, kEditor);
    }

    /// Presses the title bar and moves the pointer to a place in small steps.
    void dragTo(double x, double y) {
        const Rect before = session.frame(kEditor).value_or(Rect::null());
        const Point press{before.midX(), before.minY() + 10};
        session.input().moveTo(press.x, press.y);
        session.input().setLeftButton(true);
        constexpr int kSteps = 10;
        for (int step = 1; step <= kSteps; ++step)
            session.input().moveTo(press.x + (x - press.x) * step / kSteps,
                                   press.y + (y - press.y) * step / kSteps);
    }

    /// Returns whether the program shows an overlay over the whole display.
    bool isOverlayOn(const Rect& display) {
        const auto& windows = session.probe().windows();
        return std::any_of(windows.begin(), windows.end(), [&](const SeenWindow& window) {
            return window.pid == session.program().pid() && window.frame == display;
        });
    }

    PlasmaSession session;
};

TEST_F(PlasmaDragTest, AWindowDraggedIntoAZoneTakesItsFrameAndTheZonesAreShownMeanwhile) {
    dragTo(1300, 200);
    EXPECT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));

    session.input().setLeftButton(false);

    const Rect third{1067, 0, 533, 450};
    EXPECT_EQ(session.settledFrame(kEditor, third), third);
    EXPECT_TRUE(session.probe().waitUntil([&] { return !isOverlayOn(PlasmaSession::kFirst); }));
    EXPECT_TRUE(session.program().running());
}

TEST_F(PlasmaDragTest, TheZonesOfTheDisplayWithThePointerAreShown) {
    dragTo(1600 + 300, 700);
    EXPECT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kSecond); }));

    session.input().setLeftButton(false);

    const Rect fourth{1600, 450, 800, 450};
    EXPECT_EQ(session.settledFrame(kEditor, fourth), fourth);
}

} // namespace
} // namespace tessarel::plasmatest
