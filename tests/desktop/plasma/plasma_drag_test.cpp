// SPDX-License-Identifier: MIT

#include "support/plasma/plasma_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <vector>

namespace tessarel::plasmatest {
namespace {

constexpr Rect kFirstZone{0, 0, 533, 450}; // of the zones on the first display
constexpr Rect kThird{1067, 0, 533, 450};
constexpr Rect kFourth{800, 450, 800, 450};
constexpr Rect kLeftHalf{0, 0, 800, 900};
constexpr Rect kRightHalf{800, 0, 800, 900};
constexpr Rect kMiddleTile{400, 0, 800, 900}; // of the compositor's own, unless the user arranges them
constexpr Rect kInMiddleTile{404, 4, 792, 892};
constexpr double kPressBelowTop = 10;

constexpr const char* kAlwaysShown = R"({"hasOnboarded":true,"rememberApps":false,"dragTrigger":"always"})";

constexpr const char* kShownWithShift = R"({"hasOnboarded":true,"rememberApps":false,"dragTrigger":"shift"})";

constexpr const char* kShownWithControl =
    R"({"hasOnboarded":true,"rememberApps":false,"dragTrigger":"control"})";

class PlasmaDragTest : public testing::Test {
protected:
    explicit PlasmaDragTest(Drawing drawing = Drawing::Software, const char* settings = kAlwaysShown,
                            const Size& minimum = {})
        : session(drawing), m_settings(settings), m_minimum(minimum) {}

    void SetUp() override {
        session.writeSettings(m_settings);
        ASSERT_TRUE(session.startProgram()) << session.program().errors();
        session.openEditor(m_minimum);
    }

    /// Presses the title bar and moves the pointer to a place in small steps.
    void dragTo(double x, double y) {
        const Rect before = session.frame(kEditor).value_or(Rect::null());
        dragFrom({before.midX(), before.minY() + kPressBelowTop}, x, y);
    }

    void dragFrom(const Point& press, double x, double y) {
        session.input().moveTo(press.x, press.y);
        session.input().setLeftButton(true);
        constexpr int kSteps = 10;
        for (int step = 1; step <= kSteps; ++step)
            session.input().moveTo(press.x + (x - press.x) * step / kSteps,
                                   press.y + (y - press.y) * step / kSteps);
    }

    /// Drags the window and cancels it with Escape, while its program does not respond.
    void cancelWhileTheProgramIsLate() {
        const Rect before = session.frame(kEditor).value_or(Rect::null());
        dragTo(1300, 200);
        ASSERT_TRUE(session.probe().waitUntil([&] {
            const auto frame = session.frame(kEditor);
            return isOverlayOn(PlasmaSession::kFirst) && frame && frame->size() != before.size();
        }));
        session.editor().process().signal(SIGSTOP);
        session.input().press({key::kEscape});
        EXPECT_TRUE(session.probe().waitUntil([&] { return !isOverlayOn(PlasmaSession::kFirst); }));
        session.input().setLeftButton(false);
        session.editor().process().signal(SIGCONT);
    }

    void maximise() {
        session.probe().run("workspace.slotWindowMaximize();");
        ASSERT_EQ(session.settledFrame(kEditor, PlasmaSession::kFirst), PlasmaSession::kFirst);
    }

    void tileLeft() {
        session.probe().run("workspace.slotWindowQuickTileLeft();");
        ASSERT_EQ(session.settledFrame(kEditor, kLeftHalf), kLeftHalf);
    }

    /// Drags the window into one of the compositor's own tiles, while no zones are shown.
    void dropIntoMiddleTile() {
        dragTo(1000, 600);
        session.input().setKey(key::kLeftShift, true);
        session.input().setLeftButton(false);
        session.input().setKey(key::kLeftShift, false);
        ASSERT_EQ(session.settledFrame(kEditor, kInMiddleTile), kInMiddleTile);
    }

    /// Drags the window and drops it.
    void dropAt(double x, double y) {
        dragTo(x, y);
        ASSERT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));
        session.input().setLeftButton(false);
    }

