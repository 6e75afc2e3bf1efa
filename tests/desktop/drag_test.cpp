// SPDX-License-Identifier: MIT

#include "desktop/drag_fixture.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::x11test {
namespace {

/// Drags under every window manager but fvwm3 and Window Maker.
class DragTest : public DragFixture {};

/// Drags under the window managers that process keys and requests while they move a window. The others see
/// nothing but the pointer until the button is released.
class AttentiveDragTest : public DragFixture {};

constexpr std::array kAttentive = {
    WindowManagerKind::Openbox, WindowManagerKind::Xfwm4,    WindowManagerKind::Metacity,
    WindowManagerKind::Marco,   WindowManagerKind::Icewm,    WindowManagerKind::Fluxbox,
    WindowManagerKind::Kwin,    WindowManagerKind::Mutter,   WindowManagerKind::Jwm,
    WindowManagerKind::Awesome, WindowManagerKind::Blackbox,
};

/// Drags with settings that remember the zones of applications.
class RememberedDragTest : public DragFixture {
protected:
    RememberedDragTest() : DragFixture(kUsualSettings) {}
};

TEST_P(DragTest, ADraggedWindowGoesToTheZoneUnderThePointer) {
    const xcb_window_t window = desktop.open(client);

    dragInto(window, zoneFrame(2));
    dragInto(window, zoneFrame(4));
}

TEST_P(RememberedDragTest, TheZoneOfTheApplicationIsRemembered) {
    dragInto(desktop.open(client, {.className = "Dragged"}), zoneFrame(4));

    EXPECT_TRUE(remembered(R"("Dragged":3)"));
}

INSTANTIATE_TEST_SUITE_P(One, RememberedDragTest, testing::Values(WindowManagerKind::Openbox), managerName);

TEST_P(DragTest, AWindowStaysWhereItIsDroppedWhenTheTriggerIsReleasedFirst) {
    const xcb_window_t window = desktop.open(client);
    const Frame before = desktop.frame(window);
    dragOver(window, zoneFrame(5));

    drag.hold(0);
    EXPECT_TRUE(drag.waitUntilNoOverlay());
    drag.release();

    const Frame dropped = desktop.frame(window);
    expectNextPressWorks();
    EXPECT_EQ(desktop.frame(window), dropped);
    EXPECT_EQ(dropped.width, before.width);
    EXPECT_NE(dropped.x, before.x);
}

TEST_P(DragTest, TheTriggerShowsAndHidesTheZonesUnderARestingPointer) {
    const xcb_window_t window = desktop.open(client);
    ASSERT_TRUE(drag.begin(window));
    drag.moveInto(zoneFrame(5));

    for (int time = 0; time < 2; ++time) {
        drag.holdAtRest(XCB_MOD_MASK_SHIFT);
        EXPECT_TRUE(drag.waitForOverlay(desktop.usableArea()));
        drag.holdAtRest(0);
        EXPECT_TRUE(drag.waitUntilNoOverlay());
    }
    drag.release();

    expectNextPressWorks();
}

// fvwm3 and Window Maker withhold the press until they have begun to move the window.
TEST_P(AttentiveDragTest, RestoreGoesBackToTheFrameBeforeTheDrag) {
    const xcb_window_t window = desktop.open(client);
    ASSERT_TRUE(desktop.activate(window)); // some window managers decorate it again at this point
    const Frame before = desktop.frame(window);
    dragInto(window, zoneFrame(4));

    ASSERT_TRUE(desktop.activate(window));
    desktop.press(hotkey::kRestore);

    EXPECT_EQ(desktop.settledFrame(window, before), before);
}

TEST_P(DragTest, ADragThatStartsInTheContentNeverSnaps) {
    const xcb_window_t window = desktop.open(client);
    const Frame before = desktop.frame(window);
    drag.press(before.x + before.width / 2, before.y + before.height / 2);
    drag.hold(XCB_MOD_MASK_SHIFT);
    drag.moveInto(zoneFrame(5));

    EXPECT_TRUE(drag.staysWithoutOverlay());
    drag.release();
    drag.hold(0);

    expectNextPressWorks();
    EXPECT_EQ(desktop.frame(window), before);
}

TEST_P(AttentiveDragTest, DestroyingADraggedWindowHidesTheOverlay) {
    const xcb_window_t window = desktop.open(client);
    dragOver(window, zoneFrame(2));

    client.destroy(window);

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    drag.release();
    expectNextDragWorks();
}

TEST_P(AttentiveDragTest, AProgramStoppedDuringADragLeavesNoOverlayBehind) {
    const xcb_window_t window = desktop.open(client);
    dragOver(window, zoneFrame(2));

    client.stop();
    drag.release();

    expectNextDragWorks();
    client.resume();
    EXPECT_EQ(desktop.settledFrame(window, zoneFrame(2)), zoneFrame(2));
}

TEST_P(AttentiveDragTest, EscapeHidesTheOverlayAndTheReleaseDoesNothing) {
    const xcb_window_t window = desktop.open(client);
    dragOver(window, zoneFrame(2));

    desktop.press({key::kEscape, 0});

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    drag.moveInto(zoneFrame(5));
    EXPECT_TRUE(drag.staysWithoutOverlay());
    drag.release();
    expectNextDragWorks();
    EXPECT_NE(desktop.frame(window), zoneFrame(2));
    EXPECT_NE(desktop.frame(window), zoneFrame(5));
}

/// Drags of borders. Window Maker and pekwm grab the server meanwhile, so that no other program does
/// anything.
class BorderDragTest : public DragFixture {};

TEST_P(BorderDragTest, ResizingAWindowNeverShowsTheOverlay) {
    const xcb_window_t window = desktop.open(client, {.client = {400, 250, 500, 350}});
    int resized = 0;
    for (int round = 0; round < 12; ++round) {
        const Frame before = desktop.frame(window);
        const int midX = before.x + before.width / 2;
        const int midY = before.y + before.height / 2;
        const std::array<std::array<int, 4>, 4> borders = {{{before.x + 1, midY, -1, 0},
                                                            {before.right() - 2, midY, 1, 0},
                                                            {midX, before.y + 1, 0, -1},
                                                            {midX, before.bottom() - 2, 0, 1}}};
        const auto& [x, y, stepX, stepY] = borders.at(static_cast<std::size_t>(round % 4));
        const int direction = round % 8 < 4 ? 1 : -1;
        drag.press(x, y);
        drag.hold(XCB_MOD_MASK_SHIFT);
        bool isShown = false;
        for (int i = 1; i <= 12; ++i) {
            drag.moveTo(x + i * 5 * stepX * direction, y + i * 5 * stepY * direction);
            isShown = isShown || drag.overlay().has_value();
        }
        const Frame after = desktop.frame(window);
        const bool isResize = after.width != before.width || after.height != before.height;
        resized += isResize ? 1 : 0;
        EXPECT_FALSE(isShown && isResize) << "round " << round;
        drag.hold(0);
        drag.release();
        ASSERT_TRUE(drag.waitUntilNothingIsGrabbed());
    }
    RecordProperty("resized", resized);
    expectNextPressWorks();
}

INSTANTIATE_TEST_SUITE_P(Attentive, DragTest, testing::ValuesIn(kAttentive), managerName);
INSTANTIATE_TEST_SUITE_P(Pekwm, DragTest, testing::Values(WindowManagerKind::Pekwm), managerName);
// fvwm3 and Window Maker withhold the press until they have begun to move the window. The pointer may have
// left the title bar by then, and the zones do not always appear.
INSTANTIATE_TEST_SUITE_P(Attentive, BorderDragTest, testing::ValuesIn(kAttentive), managerName);
INSTANTIATE_TEST_SUITE_P(Fvwm3, BorderDragTest, testing::Values(WindowManagerKind::Fvwm3), managerName);
INSTANTIATE_TEST_SUITE_P(Most, AttentiveDragTest, testing::ValuesIn(kAttentive), managerName);

/// Drags of windows that get another size when they are pulled off. openbox, fluxbox, awesome, Window Maker
/// and pekwm do not move a maximised window. Under fvwm3 the zones do not always appear.
class PulledOffTest : public DragFixture {
protected:
    /// When the trigger is pressed in a drag.
    enum class Trigger { BeforeItMoves, OnceItMoves };

