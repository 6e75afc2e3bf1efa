// SPDX-License-Identifier: MIT

#include "platform/sim/sim_desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace tessarel::sim {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// How the simulated mouse moves windows. The reported mouse events are part of the port's contract tests.
class SimMouseTest : public ::testing::Test {
protected:
    SimMouseTest() { desktop.addScreen({.frame = {0, 0, 1440, 900}}); }

    void dragFrom(const Point& from, const Point& to) {
        mouse.moveTo(from);
        mouse.press();
        mouse.moveTo(to);
        mouse.release();
    }

    SimDesktop desktop;
    SimMouse& mouse = desktop.mouse();
    WindowId window = desktop.openWindow("org.example.editor", {200, 150, 640, 480});
};

TEST_F(SimMouseTest, AWindowDraggedByItsTitleBarFollowsThePointer) {
    dragFrom({300, 160}, {350, 120});

    EXPECT_EQ(desktop.frame(window), (Rect{250, 110, 640, 480}));
    mouse.moveTo({900, 900});
    EXPECT_EQ(desktop.frame(window), (Rect{250, 110, 640, 480}));
}

TEST_F(SimMouseTest, AWindowDraggedByItsTopEdgeIsResized) {
    dragFrom({300, 150}, {350, 100});

    EXPECT_EQ(desktop.frame(window), (Rect{200, 100, 640, 530}));
}

TEST_F(SimMouseTest, AWindowDraggedByItsContentStays) {
    dragFrom({300, 211}, {350, 100});

    EXPECT_EQ(desktop.frame(window), (Rect{200, 150, 640, 480}));
}

TEST_F(SimMouseTest, AWindowMayBeClosedDuringADrag) {
    mouse.moveTo({300, 160});
    mouse.press();
    desktop.close(window);

    mouse.moveTo({350, 120});
    mouse.release();
}

TEST_F(SimMouseTest, ALostReleaseIsReportedWithTheNextMotion) {
    std::vector<MouseEventKind> kinds;
    std::vector<SubscriptionPtr> monitors;
    for (const auto kind : {MouseEventKind::LeftDown, MouseEventKind::LeftDragged, MouseEventKind::LeftUp})
        monitors.push_back(
            mouse.addGlobalMonitor(kind, [&](const MouseEvent& event) { kinds.push_back(event.kind); }));
    mouse.press();
    mouse.loseRelease();
    EXPECT_THAT(kinds, ElementsAre(MouseEventKind::LeftDown));

    mouse.moveTo({10, 10});
    mouse.moveTo({20, 20});

    EXPECT_THAT(kinds, ElementsAre(MouseEventKind::LeftDown, MouseEventKind::LeftUp));
}

TEST_F(SimMouseTest, ARefusedMonitorIsNull) {
    mouse.refuse(MouseEventKind::LeftUp);

    EXPECT_FALSE(mouse.addGlobalMonitor(MouseEventKind::LeftUp, [](const MouseEvent&) {}));
    EXPECT_THAT(mouse.monitored(), IsEmpty());
}

} // namespace
} // namespace tessarel::sim
