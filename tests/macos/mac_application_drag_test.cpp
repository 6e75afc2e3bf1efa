// SPDX-License-Identifier: MIT

#include "macos/mac_application_test.h"
#include "support/main_queue.h"

namespace tessarel {
namespace {

constexpr Point kTitleBar{500, 210};

/// Drags the editor's window by its title bar.
class MacApplicationDragTest : public MacApplicationTest {
protected:
    MacApplicationDragTest() { launch(); }
    ~MacApplicationDragTest() override { fakemac::releaseLeftButton(); }

    void press() {
        fakemac::movePointer(kTitleBar);
        fakemac::pressLeftButton();
    }

    /// Moves window and pointer. The window moves first: its application handles the event before the
    /// monitors.
    void drag(const Point& axPoint) {
        Rect& axFrame = fakemac::mac().windows.at(window).axFrame;
        axFrame.x = kWindow.x + axPoint.x - kTitleBar.x;
        axFrame.y = kWindow.y + axPoint.y - kTitleBar.y;
        fakemac::movePointer(axPoint);
    }

    /// Waits 30 ms: at the start of a drag the program reads the window's frame no more often than that.
    void letFrameBeReadAgain() {
        bool isTime = false;
        asyncAfter(program->mainQueue(), std::chrono::milliseconds(30), [&isTime] { isTime = true; });
        EXPECT_TRUE(until([&isTime] { return isTime; }));
    }

    fakemac::WindowNumber window = openEditorWindow();
};

TEST_F(MacApplicationDragTest, WithShiftTheZonesAreShownUntilTheDropAndTheWindowSnaps) {
    fakemac::holdModifiers(kShiftFlag);
    press();
    EXPECT_EQ(overlay(), nullptr);

    drag({100, 100});
    ASSERT_NE(overlay(), nullptr);
    EXPECT_EQ(overlay()->geometry(), QRect(0, 0, 1440, 900));
    fakemac::releaseLeftButton();

    EXPECT_EQ(overlay(), nullptr);
    EXPECT_TRUE(until([&] { return frameOf(window) == kZone1; }));
}

TEST_F(MacApplicationDragTest, TheZoneUnderThePointerIsHighlighted) {
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});

    ASSERT_NE(overlay(), nullptr);
    const QImage picture = overlay()->grab().toImage();
    EXPECT_NEAR(picture.pixelColor(40, 60).alphaF(), 0.35, 0.01);
    EXPECT_NEAR(picture.pixelColor(520, 60).alphaF(), 0.1, 0.01);
    EXPECT_EQ(picture.pixelColor(480, 60).alpha(), 0);
    EXPECT_EQ(picture.pixelColor(40, 10).alpha(), 0) << "a zone is drawn under the menu bar";
}

TEST_F(MacApplicationDragTest, TheZonesAreDrawnInTheUsersAccentColour) {
    fakemac::mac().accent = {1, 0, 0};
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});

    ASSERT_NE(overlay(), nullptr);
    const QColor color = overlay()->grab().toImage().pixelColor(40, 60);
    EXPECT_GT(color.red(), 200);
    EXPECT_LT(color.blue(), 50);
}

TEST_F(MacApplicationDragTest, WithoutAnAccentColourTheZonesAreBlue) {
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});

    ASSERT_NE(overlay(), nullptr);
    EXPECT_GT(overlay()->grab().toImage().pixelColor(40, 60).blue(), 200);
}

TEST_F(MacApplicationDragTest, TheOverlayIsAtStatusLevelOnEverySpaceAndIgnoresTheMouse) {
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});
    ASSERT_NE(overlay(), nullptr);
    fakemac::WindowSight expected{.level = 25,
                                  .collectionBehavior = 337,
                                  .ignoresMouseEvents = true,
                                  .hasShadow = false,
                                  .isVisible = true,
                                  .isInFront = true,
                                  .hasKeyboard = false,
                                  .frame = {0, 0, 1440, 900}};
    EXPECT_EQ(windows->sight(*overlay()), expected);

    drag({600, 100});
    EXPECT_EQ(windows->sight(*overlay()), expected) << "after a change of the highlighted zone";

    drag({1500, 300});
    expected.frame = {1440, -124, 1120, 1024};
    EXPECT_EQ(windows->sight(*overlay()), expected) << "after a move to another display";

    fakemac::holdModifiers(0);
    fakemac::holdModifiers(kShiftFlag);
    EXPECT_EQ(windows->sight(*overlay()), expected) << "after being hidden and shown again";
}