    /// Drags `window`, which is maximised or tiled, into a zone.
    void pullOff(xcb_window_t window, Trigger trigger) {
        const Frame before = desktop.frame(window);
        const bool isMutter = GetParam() == WindowManagerKind::Mutter; // ignores some presses, see WindowDrag
        bool isPulledOff = false;
        for (int triesLeft = isMutter ? 8 : 1; triesLeft > 0 && !isPulledOff; --triesLeft) {
            drag.release();
            drag.hold(0);
            drag.grip(window);
            if (trigger == Trigger::BeforeItMoves)
                drag.hold(XCB_MOD_MASK_SHIFT);
            drag.moveInto(zoneFrame(4));
            drag.hold(XCB_MOD_MASK_SHIFT);
            drag.moveInto(zoneFrame(2));
            isPulledOff =
                desktop.observer().waitUntil([&] { return desktop.frame(window) != before; },
                                             isMutter ? Deadline(std::chrono::seconds(1)) : Deadline());
        }
        ASSERT_TRUE(isPulledOff);
        ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));
        drag.release();
        EXPECT_EQ(desktop.settledFrame(window, zoneFrame(2)), zoneFrame(2));
    }
};

TEST_P(PulledOffTest, AMaximizedWindowThatIsPulledOffGoesToTheZone) {
    const xcb_window_t window = desktop.open(client);
    ASSERT_TRUE(desktop.addStates(window, {"_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ"}));

    pullOff(window, Trigger::BeforeItMoves);
}