    /// Returns the frames that the editor has from now on until it has the frame `last`.
    std::vector<Rect> framesUntil(const Rect& last) {
        std::vector<Rect> frames;
        (void)session.probe().waitUntil([&] {
            const Rect frame = session.frame(kEditor).value_or(Rect::null());
            if (frames.empty() || frames.back() != frame)
                frames.push_back(frame);
            return frame == last;
        });
        return frames;
    }

    /// Moves the editor into the right and then into the left half of its display with hot keys, which takes
    /// longer than anything that the program does for an earlier drop. Returns the frames that it has
    /// meanwhile.
    std::vector<Rect> framesDuringTwoHotKeys() {
        session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
        std::vector<Rect> frames = framesUntil(kRightHalf);
        session.input().press({key::kLeftControl, key::kLeftAlt, key::kLeft});
        std::ranges::copy(framesUntil(kLeftHalf), std::back_inserter(frames));
        return frames;
    }

    /// Moves the editor into the right half of its display with a hot key, for which the program waits longer
    /// than for the placement after an earlier drop: the editor is late. Returns the frames that it has
    /// meanwhile.
    std::vector<Rect> framesDuringALateHotKey() {
        session.editor().process().signal(SIGSTOP);
        session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
        for (int placement = 0; placement < 2; ++placement) // the drop's would be the second
            EXPECT_EQ(session.command({"list", "displays"}), 0);
        session.editor().process().signal(SIGCONT);
        return framesUntil(kRightHalf);
    }

    /// Returns whether the program shows an overlay over the whole display.
    bool isOverlayOn(const Rect& display) {
        const auto& windows = session.probe().windows();
        return std::any_of(windows.begin(), windows.end(), [&](const SeenWindow& window) {
            return window.pid == session.program().pid() && window.frame == display;
        });
    }

    PlasmaSession session;

private:
    const char* m_settings;
    Size m_minimum; ///< of the editor
};

/// The editor is wider than a half of the display.
class PlasmaWideDragTest : public PlasmaDragTest {
protected:
    PlasmaWideDragTest() : PlasmaDragTest(Drawing::Software, kAlwaysShown, {900, 0}) {}
};

/// KWin draws without OpenGL, so it has no effects.
class PlasmaUnseenShiftDragTest : public PlasmaDragTest {
protected:
    PlasmaUnseenShiftDragTest() : PlasmaDragTest(Drawing::Software, kShownWithShift) {}
};

class PlasmaShiftDragTest : public PlasmaDragTest {
protected:
    PlasmaShiftDragTest() : PlasmaDragTest(Drawing::OpenGl, kShownWithShift) {}
};

class PlasmaControlDragTest : public PlasmaDragTest {
protected:
    PlasmaControlDragTest() : PlasmaDragTest(Drawing::OpenGl, kShownWithControl) {}
};

TEST_F(PlasmaDragTest, AWindowDraggedIntoAZoneTakesItsFrameAndTheZonesAreShownMeanwhile) {
    dragTo(1300, 200);
    EXPECT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));

    session.input().setLeftButton(false);

    EXPECT_EQ(session.settledFrame(kEditor, kThird), kThird);
    EXPECT_TRUE(session.probe().waitUntil([&] { return !isOverlayOn(PlasmaSession::kFirst); }));
    EXPECT_TRUE(session.program().running());
}

TEST_F(PlasmaDragTest, TheEndOfAMoveIsNotTakenForThatOfTheNextThoughTheBusIsSlow) {
    dragTo(1300, 200);
    ASSERT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));

    session.bus().signal(SIGSTOP);
    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftMeta, true); // another press of the title bar would be a double click
    dragFrom({1300, 400}, 300, 700);
    session.bus().signal(SIGCONT);

    EXPECT_EQ(session.settledFrame(kEditor, kThird), kThird);
    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftMeta, false);
}

TEST_F(PlasmaDragTest, TheZonesOfTheDisplayWithThePointerAreShown) {
    dragTo(1600 + 300, 700);
    EXPECT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kSecond); }));

    session.input().setLeftButton(false);

    const Rect fourth{1600, 450, 800, 450};
    EXPECT_EQ(session.settledFrame(kEditor, fourth), fourth);
}