TEST_F(MacApplicationDragTest, AHotKeyRightAfterTheDropActsOnTheDroppedWindow) {
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});
    drag({600, 100});
    EXPECT_EQ(fakemac::mac().frontmost, kEditor);
    fakemac::releaseLeftButton();
    EXPECT_TRUE(until([&] { return frameOf(window) == (Rect{480, 25, 480, 438}); }));

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(frameOf(window), kZone1);
    EXPECT_EQ(fakemac::mac().activationRequests, 0);
}

TEST_F(MacApplicationDragTest, TheOverlayFollowsThePointerToTheOtherDisplay) {
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});
    drag({1500, 300});

    ASSERT_NE(overlay(), nullptr);
    EXPECT_EQ(overlay()->geometry(), QRect(1440, 0, 1120, 1024));
    fakemac::releaseLeftButton();
    EXPECT_TRUE(until([&] { return frameOf(window).x == 1440; }));
}

TEST_F(MacApplicationDragTest, WithoutShiftNoOverlayIsShownAndTheWindowStaysWhereItIsDropped) {
    press();
    drag({100, 100});
    EXPECT_EQ(overlay(), nullptr);
    fakemac::releaseLeftButton();
    drain();

    EXPECT_EQ(frameOf(window), (Rect{-100, 90, 500, 400}));
}

TEST_F(MacApplicationDragTest, ShiftShowsAndHidesTheZonesUnderARestingPointer) {
    press();
    drag({100, 100});
    EXPECT_EQ(overlay(), nullptr);

    fakemac::holdModifiers(kShiftFlag);
    EXPECT_NE(overlay(), nullptr);
    fakemac::holdModifiers(0);
    EXPECT_EQ(overlay(), nullptr);
    fakemac::releaseLeftButton();
    drain();

    EXPECT_EQ(frameOf(window), (Rect{-100, 90, 500, 400}));
}

TEST_F(MacApplicationDragTest, ClosingTheDraggedWindowHidesTheZones) {
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});
    ASSERT_NE(overlay(), nullptr);

    fakemac::closeWindow(window);

    EXPECT_EQ(overlay(), nullptr);
}

TEST_F(MacApplicationDragTest, WithoutACloseNotificationTheReleaseHidesTheZones) {
    fakemac::mac().windows.at(window).tellsItsEnd = false;
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});
    ASSERT_NE(overlay(), nullptr);

    fakemac::closeWindow(window);
    fakemac::releaseLeftButton();

    EXPECT_EQ(overlay(), nullptr);
    window = openEditorWindow();
    press();
    letFrameBeReadAgain();
    drag({100, 100});
    EXPECT_NE(overlay(), nullptr) << "in the next drag";
}

TEST_F(MacApplicationDragTest, DisplaysMayBeDisconnectedBetweenTwoCallsOfOneMovement) {
    const auto displays = fakemac::mac().displays;
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});
    ASSERT_NE(overlay(), nullptr);

    fakemac::mac().nextDisplays.emplace();
    drag({600, 100});
    drag({601, 100});
    EXPECT_EQ(overlay(), nullptr);

    fakemac::mac().displays = displays;
    drag({602, 100});
    EXPECT_NE(overlay(), nullptr);
}

TEST_F(MacApplicationDragTest, DisplaysMayBeDisconnectedBeforeTheOverlayIsPlaced) {
    const auto displays = fakemac::mac().displays;
    for (const std::size_t queries : {1U, 2U, 3U}) {
        SCOPED_TRACE(queries);
        fakemac::holdModifiers(kShiftFlag);
        fakemac::mac().windows.at(window).axFrame = kWindow;
        press();
        fakemac::mac().displayChanges.assign(queries, displays);
        fakemac::mac().displayChanges.emplace_back();

        letFrameBeReadAgain();
        drag({100, 100});
        fakemac::mac().displayChanges.clear();
        fakemac::mac().displays.clear();
        drag({101, 100});
        EXPECT_EQ(overlay(), nullptr);

        fakemac::mac().displays = displays;
        drag({102, 100});
        ASSERT_NE(overlay(), nullptr);
        EXPECT_EQ(overlay()->geometry(), QRect(0, 0, 1440, 900));
        fakemac::holdModifiers(0); // the window stays where it is dropped
        fakemac::releaseLeftButton();
    }
}

TEST_F(MacApplicationDragTest, TheProgramMayExitDuringADrag) {
    fakemac::holdModifiers(kShiftFlag);
    press();
    drag({100, 100});

    program.reset();

    EXPECT_EQ(overlay(), nullptr);
    EXPECT_EQ(fakemac::globalMonitors(), 0U);
}

} // namespace
} // namespace tessarel
