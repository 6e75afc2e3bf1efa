// SPDX-License-Identifier: MIT

#include "engine/ax.h"

#include "engine/engine_test.h"

#include <limits>

namespace tessarel {
namespace {

class AXTest : public EngineTest {
protected:
    AXTest() { addScreens(); }

    sim::SimApplication& editor() { return desktop.applicationOf(window); }
    [[nodiscard]] ProcessId pid() { return desktop.window(window).pid; }
    [[nodiscard]] Element element() { return desktop.element(window); }
    /// Makes reads of the window's `attribute` return `value`, or fail when it is empty.
    void say(std::string_view attribute, std::optional<AttributeValue> value) {
        desktop.window(window).overrides.insert_or_assign(std::string(attribute), std::move(value));
    }

    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
};

TEST_F(AXTest, ReadsReturnTheValueInItsOwnType) {
    say("point", Point{1, 2});
    say("size", Size{3, 4});
    say("string", "text");
    say("element", element());

    EXPECT_EQ(ax.point(element(), "point"), (Point{1, 2}));
    EXPECT_EQ(ax.size(element(), "size"), (Size{3, 4}));
    EXPECT_EQ(ax.string(element(), "string"), "text");
    EXPECT_EQ(ax.key(ax.element(element(), "element").value()), ax.key(element()));
    EXPECT_TRUE(ax.copy(element(), "point"));
}

TEST_F(AXTest, ReadsOfAnotherTypeAreEmpty) {
    say("point", Point{1, 2});
    say("text", "text");

    EXPECT_FALSE(ax.size(element(), "point"));
    EXPECT_FALSE(ax.string(element(), "point"));
    EXPECT_FALSE(ax.element(element(), "text"));
    EXPECT_FALSE(ax.point(element(), "text"));
    EXPECT_FALSE(ax.boolean(element(), "text"));
}

TEST_F(AXTest, ReadsOfAMissingAttributeAreEmpty) {
    EXPECT_FALSE(ax.copy(element(), "AXNoSuchThing"));
    EXPECT_FALSE(ax.point(element(), "AXNoSuchThing"));
    EXPECT_FALSE(ax.boolean(element(), "AXNoSuchThing"));
}

TEST_F(AXTest, ANumberIsReadAsABoolean) {
    say("one", 1.0);
    say("half", 0.5);
    say("zero", 0.0);
    say("yes", true);

    EXPECT_EQ(ax.boolean(element(), "one"), true);
    EXPECT_EQ(ax.boolean(element(), "half"), true);
    EXPECT_EQ(ax.boolean(element(), "zero"), false);
    EXPECT_EQ(ax.boolean(element(), "yes"), true);
}

TEST_F(AXTest, FrameReadsThePositionThenTheSize) {
    EXPECT_EQ(ax.frame(element()), kStart);
    EXPECT_EQ(desktop.takeRequests(),
              (Lines{"read " + name(window) + " AXPosition", "read " + name(window) + " AXSize"}));
}

TEST_F(AXTest, AWindowWithoutAReadablePositionOrSizeHasNoFrame) {
    say("AXSize", std::nullopt);
    EXPECT_FALSE(ax.frame(element()));

    desktop.window(window).overrides.clear();
    say("AXPosition", std::nullopt);
    EXPECT_FALSE(ax.frame(element()));
}

TEST_F(AXTest, WindowsKeepTheOrderOfTheApplication) {
    const auto second = desktop.openWindow("org.example.editor", {300, 250, 640, 480});
    desktop.openWindow("org.example.mail", {0, 30, 640, 480});

    const auto windows = ax.windows(pid());

    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(ax.key(windows[0]), ax.key(desktop.element(second)));
    EXPECT_EQ(ax.key(windows[1]), ax.key(element()));
}

TEST_F(AXTest, AProcessWithoutAReadableWindowListHasNoWindows) {
    EXPECT_TRUE(ax.windows(1).empty());

    editor().overrides["AXWindows"] = "nonsense";
    EXPECT_TRUE(ax.windows(pid()).empty());

    editor().overrides["AXWindows"] = std::nullopt;
    EXPECT_TRUE(ax.windows(pid()).empty());
}

TEST_F(AXTest, TheFocusedWindowBelongsToTheFrontmostApplication) {
    const auto other = desktop.openWindow("org.example.mail", {0, 30, 640, 480});
    desktop.focus(window);

    const auto focused = ax.focusedWindow();

    ASSERT_TRUE(focused);
    EXPECT_EQ(ax.key(focused->window), ax.key(element()));
    EXPECT_NE(ax.key(focused->window), ax.key(desktop.element(other)));
    EXPECT_EQ(focused->app, (RunningApplication{pid(), "org.example.editor"}));
}

TEST_F(AXTest, NothingIsFocusedWhenNoApplicationIsInFront) {
    desktop.deactivateAll();

    EXPECT_FALSE(ax.focusedWindow());
    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(AXTest, NothingIsFocusedWhenTheFrontmostApplicationHasNoWindow) {
    desktop.close(window);

    EXPECT_FALSE(ax.focusedWindow());
}

TEST_F(AXTest, ThisProgramsOwnWindowsAreNeverFocused) {
    desktop.openOwnWindow({100, 100, 820, 540});

    EXPECT_FALSE(ax.focusedWindow());
    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(AXTest, AnOrdinaryWindowIsUsable) {
    EXPECT_TRUE(ax.isUsable(element()));
    EXPECT_EQ(desktop.takeRequests(),
              (Lines{"read " + name(window) + " AXRole", "read " + name(window) + " AXMinimized",
                     "read " + name(window) + " AXFullScreen"}));
}

TEST_F(AXTest, AWindowWithoutARoleIsUsableUnlessMinimizedOrFullScreen) {
    desktop.window(window).role = std::nullopt;
    EXPECT_TRUE(ax.isUsable(element()));

    desktop.window(window).minimized = true;
    EXPECT_FALSE(ax.isUsable(element()));

    desktop.window(window).minimized = false;
    desktop.window(window).fullScreen = true;
    EXPECT_FALSE(ax.isUsable(element()));
}

TEST_F(AXTest, AnElementThatIsNotAWindowIsNotUsable) {
    desktop.window(window).role = "AXUnknown";
    EXPECT_FALSE(ax.isUsable(element()));

    desktop.window(window).role = "";
    EXPECT_FALSE(ax.isUsable(element()));
}

TEST_F(AXTest, AWindowWithUnreadableTraitsIsUsable) {
    for (const auto* attribute : {"AXRole", "AXMinimized", "AXFullScreen"})
        say(attribute, std::nullopt);

    EXPECT_TRUE(ax.isUsable(element()));
}

TEST_F(AXTest, DialogsAndPanelsAreUsable) {
    desktop.window(window).subrole = "AXDialog";
    EXPECT_TRUE(ax.isUsable(element()));

    desktop.window(window).subrole = std::nullopt;
    EXPECT_TRUE(ax.isUsable(element()));
}

class AXSetFrameTest : public AXTest {
protected:
    /// The right third and the bottom half of the usable area.
    static constexpr Rect kRightThird{-533, -575, 433, 820};
    static constexpr Rect kBottomHalf{-1400, -165, 1300, 410};

    void setFrame(const Rect& axFrame, const std::optional<Rect>& bounds = kUsable) {
        ax.setFrame(element(), pid(), axFrame, bounds);
    }
};

TEST_F(AXSetFrameTest, SizePositionAndSizeAreWrittenInThisOrder) {
    setFrame({725, 33, 707, 859}, std::nullopt);

    const std::string app = "application " + std::to_string(pid());
    EXPECT_EQ(
        desktop.takeRequests(),
        (Lines{"read " + app + " AXEnhancedUserInterface", "write " + name(window) + " AXSize 707x859",
               "write " + name(window) + " AXPosition 725,33", "write " + name(window) + " AXSize 707x859"}));
    EXPECT_EQ(desktop.frame(window), (Rect{725, 33, 707, 859}));
}

TEST_F(AXSetFrameTest, WithBoundsTheWindowIsReadBack) {
    setFrame(kRight);

    const auto requests = desktop.takeRequests();
    ASSERT_EQ(requests.size(), 6U);
    EXPECT_EQ(requests[4], "read " + name(window) + " AXPosition");
    EXPECT_EQ(requests[5], "read " + name(window) + " AXSize");
}

TEST_F(AXSetFrameTest, TheSecondSizeWriteCorrectsAFirstOneClippedAtTheOldPosition) {
    desktop.window(window).cutAtDisplayEdge = true;
    desktop.drag(window, at({1000, 150, 400, 480}));

    setFrame(kPrimaryUsable, std::nullopt);

    EXPECT_EQ(desktop.frame(window), kPrimaryUsable);
}

TEST_F(AXSetFrameTest, AFrameThatCannotBeExpressedIsNotWritten) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

    for (const Rect& bad : {Rect{kInfinity, kInfinity, 40, 40}, Rect{0, -kInfinity, 40, 40},
                            Rect{10, 30, kInfinity, 40}, Rect{10, 30, 40, kNotANumber}})
        setFrame(bad);

    EXPECT_TRUE(desktop.takeWrites().empty());
    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AXSetFrameTest, AWindowThatStaysTooWideEndsAtTheRightEdge) {
    desktop.window(window).minimum = {900, 1};

    setFrame(kRightThird);

    EXPECT_EQ(desktop.frame(window), (Rect{-1000, -575, 900, 820}));
    EXPECT_EQ(desktop.takeWrites().back(), "write " + name(window) + " AXPosition -1000,-575");
}

TEST_F(AXSetFrameTest, AWindowThatStaysTooTallEndsAtTheBottomEdge) {
    desktop.window(window).minimum = {1, 600};

    setFrame(kBottomHalf);

    EXPECT_EQ(desktop.frame(window), (Rect{-1400, -355, 1300, 600}));
}

TEST_F(AXSetFrameTest, AWindowTooLargeBothWaysIsPulledBackByOneWrite) {
    desktop.window(window).minimum = {900, 600};

    setFrame({-533, -165, 433, 410});

    EXPECT_EQ(desktop.frame(window), (Rect{-1000, -355, 900, 600}));
    EXPECT_EQ(desktop.takeWrites().size(), 4U);
}

TEST_F(AXSetFrameTest, AWindowLargerThanTheBoundsStartsAtTheirLeftAndTopEdge) {
    desktop.window(window).minimum = {1600, 1000};

    setFrame({-533, -165, 433, 410});

    EXPECT_EQ(desktop.frame(window), (Rect{-1400, -575, 1600, 1000}));
}

TEST_F(AXSetFrameTest, AnOvershootOfOnePointIsLeftAlone) {
    setFrame({-579, -192, 480, 438}); // one point beyond the bottom-right corner of the usable area

    EXPECT_EQ(desktop.frame(window), (Rect{-579, -192, 480, 438}));
    EXPECT_EQ(desktop.takeWrites().size(), 3U);
}

TEST_F(AXSetFrameTest, AnOvershootBeyondOnePointIsPulledBack) {
    setFrame({-578.5, -192.5, 480, 438});
    EXPECT_EQ(desktop.frame(window), (Rect{-580, -192.5, 480, 438})) << "on the right only";

    setFrame({-579.5, -191.5, 480, 438});
    EXPECT_EQ(desktop.frame(window), (Rect{-579.5, -193, 480, 438})) << "at the bottom only";
}

TEST_F(AXSetFrameTest, AWindowThatSticksOutOnTheLeftOrTopIsNotCorrected) {
    setFrame({-1450, -610, 480, 437});

    EXPECT_EQ(desktop.frame(window), (Rect{-1450, -610, 480, 437}));
    EXPECT_EQ(desktop.takeWrites().size(), 3U);
}

TEST_F(AXSetFrameTest, WithoutBoundsNothingIsCorrected) {
    desktop.window(window).minimum = {900, 1};

    setFrame(kRightThird, std::nullopt);

    EXPECT_EQ(desktop.frame(window), (Rect{-533, -575, 900, 820}));
}

TEST_F(AXSetFrameTest, AWindowThatCannotBeReadBackIsNotCorrected) {
    desktop.window(window).minimum = {900, 1};
    say("AXSize", std::nullopt);

    setFrame(kRightThird);

    EXPECT_EQ(desktop.takeWrites().size(), 3U);
}

TEST_F(AXSetFrameTest, TheEnhancedInterfaceIsOffDuringTheWritesAndOnAgain) {
    editor().enhancedInterface = true;
    desktop.window(window).minimum = {900, 1};

    setFrame(kRightThird);

    // With the enhanced interface on, reads would return the old frame and nothing would be pulled back.
    EXPECT_EQ(desktop.frame(window), (Rect{-1000, -575, 900, 820}));
    EXPECT_EQ(editor().enhancedInterface, true);
    const auto writes = desktop.takeWrites();
    const std::string app = "application " + std::to_string(pid());
    EXPECT_EQ(writes.front(), "write " + app + " AXEnhancedUserInterface false");
    EXPECT_EQ(writes.back(), "write " + app + " AXEnhancedUserInterface true");
}

TEST_F(AXSetFrameTest, AnEnhancedInterfaceThatIsOffOrUnknownIsNeverWritten) {
    for (const auto state : {std::optional<bool>{}, std::optional<bool>{false}}) {
        editor().enhancedInterface = state;
        setFrame(kLeft);
        EXPECT_EQ(desktop.takeWrites().size(), 3U);
        EXPECT_EQ(editor().enhancedInterface, state);
    }
}

TEST_F(AXSetFrameTest, TheEnhancedInterfaceIsOnAgainEvenWhenNothingIsWritten) {
    editor().enhancedInterface = true;

    setFrame(Rect::null());

    EXPECT_EQ(editor().enhancedInterface, true);
    EXPECT_EQ(desktop.takeWrites().size(), 2U);
}

TEST_F(AXSetFrameTest, AnApplicationThatEndsAtAnyPointIsLeftAlone) {
    const ProcessId editorPid = pid();
    const Element gone = element();
    for (int requests = 0; requests < 7; ++requests) {
        const ProcessId dying = desktop.launch({.requestsUntilDeath = requests});
        const auto victim = desktop.openWindow(dying, {.axFrame = kStart, .minimum = {900, 1}});
        const Element victimElement = desktop.element(victim);

        ax.setFrame(victimElement, dying, kRightThird, kUsable);

        EXPECT_FALSE(ax.frame(victimElement)) << requests;
    }
    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_EQ(desktop.accessibility().pid(gone), editorPid);
}

} // namespace
} // namespace tessarel