TEST_F(PlasmaDragTest, AWindowDraggedWithMetaTakesItsZoneThoughAnotherOneIsInFrontOfItsTitleBar) {
    constexpr const char* kCover = "org.example.cover";
    const Rect start = session.frame(kEditor).value_or(Rect::null());
    const Rect top{start.x, start.y, start.width, 200};
    WaylandClient client(session.environment());
    client.open(2, {.applicationId = kCover, .size = top.size()});
    ASSERT_TRUE(session.probe().waitUntil([&] { return session.frame(kCover).has_value(); }));
    session.probe().run(R"(
        const [editor, cover] = ["org.example.editor", "org.example.cover"].map((name) =>
            workspace.clientList().find((window) => window.resourceClass == name));
        cover.keepAbove = true;
        cover.frameGeometry = { x: editor.x, y: editor.y, width: editor.width, height: 200 };
        workspace.activeClient = editor;)");
    ASSERT_EQ(session.settledFrame(kCover, top), top);

    session.input().setKey(key::kLeftMeta, true);
    dragFrom({start.midX(), start.maxY() - 50}, 1300, 600);
    EXPECT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));
    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftMeta, false);

    EXPECT_EQ(session.settledFrame(kEditor, kFourth), kFourth);
    EXPECT_EQ(session.frame(kCover), top);
}

TEST_F(PlasmaDragTest, AWindowDraggedByAFingerStaysWhereItIsDroppedAndNoZonesAreShown) {
    const Rect start = session.frame(kEditor).value_or(Rect::null());
    const Rect dropped{start.x - 100, start.y + 200, start.width, start.height};
    session.input().moveTo(1300, 200);

    session.input().touch(start.midX(), start.minY() + kPressBelowTop);
    constexpr int kSteps = 10;
    for (int step = 1; step <= kSteps; ++step)
        session.input().moveTouchTo(start.midX() - 10. * step, start.minY() + kPressBelowTop + 20. * step);
    ASSERT_EQ(session.settledFrame(kEditor, dropped), dropped);
    EXPECT_EQ(session.command({"list", "displays"}), 0);
    session.probe().roundTrip();
    EXPECT_FALSE(isOverlayOn(PlasmaSession::kFirst));
    session.input().endTouch();

    EXPECT_THAT(framesDuringALateHotKey(), testing::Not(testing::Contains(kThird)));
}

TEST_F(PlasmaDragTest, AWindowDraggedByASingleMovementTakesItsZone) {
    const Rect start = session.frame(kEditor).value_or(Rect::null());
    session.input().moveTo(start.midX(), start.minY() + kPressBelowTop);
    session.input().setLeftButton(true);
    session.input().moveTo(1300, 200);

    session.input().setLeftButton(false);

    EXPECT_EQ(session.settledFrame(kEditor, kThird), kThird);
}

TEST_F(PlasmaDragTest, EscapeHidesTheZonesAndTheReleaseLeavesTheWindowWhereItWas) {
    const Rect before = session.frame(kEditor).value_or(Rect::null());
    dragTo(1300, 200);
    ASSERT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));

    session.input().press({key::kEscape});
    EXPECT_TRUE(session.probe().waitUntil([&] { return !isOverlayOn(PlasmaSession::kFirst); }));
    session.input().setLeftButton(false);

    EXPECT_EQ(session.settledFrame(kEditor, before), before);
    EXPECT_THAT(framesDuringTwoHotKeys(), testing::Not(testing::Contains(kThird)));
}

TEST_F(PlasmaDragTest, EscapeMakesAMaximisedWindowSoAgainThoughItsProgramIsLate) {
    maximise();

    cancelWhileTheProgramIsLate();

    EXPECT_EQ(session.settledFrame(kEditor, PlasmaSession::kFirst), PlasmaSession::kFirst);
    EXPECT_THAT(framesDuringALateHotKey(), testing::Not(testing::Contains(kThird)));
}

