// SPDX-License-Identifier: MIT

#include "placer/placer_test.h"

#include <cstdint>
#include <limits>

namespace tessarel {
namespace {

class AppPlacerRefusalsTest : public PlacerTest {
protected:
    AppPlacerRefusalsTest() { placer->start(); }

    /// Opens a window and returns whether it has been moved when the delay has passed.
    bool isPlaced(const sim::SimWindow& window = {.axFrame = kStart}) {
        return desktop.frame(openAndWait(editor, window)) != kStart;
    }
};

TEST_F(AppPlacerRefusalsTest, NothingIsScheduledWhenZonesAreNotRemembered) {
    settings.rememberApps = false;
    const auto window = open(editor);
    EXPECT_EQ(desktop.clock().waiting(), 0U);
    settings.rememberApps = true;

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerRefusalsTest, NothingIsScheduledAtALaunchWhenZonesAreNotRemembered) {
    settings.rememberApps = false;
    const auto window =
        open(desktop.launch({.bundleIdentifier = "org.example.editor", .refusesObservers = true}));
    EXPECT_EQ(desktop.clock().waiting(), 0U);
    settings.rememberApps = true;

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerRefusalsTest, AnApplicationThatIsNotRememberedIsLeftAlone) {
    settings.appZones.clear();

    EXPECT_FALSE(isPlaced());
}

TEST_F(AppPlacerRefusalsTest, AnApplicationWithoutAnIdentifierIsLeftAlone) {
    settings.appZones[""] = kRightZone;

    const auto window = openAndWait(desktop.launch({}));

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerRefusalsTest, ADisabledZoneIsNotUsedAndStaysRemembered) {
    settings.appZones["org.example.editor"] = 7;
    settings.zones[7].enabled = false;

    EXPECT_FALSE(isPlaced());
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 7);
}

TEST_F(AppPlacerRefusalsTest, AZoneNumberOutOfRangeIsNotUsedAndStaysRemembered) {
    using Limits = std::numeric_limits<std::int64_t>;
    for (const std::int64_t number : {std::int64_t{9}, std::int64_t{-1}, Limits::min(), Limits::max()}) {
        settings.appZones["org.example.editor"] = number;

        EXPECT_FALSE(isPlaced()) << number;
        EXPECT_EQ(settings.appZones.at("org.example.editor"), number);
    }
}

TEST_F(AppPlacerRefusalsTest, TheLastZoneIsUsed) {
    settings.appZones["org.example.editor"] = 8;
    settings.zones[8] = kWhole;

    EXPECT_TRUE(isPlaced());
}

TEST_F(AppPlacerRefusalsTest, NothingIsPlacedWhilePaused) {
    runtime.paused = true;

    EXPECT_FALSE(isPlaced());
}

TEST_F(AppPlacerRefusalsTest, NothingIsPlacedWithoutAccess) {
    desktop.trust().trusted = false;

    EXPECT_FALSE(isPlaced());
}

TEST_F(AppPlacerRefusalsTest, AnIgnoredApplicationIsNotPlacedEvenIfRemembered) {
    settings.ignoredApps = {"org.example.editor"};

    EXPECT_FALSE(isPlaced());
}

TEST_F(AppPlacerRefusalsTest, OnlyStandardWindowsArePlaced) {
    EXPECT_FALSE(isPlaced({.axFrame = kStart, .subrole = "AXDialog"}));
    EXPECT_FALSE(isPlaced({.axFrame = kStart, .subrole = "AXFloatingWindow"}));
    EXPECT_FALSE(isPlaced({.axFrame = kStart, .subrole = "AXSystemDialog"}));
    EXPECT_TRUE(isPlaced({.axFrame = kStart, .subrole = "AXStandardWindow"}));
}

TEST_F(AppPlacerRefusalsTest, AWindowWithoutASubroleIsPlaced) {
    EXPECT_TRUE(isPlaced({.axFrame = kStart, .subrole = {}}));
}

TEST_F(AppPlacerRefusalsTest, AWindowWhoseSubroleIsNotAStringIsPlaced) {
    EXPECT_TRUE(isPlaced({.axFrame = kStart, .overrides = {{"AXSubrole", 3.0}}}));
}

TEST_F(AppPlacerRefusalsTest, AWindowThatIsNotUsableIsLeftAlone) {
    EXPECT_FALSE(isPlaced({.axFrame = kStart, .minimized = true}));
    EXPECT_FALSE(isPlaced({.axFrame = kStart, .fullScreen = true}));
    EXPECT_FALSE(isPlaced({.axFrame = kStart, .role = "AXUnknown"}));
}

TEST_F(AppPlacerRefusalsTest, AWindowThatCannotBeReadIsLeftAlone) {
    const auto window = open(editor);
    desktop.window(window).overrides = {{"AXPosition", {}}};

    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.takeWrites(), Lines{});
}

