// SPDX-License-Identifier: MIT

#include "desktop/plasma/windows_fixture.h"

#include <algorithm>
#include <string>

namespace tessarel::plasmatest {
namespace {

constexpr int kNothingDone = 4;                  // exit code
constexpr Rect kLeftBelowPanel{0, 40, 800, 860}; // one of 40 pixels
constexpr Rect kBottomHalf{0, 450, 1600, 450};

/// New windows go to the zones of their programs.
class PlasmaHomesTest : public PlasmaWindowsTest {
protected:
    PlasmaHomesTest() : PlasmaWindowsTest(PlasmaSession::kFirst.size(), R"({"hasOnboarded":true})") {}
};

TEST_F(PlasmaHomesTest, TheNextWindowOfAProgramGoesIntoItsZoneAndADialogStaysWhereItOpens) {
    constexpr Rect kThird{1067, 0, 533, 450};
    WaylandClient client(session.environment());
    open(client, 1);
    pressZone(3);
    ASSERT_TRUE(comesTo(1, kThird));

    open(client, 2, {.applicationId = "org.example.test", .parent = 1});
    const Rect opened = session.probe().windows().back().frame;
    open(client, 3); // in its zone later than the dialog would be

    EXPECT_TRUE(comesTo(3, kThird));
    EXPECT_TRUE(comesTo(2, opened));
    EXPECT_NE(opened, kThird);
}

TEST_F(PlasmaWindowsTest, AGtkWindowTakesItsZoneExactly) {
    session.open({"gtk4-demo"}, "org.gtk.Demo4");

    pressArrow(key::kLeft);

    EXPECT_EQ(session.settledFrame("org.gtk.Demo4", kLeftHalf), kLeftHalf);
}

TEST_F(PlasmaWindowsTest, AWindowThatNeverSettlesHoldsUpNoOther) {
    WaylandClient stalled(session.environment());
    open(stalled, 1);
    WaylandClient client(session.environment());
    open(client, 2);
    stalled.stall();
    activate(1);
    for (int press = 0; press < 3; ++press)
        pressArrow(press % 2 == 0 ? key::kLeft : key::kRight);

    activate(2);
    pressArrow(key::kLeft);
    EXPECT_TRUE(comesTo(2, kLeftHalf));
    pressArrow(key::kRight);
    EXPECT_TRUE(comesTo(2, kRightHalf));

    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
}

TEST_F(PlasmaWindowsTest, AWindowThatRefusesSizesTakesEveryKey) {
    WaylandClient client(session.environment());
    open(client, 1, {1000, 900});
    pressArrow(key::kLeft);
    ASSERT_TRUE(comesTo(1, {0, 0, 1000, 900}));

    // Neither changes the frame: the size has been refused before, and the next one is refused, too.
    pressArrow(key::kLeft);
    session.input().press({key::kLeftControl, key::kLeftAlt, key::kDigit1});
    pressArrow(key::kRight);

    EXPECT_TRUE(comesTo(1, {600, 0, 1000, 900}));
}

TEST_F(PlasmaWindowsTest, AWindowAtItsMinimumSizeGoesFromZoneToZoneAndIsRestored) {
    constexpr Size kSize{750, 550};
    constexpr Size kMinimum{700, 500};
    WaylandClient client(session.environment());
    open(client, 1, {.applicationId = kEditor, .isDecorated = true, .size = kSize, .minimum = kMinimum});
    const Rect before = session.frame(kEditor).value_or(Rect::null());
    const Size least{kMinimum.width, kMinimum.height + before.height - kSize.height};

    pressZone(1);
    EXPECT_TRUE(comesTo(1, {0, 0, least.width, least.height}));
    pressZone(3);
    EXPECT_TRUE(comesTo(1, {1600 - least.width, 0, least.width, least.height}));
    pressZone(2);
    EXPECT_TRUE(comesTo(1, {533, 0, least.width, least.height}));

    session.input().press({key::kLeftControl, key::kLeftAlt, kBackspace});
    EXPECT_TRUE(comesTo(1, before));
}

TEST_F(PlasmaWindowsTest, AMaximisedWindowTakesItsZoneThoughItFirstGoesBackToItsOwnSize) {
    WaylandClient client(session.environment());
    open(client, 1);
    runFor(1, "c.setMaximize(true, true);");
    ASSERT_TRUE(comesTo(1, PlasmaSession::kFirst));

    pressArrow(key::kRight);

    EXPECT_TRUE(comesTo(1, kRightHalf));
}

TEST_F(PlasmaWindowsTest, AWindowThatIsTiledWhileItIsPlacedStaysInTheTile) {
    WaylandClient client(session.environment());
    open(client, 1);
    open(client, 2);
    client.stall();
    runFor(1, R"(
        let isNext = true;
        const tile = () => callDBus("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    "GetId", () => workspace.slotWindowQuickTileBottom());
        c.frameGeometryAboutToChange.connect(() => {
            if (isNext)
                tile(); // once it has been placed
            isNext = false;
        });
        workspace.activeClient = c;)");
    ASSERT_TRUE(isActivated(1));

    pressArrow(key::kRight);
    ASSERT_TRUE(waitFor(1, [](const SeenWindow& window) { return window.isTiled; }));
    client.resume();

    expectChainBeginsAt(1, kBottomHalf);
}

TEST_F(PlasmaWindowsTest, ALateWindowThatIsMaximisedByAKeyOfTheDesktopStaysSo) {
    WaylandClient client(session.environment());
    open(client, 1);
    client.stall();

    pressArrow(key::kRight);
    ASSERT_TRUE(passProgram());
    session.input().press({key::kLeftMeta, key::kPageUp});
    session.probe().roundTrip();
    client.resume();

    expectChainBeginsAt(1, PlasmaSession::kFirst);
}

TEST_F(PlasmaWindowsTest, AWindowThatHasNotRespondedToAKeyStaysInATileOfTheDesktop) {
    constexpr Size kSize{800, 450};
    WaylandClient client(session.environment());
    open(client, 1,
         {.applicationId = "org.example.test", .size = kSize, .minimum = kSize, .announcesLimits = false});
    const Rect before = session.frame("org.example.test").value_or(Rect::null());

    pressZone(1); // too narrow: the program keeps its size and shows no new image
    ASSERT_TRUE(passProgram());
    ASSERT_TRUE(comesTo(1, before));
    session.input().press({key::kLeftMeta, key::kDown});

    expectChainBeginsAt(1, kBottomHalf);
}

TEST_F(PlasmaWindowsTest, AllWindowsAreArrangedAndOneThatIsTooWideIsPulledBackOntoTheDisplay) {
    WaylandClient client(session.environment());
    open(client, 1, {700, 500});
    open(client, 2);
    open(client, 3);

    pressArrange();

    EXPECT_TRUE(comesTo(1, {900, 0, 700, 500}));
    EXPECT_TRUE(comesTo(2, {533, 0, 533, 450}));
    EXPECT_TRUE(comesTo(3, kFirstZone));
}

TEST_F(PlasmaWindowsTest, AWindowThatIsTooWideIsPulledBackThoughItsProgramAndTheCompositorAreLate) {
    WaylandClient late(session.environment());
    open(late, 1, {.applicationId = "org.example.late", .minimum = {700, 0}, .announcesLimits = false});
    WaylandClient client(session.environment());
    open(client, 2);
    open(client, 3);
    activateAndHoldUpCompositorOnChange(1);
    activate(2);
    activate(3);
    late.stall();

    pressArrange();
    ASSERT_TRUE(comesTo(2, {533, 0, 533, 450}));
    ASSERT_EQ(session.command({"list", "displays"}), 0); // the program has stopped waiting for the window
    late.resume();

    EXPECT_TRUE(comesTo(1, {900, 0, 700, 450}));
}

TEST_F(PlasmaWindowsTest, AmongTwoHundredWindowsTheFrontOnesAreArrangedAndHotKeysWork) {
    constexpr int kWindows = 200;
    WaylandClient client(session.environment());
    for (int number = 1; number <= kWindows; ++number)
        client.open(number, {.applicationId = "org.example.test"});
    ASSERT_TRUE(session.probe().waitUntil([&] { return session.probe().windows().size() >= kWindows; }));
    activate(1);

    pressArrange();
    const auto isInZone = [](const SeenWindow& window) { return window.frame.height == 450; };
    EXPECT_TRUE(session.probe().waitUntil([&] {
        const auto& all = session.probe().windows();
        return std::count_if(all.begin(), all.end(), isInZone) >= 4;
    }));

    pressArrow(key::kRight);
    EXPECT_TRUE(comesTo(1, kRightHalf));
}

TEST_F(PlasmaWindowsTest, DisplaysMayGoAndComeBack) {
    WaylandClient client(session.environment());
    open(client, 1);
    pressArrow(key::kLeft);
    ASSERT_TRUE(comesTo(1, kLeftHalf));

    pressNextDisplay();
    EXPECT_TRUE(comesTo(1, {1600, 0, 800, 900}));

    session.outputs().setUp(1, {.isEnabled = false});
    ASSERT_TRUE(waitFor(1, [](const SeenWindow& window) { return window.frame.x < 1600; }));
    pressArrow(key::kRight);
    EXPECT_TRUE(comesTo(1, kRightHalf));

    // A new window, because KWin may still take the first one back to where it was.
    session.outputs().setUp(1, {.x = 1600});
    open(client, 2);
    pressArrow(key::kLeft);
    constexpr Rect kLeftOfSecond{1600, 0, 800, 900};
    bool isOnSecond = false;
    ASSERT_TRUE(waitFor(2, [&](const SeenWindow& window) {
        isOnSecond = window.frame == kLeftOfSecond;
        return isOnSecond || window.frame == kLeftHalf;
    }));
    pressNextDisplay();
    EXPECT_TRUE(comesTo(2, isOnSecond ? kLeftHalf : kLeftOfSecond));
}

TEST_F(PlasmaWindowsTest, ZonesUseTheAreaThatAPanelHasGivenBack) {
    WaylandClient client(session.environment());
    open(client, 1);
    {
        WaylandClient panel(session.environment());
        panel.openPanel(40);
        EXPECT_TRUE(PlasmaSession::waitFor([&] { return goesLeftTo(kLeftBelowPanel); }));
    }

    EXPECT_TRUE(PlasmaSession::waitFor([&] { return goesLeftTo(kLeftHalf); }));
}

TEST_F(PlasmaWindowsTest, ZonesUseTheAreaThatAPanelReservesNoMoreWhileItIsThere) {
    WaylandClient client(session.environment());
    client.openPanel(40);
    open(client, 1);
    EXPECT_TRUE(PlasmaSession::waitFor([&] { return goesLeftTo(kLeftBelowPanel); }));
    open(client, 2);
    runFor(2, "c.setMaximize(true, true);");
    ASSERT_TRUE(comesTo(2, {0, 40, 1600, 860}));
    activate(1);

    client.reserve(0);
    ASSERT_TRUE(comesTo(2, PlasmaSession::kFirst)); // KWin knows
    pressArrow(key::kLeft);

    EXPECT_TRUE(comesTo(1, kLeftHalf));
}

TEST_F(PlasmaWindowsTest, ZonesUseTheAreaThatAPanelHasGivenBackBeforeTheFirstWindowOpens) {
    WaylandClient client(session.environment());
    client.openPanel(40);
    open(client, 1);
    EXPECT_TRUE(PlasmaSession::waitFor([&] { return goesLeftTo(kLeftBelowPanel); }));
    client.close(1);
    ASSERT_TRUE(session.probe().waitUntil(
        [&] { return std::ranges::none_of(session.probe().windows(), &SeenWindow::isActive); }));

    client.reserve(0);
    open(client, 2);
    pressArrow(key::kLeft);

    EXPECT_TRUE(comesTo(2, kLeftHalf));
}

TEST_F(PlasmaWindowsTest, DisplaysThatMirrorEachOtherCountAsOne) {
    WaylandClient client(session.environment());
    open(client, 1);

    session.outputs().setUp(1, {.x = 0});

    // Nothing is done, because there is no other display.
    EXPECT_TRUE(PlasmaSession::waitFor([&] { return session.command({"next-display"}) == kNothingDone; }));
}

TEST_F(PlasmaWindowsTest, FramesAreExactWithAnotherPrimaryDisplayAndAfterDisplaysChangedPlaces) {
    WaylandClient client(session.environment());
    open(client, 1);

    session.outputs().setUp(1, {.x = 1600, .isPrimary = true});
    pressArrow(key::kLeft);
    EXPECT_TRUE(comesTo(1, kLeftHalf));
    pressNextDisplay();
    EXPECT_TRUE(comesTo(1, {1600, 0, 800, 900}));

    // The displays change places: the second one is now to the left of the first.
    session.outputs().setUp(0, {.x = 1600});
    session.outputs().setUp(1, {.x = 0, .isPrimary = true});
    activate(1);
    pressArrow(key::kRight);
    ASSERT_TRUE(waitFor(1, [](const SeenWindow& window) {
        return window.frame == kRightHalf || window.frame == Rect{2400, 0, 800, 900};
    }));
}

/// Displays of 1500 x 900 pixels with a scale in percent.
class PlasmaScaleTest : public PlasmaWindowsTest, public testing::WithParamInterface<int> {
protected:
    PlasmaScaleTest() : PlasmaWindowsTest({1500, 900}) {}
};

TEST_P(PlasmaScaleTest, WindowsTakeTheFramesOfZonesExactly) {
    const double scale = GetParam() / 100.0;
    const Size size{1500 / scale, 900 / scale};
    session.outputs().setUp(0, {.scale = scale});
    session.outputs().setUp(1, {.x = static_cast<int>(size.width), .scale = scale});
    WaylandClient client(session.environment());
    open(client, 1);

    pressArrow(key::kRight);
    EXPECT_TRUE(comesTo(1, {size.width / 2, 0, size.width / 2, size.height}));
    pressNextDisplay();
    EXPECT_TRUE(comesTo(1, {size.width * 1.5, 0, size.width / 2, size.height}));
}

INSTANTIATE_TEST_SUITE_P(AtScale, PlasmaScaleTest, testing::Values(125, 150, 200));

} // namespace
} // namespace tessarel::plasmatest