TEST_F(PlasmaDragTest, EscapeTakesATiledWindowBackIntoItsTileThoughItsProgramIsLate) {
    tileLeft();

    cancelWhileTheProgramIsLate();

    EXPECT_EQ(session.settledFrame(kEditor, kLeftHalf), kLeftHalf);
    EXPECT_THAT(framesDuringALateHotKey(), testing::Not(testing::Contains(kThird)));
}

TEST_F(PlasmaWideDragTest, EscapeTakesAWindowThatDoesNotFitIntoItsTileBackThoughItsProgramIsLate) {
    const Rect tooWide{0, 0, 900, 900};
    session.probe().run("workspace.slotWindowQuickTileLeft();");
    ASSERT_EQ(session.settledFrame(kEditor, tooWide), tooWide);

    cancelWhileTheProgramIsLate();

    EXPECT_EQ(session.settledFrame(kEditor, tooWide), tooWide);
}

TEST_F(PlasmaDragTest, AMaximisedWindowTakesItsZoneAlsoAtTheEdgeWhereTheCompositorMaximisesIt) {
    maximise();
    dropAt(1300, 200);
    EXPECT_EQ(session.settledFrame(kEditor, kThird), kThird);

    maximise();
    dropAt(200, 1);
    EXPECT_EQ(session.settledFrame(kEditor, kFirstZone), kFirstZone);
}

TEST_F(PlasmaDragTest, ATiledWindowTakesItsZoneAlsoAtTheEdgeWhereTheCompositorTilesIt) {
    tileLeft();
    dropAt(1300, 200);
    EXPECT_EQ(session.settledFrame(kEditor, kThird), kThird);

    tileLeft();
    dropAt(3, 400);
    EXPECT_EQ(session.settledFrame(kEditor, kFirstZone), kFirstZone);
}

TEST_F(PlasmaUnseenShiftDragTest, ADragThatWaitsForAKeyShowsNoZonesWithoutEffectsAndHotKeysWork) {
    dragTo(1300, 200);
    session.input().setKey(key::kLeftShift, true);
    session.input().moveTo(1290, 210);

    session.input().setKey(key::kLeftShift, false);
    session.input().setLeftButton(false);

    EXPECT_THAT(framesDuringTwoHotKeys(), testing::Not(testing::Contains(kThird)));
    EXPECT_FALSE(isOverlayOn(PlasmaSession::kFirst));
    EXPECT_EQ(session.endProgram(), 0);
}

TEST_F(PlasmaShiftDragTest, AWindowDroppedWithShiftGoesIntoTheZoneAtOnceInsteadOfATileOfTheCompositor) {
    const Rect start = session.frame(kEditor).value_or(Rect::null());
    const Rect dropped{1300 - start.width / 2, 200 - kPressBelowTop, start.width, start.height};
    session.input().setKey(key::kLeftShift, true);
    dragTo(1300, 200);
    ASSERT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));
    ASSERT_EQ(session.settledFrame(kEditor, dropped), dropped);

    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftShift, false);

    // The editor may take its width and its height one after the other, but only in one place.
    for (const Rect& frame : framesUntil(kThird))
        EXPECT_TRUE(frame == dropped || frame.origin() == kThird.origin());
    EXPECT_EQ(framesDuringTwoHotKeys().front(), kThird);
}

TEST_F(PlasmaShiftDragTest, AWindowDroppedWithShiftKeepsItsSizeInTheNextDrag) {
    session.input().setKey(key::kLeftShift, true);
    dragTo(1300, 700);
    ASSERT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));
    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftShift, false);
    ASSERT_EQ(session.settledFrame(kEditor, kFourth), kFourth);

    dragTo(900, 300);
    session.input().setLeftButton(false);

    const Rect dropped{500, 300 - kPressBelowTop, kFourth.width, kFourth.height};
    EXPECT_EQ(session.settledFrame(kEditor, dropped), dropped);
}