TEST_F(AppPlacerRefusalsTest, AnUnreadableWindowMayBePlacedWhenReportedAgain) {
    const auto window = open(editor);
    desktop.window(window).overrides = {{"AXSize", {}}};
    desktop.advance(kWindowDelay);
    desktop.window(window).overrides.clear();

    accessibility.reportCreated(window);
    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(AppPlacerRefusalsTest, AnApplicationMayEndWhileItIsBeingRead) {
    for (int answered = 0; answered < 12; ++answered) {
        const ProcessId pid = desktop.launch({.bundleIdentifier = "org.example.editor"});
        (void)open(pid);
        desktop.application(pid).requestsUntilDeath = answered;

        desktop.advance(kLaunchDelay);

        EXPECT_FALSE(desktop.workspace().runningApplication(pid)) << answered;
    }
    EXPECT_EQ(accessibility.observers(), 1U);
}

/// Fixture: a window that has been reported and whose delay has not passed yet.
class AppPlacerDelayTest : public PlacerTest {
protected:
    Rect frameInTheEnd() {
        desktop.advance(kWindowDelay);
        return desktop.frame(window);
    }

    const sim::WindowId window = (placer->start(), open(editor));
};

TEST_F(AppPlacerDelayTest, AnotherRememberedZoneCancelsThePlacement) {
    settings.appZones["org.example.editor"] = 0;
    EXPECT_EQ(frameInTheEnd(), kStart);
}

TEST_F(AppPlacerDelayTest, ForgettingTheApplicationCancelsThePlacement) {
    settings.appZones.clear();
    EXPECT_EQ(frameInTheEnd(), kStart);
}

TEST_F(AppPlacerDelayTest, TurningRememberingOffCancelsThePlacement) {
    settings.rememberApps = false;
    EXPECT_EQ(frameInTheEnd(), kStart);
}

TEST_F(AppPlacerDelayTest, DisablingTheZoneCancelsThePlacement) {
    settings.zones[kRightZone].enabled = false;
    EXPECT_EQ(frameInTheEnd(), kStart);
}

TEST_F(AppPlacerDelayTest, PausingCancelsThePlacement) {
    runtime.paused = true;
    EXPECT_EQ(frameInTheEnd(), kStart);
}

TEST_F(AppPlacerDelayTest, AWindowThatOpensDuringAPauseIsLeftAloneWhenItEnds) {
    runtime.paused = true;
    const auto opened = open(editor);
    runtime.paused = false;
    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.frame(opened), kStart);
    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(AppPlacerDelayTest, LosingAccessCancelsThePlacement) {
    desktop.trust().trusted = false;
    EXPECT_EQ(frameInTheEnd(), kStart);
}

TEST_F(AppPlacerDelayTest, IgnoringTheApplicationCancelsThePlacement) {
    settings.ignoredApps = {"org.example.editor"};
    EXPECT_EQ(frameInTheEnd(), kStart);
}

TEST_F(AppPlacerDelayTest, RemovingTheRememberedZoneCancelsThePlacement) {
    settings.zones.resize(kRightZone);
    EXPECT_EQ(frameInTheEnd(), kStart);
}

TEST_F(AppPlacerDelayTest, TheCurrentFrameOfTheZoneIsUsed) {
    settings.zones[kRightZone] = kWhole;
    EXPECT_EQ(frameInTheEnd(), kUsable);
}

TEST_F(AppPlacerDelayTest, TheWindowIsPlacedOnTheScreenThatItHasMovedTo) {
    desktop.drag(window, {600, 100, 400, 300});
    EXPECT_EQ(frameInTheEnd(), kPrimaryRight);
}

} // namespace
} // namespace tessarel