INSTANTIATE_TEST_SUITE_P(Most, PulledOffTest,
                         testing::Values(WindowManagerKind::Xfwm4, WindowManagerKind::Metacity,
                                         WindowManagerKind::Marco, WindowManagerKind::Icewm,
                                         WindowManagerKind::Kwin, WindowManagerKind::Mutter,
                                         WindowManagerKind::Jwm, WindowManagerKind::Blackbox),
                         managerName);

/// Drags of windows that were dropped at a screen edge. The other window managers do not tile there in these
/// drags. With Shift held from the start, marco and metacity do not move a tiled window.
class TiledDragTest : public PulledOffTest {};

TEST_P(TiledDragTest, ATiledWindowThatIsPulledOffGoesToTheZone) {
    const xcb_window_t window = desktop.open(client);
    const Frame before = desktop.frame(window);
    ASSERT_TRUE(drag.begin(window));
    drag.moveTo(0, before.y);
    drag.release();
    ASSERT_TRUE(desktop.observer().waitUntil([&] {
        const Frame frame = desktop.frame(window);
        return frame.x == 0 && frame.height > before.height;
    })) << desktop.frame(window);

    pullOff(window, Trigger::OnceItMoves);
}

INSTANTIATE_TEST_SUITE_P(Some, TiledDragTest,
                         testing::Values(WindowManagerKind::Marco, WindowManagerKind::Metacity,
                                         WindowManagerKind::Kwin, WindowManagerKind::Awesome),
                         managerName);

/// Restarts the program with the settings of each test, and with the default ones afterwards.
class DragSettingsTest : public DragFixture {
protected:
    ~DragSettingsTest() override {
        drag.hold(0);
        drag.release();
        EXPECT_TRUE(setDesktops(m_desktops));
        EXPECT_TRUE(desktop.restart(kNoHomes));
    }

    [[nodiscard]] bool use(const std::string& settings) {
        return desktop.restart(R"({"hasOnboarded":true,"rememberApps":false,)" + settings + "}");
    }

    /// A point of the root window and the part of the screen that it snaps to.
    struct Place {
        int x = 0;
        int y = 0;
        Share share;
    };

    /// At a screen edge, xfwm4 moves a dragged window to the next virtual desktop if there is one.
    [[nodiscard]] bool leaveXfwm4OneDesktop() {
        return desktop.manager() != WindowManagerKind::Xfwm4 || setDesktops({1});
    }

    /// Expects that windows dropped at these points take the part of the screen that belongs to each.
    void expectParts(const std::vector<Place>& places) {
        ASSERT_TRUE(leaveXfwm4OneDesktop());
        for (const Place& place : places) {
            TestClient fresh{desktop.server()};
            const xcb_window_t window = desktop.open(fresh, {.client = {500, 300, 500, 300}});
            const Frame part = frameIn(desktop.usableArea(), place.share);
            ASSERT_TRUE(drag.begin(window));
            drag.moveTo(place.x, place.y);
            ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea())) << part;
            drag.release();
            EXPECT_TRUE(drag.waitUntilNoOverlay());
            EXPECT_EQ(desktop.settledFrame(window, part), part);
        }
    }

private:
    [[nodiscard]] std::vector<std::uint32_t> desktops() {
        return desktop.observer().values(desktop.observer().root(), "_NET_NUMBER_OF_DESKTOPS");
    }
    [[nodiscard]] bool setDesktops(const std::vector<std::uint32_t>& number) {
        if (desktops() == number)
            return true;
        desktop.observer().sendToRoot(desktop.observer().root(), "_NET_NUMBER_OF_DESKTOPS", {number.at(0)});
        return desktop.observer().waitUntil([&] { return desktops() == number; });
    }

    const std::vector<std::uint32_t> m_desktops = desktops();
};

/// Settings whose effect does not depend on the window manager.
class DragZonesTest : public DragSettingsTest {};

TEST_P(DragSettingsTest, EachTriggerShowsTheZones) {
    const xcb_window_t window = desktop.open(client);
    int zone = 4;
    constexpr std::array kTriggers = std::to_array<std::pair<const char*, std::uint16_t>>(
        {{"control", XCB_MOD_MASK_CONTROL}, {"command", XCB_MOD_MASK_4}, {"always", 0}});
    for (const auto& [trigger, modifiers] : kTriggers) {
        SCOPED_TRACE(trigger);
        ASSERT_TRUE(use(R"("dragTrigger":")" + std::string(trigger) + "\""));
        dragInto(window, zoneFrame(zone), modifiers);
        zone = 9 - zone;
    }
}