TEST_F(PlasmaShiftDragTest, AWindowThatLiesWhereTheCompositorHasATileTakesItsZoneThere) {
    session.probe().run(R"(
        const editor = workspace.clientList().find((window) => window.resourceClass == "org.example.editor");
        editor.frameGeometry = { x: 400, y: 0, width: 800, height: 900 };)");
    ASSERT_EQ(session.settledFrame(kEditor, kMiddleTile), kMiddleTile);

    session.input().setKey(key::kLeftShift, true);
    dropAt(1000, 600);
    session.input().setKey(key::kLeftShift, false);

    EXPECT_EQ(session.settledFrame(kEditor, kFourth), kFourth);
}

TEST_F(PlasmaShiftDragTest, EscapeEndsADragWithShiftWithoutAZone) {
    session.input().setKey(key::kLeftShift, true);
    dragTo(1300, 200);
    ASSERT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));

    session.input().press({key::kEscape});
    EXPECT_TRUE(session.probe().waitUntil([&] { return !isOverlayOn(PlasmaSession::kFirst); }));
    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftShift, false);

    EXPECT_THAT(framesDuringTwoHotKeys(), testing::Not(testing::Contains(kThird)));
}

TEST_F(PlasmaControlDragTest, TheZonesFollowControlWhileThePointerRestsAndTheReleaseDecides) {
    const auto showsZones = [this] { return isOverlayOn(PlasmaSession::kFirst); };
    dragTo(1300, 200);
    session.input().setKey(key::kLeftControl, true);
    session.input().moveTo(1301, 200); // KWin tells effects about the first key with a movement
    ASSERT_TRUE(session.probe().waitUntil(showsZones));

    session.input().setKey(key::kLeftControl, false);
    EXPECT_TRUE(session.probe().waitUntil([&] { return !showsZones(); }));
    session.input().setKey(key::kLeftControl, true);
    EXPECT_TRUE(session.probe().waitUntil(showsZones));
    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftControl, false);
    EXPECT_EQ(session.settledFrame(kEditor, kThird), kThird);

    dragTo(1300, 700);
    session.input().setKey(key::kLeftControl, true); // seen with the release
    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftControl, false);
    EXPECT_EQ(session.settledFrame(kEditor, kFourth), kFourth);
    EXPECT_EQ(session.endProgram(), 0);
}

TEST_F(PlasmaControlDragTest, TheZonesStillAppearAfterAGraphicsResetForWhichTheCompositorDropsItsEffects) {
    ASSERT_TRUE(session.resetGraphics());

    dragTo(1300, 200);
    session.input().setKey(key::kLeftControl, true);
    session.input().moveTo(1301, 200);
    EXPECT_TRUE(session.probe().waitUntil([&] { return isOverlayOn(PlasmaSession::kFirst); }));
    session.input().setLeftButton(false);
    session.input().setKey(key::kLeftControl, false);

    EXPECT_EQ(session.settledFrame(kEditor, kThird), kThird);
    EXPECT_EQ(session.endProgram(), 0);
}

TEST_F(PlasmaControlDragTest, EscapeTakesAWindowBackIntoOneOfTheCompositorsOwnTiles) {
    dropIntoMiddleTile();

    session.input().setKey(key::kLeftControl, true);
    cancelWhileTheProgramIsLate();
    session.input().setKey(key::kLeftControl, false);

    EXPECT_EQ(session.settledFrame(kEditor, kInMiddleTile), kInMiddleTile);
    EXPECT_THAT(framesDuringALateHotKey(), testing::Not(testing::Contains(kThird)));
}

TEST_F(PlasmaControlDragTest, AWindowDroppedWithShiftOverItsOwnTileTakesItsZone) {
    dropIntoMiddleTile();

    session.input().setKey(key::kLeftControl, true);
    session.input().setKey(key::kLeftShift, true);
    dropAt(1000, 600);
    session.input().setKey(key::kLeftShift, false);
    session.input().setKey(key::kLeftControl, false);

    EXPECT_EQ(session.settledFrame(kEditor, kFourth), kFourth);
}

} // namespace
} // namespace tessarel::plasmatest