TEST_P(DragSettingsTest, EachEdgeSnapsToItsPartOfTheScreen) {
    ASSERT_TRUE(use(R"("edgeSnap":true)"));
    expectParts({{0, 450, kLeftHalf}, {1599, 450, kRightHalf}, {800, 0, kWhole}});
}

INSTANTIATE_TEST_SUITE_P(Most, DragSettingsTest, testing::ValuesIn(kAttentive), managerName);

/// All window managers except metacity: the others either do not tile at the corners or allow a tiled window
/// to be moved.
class DragCornersTest : public DragSettingsTest {};

TEST_P(DragCornersTest, EachCornerSnapsToItsQuarterOfTheScreen) {
    ASSERT_TRUE(use(R"("edgeSnap":true)"));
    expectParts({{0, 0, {0, 0, 50, 50}},
                 {1599, 0, {50, 0, 50, 50}},
                 {0, 899, {0, 50, 50, 50}},
                 {1599, 899, {50, 50, 50, 50}}});
}

INSTANTIATE_TEST_SUITE_P(Most, DragCornersTest,
                         testing::Values(WindowManagerKind::Openbox, WindowManagerKind::Xfwm4,
                                         WindowManagerKind::Marco, WindowManagerKind::Icewm,
                                         WindowManagerKind::Fluxbox, WindowManagerKind::Kwin,
                                         WindowManagerKind::Mutter, WindowManagerKind::Jwm,
                                         WindowManagerKind::Awesome, WindowManagerKind::Blackbox),
                         managerName);

TEST_P(DragZonesTest, TheSmallerOfOverlappingZonesWins) {
    ASSERT_TRUE(use(R"("zones":[{"enabled":true,"x":0,"y":0,"w":100,"h":100},)"
                    R"({"enabled":true,"x":50,"y":50,"w":25,"h":25}])"));
    const xcb_window_t window = desktop.open(client);

    dragInto(window, frameIn(desktop.usableArea(), {50, 50, 25, 25}));

    ASSERT_TRUE(drag.begin(window));
    drag.hold(XCB_MOD_MASK_SHIFT);
    drag.moveTo(200, 700);
    ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));
    drag.release();
    EXPECT_EQ(desktop.settledFrame(window, desktop.usableArea()), desktop.usableArea());
}

TEST_P(DragZonesTest, ADisabledZoneTakesNoWindow) {
    ASSERT_TRUE(use(R"("zones":[{"enabled":false,"x":0,"y":0,"w":50,"h":100},)"
                    R"({"enabled":true,"x":50,"y":0,"w":50,"h":100}])"));
    const xcb_window_t window = desktop.open(client);
    dragOver(window, frameIn(desktop.usableArea(), kLeftHalf));
    const Frame before = desktop.frame(window);

    drag.release();
    drag.hold(0);

    dragInto(desktop.open(client), frameIn(desktop.usableArea(), kRightHalf));
    EXPECT_EQ(desktop.frame(window).width, before.width);
}

TEST_P(DragZonesTest, DraggingAWindowOfAnIgnoredApplicationShowsNoOverlay) {
    ASSERT_TRUE(use(R"("ignoredApps":["Ignored"])"));
    const xcb_window_t window = desktop.open(client, {.className = "Ignored"});
    const Frame before = desktop.frame(window);
    ASSERT_TRUE(drag.begin(window));
    drag.hold(XCB_MOD_MASK_SHIFT);
    drag.moveInto(zoneFrame(5));
    EXPECT_TRUE(drag.staysWithoutOverlay());
    drag.release();
    drag.hold(0);

    dragInto(desktop.open(client, {.className = "Other"}), zoneFrame(4));
    EXPECT_EQ(desktop.frame(window).width, before.width);
}

TEST_P(DragZonesTest, TheMiddleOfTheBottomEdgeSnapsNothing) {
    ASSERT_TRUE(use(R"("edgeSnap":true)"));
    const xcb_window_t window = desktop.open(client);
    const Frame before = desktop.frame(window);
    ASSERT_TRUE(drag.begin(window));
    drag.moveTo(1599, 450);
    ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));

    drag.moveTo(800, 899);

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    drag.release();
    expectNextDragWorks();
    EXPECT_EQ(desktop.frame(window).width, before.width);
}

INSTANTIATE_TEST_SUITE_P(One, DragZonesTest, testing::Values(WindowManagerKind::Openbox), managerName);

} // namespace
} // namespace tessarel::x11test
