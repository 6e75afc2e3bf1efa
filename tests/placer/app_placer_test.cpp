// SPDX-License-Identifier: MIT

#include "placer/placer_test.h"

namespace tessarel {
namespace {

class AppPlacerTest : public PlacerTest {
protected:
    AppPlacerTest() { placer->start(); }
};

TEST_F(AppPlacerTest, ANewWindowGoesIntoTheZoneOfItsApplicationAfterTheDelay) {
    const auto window = open(editor);

    desktop.advance(kWindowDelay - 1ms);
    EXPECT_EQ(desktop.frame(window), kStart);

    desktop.advance(1ms);
    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(AppPlacerTest, AWindowIsReadOnlyAfterTheDelay) {
    (void)desktop.takeRequests();
    (void)open(editor);

    EXPECT_EQ(desktop.takeRequests(), Lines{});
}

TEST_F(AppPlacerTest, AWindowIsCheckedThenReadThenPlaced) {
    const auto window = open(editor);
    (void)desktop.takeRequests();

    desktop.advance(kWindowDelay);

    const std::string read = "read " + name(window);
    const std::string write = "write " + name(window);
    EXPECT_EQ(desktop.takeRequests(),
              (Lines{read + " AXRole", read + " AXMinimized", read + " AXFullScreen", read + " AXSubrole",
                     read + " AXPosition", read + " AXSize", read + " AXPosition", read + " AXSize",
                     "read application " + std::to_string(editor) + " AXEnhancedUserInterface",
                     write + " AXSize 650x820", write + " AXPosition -750,-575", write + " AXSize 650x820",
                     read + " AXPosition", read + " AXSize", read + " AXPosition", read + " AXSize"}));
}

TEST_F(AppPlacerTest, TheZoneKeepsGapAndMargin) {
    settings.gap = 10;
    settings.margin = 8;

    EXPECT_EQ(desktop.frame(openAndWait(editor)), (Rect{-745, -567, 637, 804}));
}

TEST_F(AppPlacerTest, TheFrontmostProgramStaysInFront) {
    const auto mail = desktop.openWindow("org.example.mail", kStart);

    (void)openAndWait(editor);

    EXPECT_EQ(desktop.workspace().frontmostApplication()->bundleIdentifier, "org.example.mail");
    EXPECT_EQ(desktop.frame(mail), kStart);
}

TEST_F(AppPlacerTest, AWindowThatRefusesToMoveIsNotRetried) {
    desktop.application(editor).refusesPosition = true;
    const auto window = openAndWait(editor);
    desktop.application(editor).refusesPosition = false;
    (void)desktop.takeRequests();

    accessibility.reportCreated(window);
    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.takeRequests(), Lines{});
}

TEST_F(AppPlacerTest, AWindowThatTheDesktopRefusesToMoveIsNotRetried) {
    const auto window = openAndWait(editor, {.axFrame = kStart, .isTiled = true});
    desktop.window(window).isTiled = false;

    accessibility.reportCreated(window);
    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerTest, TheApplicationIsWatchedFromItsLaunchOn) {
    const ProcessId again = desktop.launch({.bundleIdentifier = "org.example.editor"});

    EXPECT_EQ(desktop.frame(openAndWait(again)), kRight);
}

TEST_F(AppPlacerTest, AWindowStaysOnTheScreenWhereItOpened) {
    const auto window = openAndWait(editor, {.axFrame = {600, 100, 400, 300}});

    EXPECT_EQ(desktop.frame(window), kPrimaryRight);
}

TEST_F(AppPlacerTest, AWindowOutsideAllScreensGoesToTheFirst) {
    desktop.setMainScreen(screen);

    const auto window = openAndWait(editor, {.axFrame = {5000, 5000, 400, 300}});

    EXPECT_EQ(desktop.frame(window), kPrimaryRight);
}

TEST_F(AppPlacerTest, WithoutAnyScreenNothingIsPlaced) {
    for (const Screen& one : desktop.displays().screens())
        desktop.removeScreen(one.id);
    desktop.setMainScreen(std::nullopt);

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kStart);
}

TEST_F(AppPlacerTest, AWindowThatRefusesTheSizeIsPulledIntoTheVisibleArea) {
    const auto window = openAndWait(editor, {.axFrame = kStart, .minimum = {900, 400}});

    EXPECT_EQ(desktop.frame(window), (Rect{-1000, -575, 900, 820}));
}

TEST_F(AppPlacerTest, RestoringUndoesAPlacement) {
    const auto window = openAndWait(editor);
    desktop.focus(window);

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerTest, PlacingRemembersAndSavesNothing) {
    const auto before = settings.appZones;

    (void)openAndWait(editor);

    EXPECT_EQ(settings.appZones, before);
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

TEST_F(AppPlacerTest, AWindowThatIsReportedTwiceIsPlacedOnce) {
    const auto window = openAndWait(editor);
    desktop.drag(window, kStart);

    accessibility.reportCreated(window);
    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerTest, AWindowIsPlacedOnceWhateverHappensBetweenItsReports) {
    const ProcessId mail = desktop.launch({.bundleIdentifier = "org.example.mail"});
    const auto window = openAndWait(editor);
    desktop.drag(window, kStart);

    desktop.kill(mail);
    (void)desktop.launch({.bundleIdentifier = "org.example.editor"});
    store.saveAndNotify();
    accessibility.reportCreated(window);
    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerTest, AWindowAlsoFoundAfterTheLaunchIsPlacedOnce) {
    const ProcessId again = desktop.launch({.bundleIdentifier = "org.example.editor"});
    const auto window = openAndWait(again);
    desktop.drag(window, kStart);

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerTest, TwoWindowsOpenedAtOnceShareTheZone) {
    const auto first = open(editor);
    const auto second = openAndWait(editor);

    EXPECT_EQ(desktop.frame(first), kRight);
    EXPECT_EQ(desktop.frame(second), kRight);
}

TEST_F(AppPlacerTest, ASkippedWindowIsRetriedWhenItIsReportedAgain) {
    const auto window = openAndWait(editor, {.axFrame = kStart, .minimized = true});
    desktop.window(window).minimized = false;

    accessibility.reportCreated(window);
    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(AppPlacerTest, AWindowThatHasClosedMeanwhileIsLeftAlone) {
    desktop.close(open(editor));

    desktop.advance(kWindowDelay);

    EXPECT_EQ(desktop.takeWrites(), Lines{});
}

TEST_F(AppPlacerTest, NothingIsPlacedOnceThePlacerIsDestroyed) {
    const auto window = open(editor);
    const ProcessId again = desktop.launch({.bundleIdentifier = "org.example.editor"});
    const auto existing = open(again);

    placer.reset();
    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_EQ(desktop.frame(existing), kStart);
    EXPECT_EQ(accessibility.observers(), 0U);
}

/// Fixture: a launched application that refuses observers, with two windows.
class AppPlacerLaunchTest : public AppPlacerTest {
protected:
    const ProcessId pid =
        desktop.launch({.bundleIdentifier = "org.example.editor", .refusesObservers = true});
    const sim::WindowId first = open(pid);
    const sim::WindowId second = open(pid);
};

TEST_F(AppPlacerLaunchTest, AllWindowsGoIntoTheZoneASecondAfterTheLaunch) {
    desktop.advance(kLaunchDelay - 1ms);
    EXPECT_EQ(desktop.frame(first), kStart);

    desktop.advance(1ms);
    EXPECT_EQ(desktop.frame(first), kRight);
    EXPECT_EQ(desktop.frame(second), kRight);
}

TEST_F(AppPlacerLaunchTest, WindowsArePlacedInTheOrderOfTheApplicationsWindowList) {
    desktop.advance(kLaunchDelay);

    auto writes = desktop.takeWrites();
    std::erase_if(writes, [](const std::string& write) { return write.find("AXPosition") == write.npos; });
    EXPECT_EQ(writes, (Lines{"write " + name(first) + " AXPosition -750,-575",
                             "write " + name(second) + " AXPosition -750,-575"}));
}

TEST_F(AppPlacerLaunchTest, NoRequestIsSentBeforeTheDelayHasPassed) {
    (void)desktop.takeRequests();
    desktop.advance(kLaunchDelay - 1ms);

    EXPECT_EQ(desktop.takeRequests(), Lines{});
}

TEST_F(AppPlacerLaunchTest, AProgramInTheBackgroundHasItsWindowsPlacedToo) {
    const ProcessId background =
        desktop.launch({.bundleIdentifier = "org.example.editor", .isRegular = false});
    const auto window = open(background);

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(AppPlacerLaunchTest, PausingMeanwhileCancelsThePlacement) {
    runtime.paused = true;

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.takeWrites(), Lines{});
}

TEST_F(AppPlacerLaunchTest, ADialogStaysWhereItIs) {
    desktop.window(second).subrole = "AXDialog";

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(first), kRight);
    EXPECT_EQ(desktop.frame(second), kStart);
}

TEST_F(AppPlacerLaunchTest, TheZoneRememberedAfterTheDelayIsUsed) {
    settings.appZones["org.example.editor"] = 0;

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(first), kLeft);
}

TEST_F(AppPlacerLaunchTest, ForgettingTheApplicationMeanwhileCancelsThePlacement) {
    settings.appZones.clear();

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(first), kStart);
}

TEST_F(AppPlacerLaunchTest, AnApplicationRememberedOnlyAfterItsLaunchIsLeftAlone) {
    const ProcessId mail = desktop.launch({.bundleIdentifier = "org.example.mail", .refusesObservers = true});
    const auto window = open(mail);
    settings.appZones["org.example.mail"] = kRightZone;

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerLaunchTest, AnApplicationThatHasEndedMeanwhileIsLeftAlone) {
    desktop.kill(pid);

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.takeWrites(), Lines{});
}

TEST_F(AppPlacerTest, AProgramThatIsIdentifiedAfterItsWindowIsPlacedByItsIdentifier) {
    const ProcessId late = desktop.launch({});
    const auto window = open(late);

    desktop.advance(kWindowDelay - 1ms);
    desktop.application(late).bundleIdentifier = "org.example.editor";
    desktop.advance(1ms);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(AppPlacerTest, AProgramThatIsIdentifiedLaterIsPlacedAtItsLaunch) {
    const ProcessId late = desktop.launch({});
    const auto window = open(late);
    desktop.advance(kWindowDelay);
    desktop.application(late).bundleIdentifier = "org.example.editor";

    desktop.advance(kLaunchDelay - kWindowDelay);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(AppPlacerTest, AZoneStoredUnderAnotherNameOfTheApplicationIsUsed) {
    settings.appZones = {{"Editor", kRightZone}};
    desktop.application(editor).otherNames = {"edit", "Editor"};

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
}

TEST_F(AppPlacerTest, AZoneStoredUnderTheIdentifierTakesPrecedenceOverOtherNames) {
    settings.appZones["Editor"] = 0;
    desktop.application(editor).otherNames = {"Editor"};

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
}

TEST_F(AppPlacerTest, AnApplicationIgnoredUnderAnotherNameIsNotPlaced) {
    settings.ignoredApps = {"Editor"};
    desktop.application(editor).otherNames = {"Editor"};

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kStart);
}

TEST_F(AppPlacerTest, EachApplicationOfOneProcessHasItsOwnZone) {
    settings.appZones["org.example.table"] = 0;

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
    EXPECT_EQ(
        desktop.frame(openAndWait(editor, {.axFrame = kStart, .bundleIdentifier = "org.example.table"})),
        kLeft);
    EXPECT_EQ(
        desktop.frame(openAndWait(editor, {.axFrame = kStart, .bundleIdentifier = "org.example.slides"})),
        kStart);
}

TEST_F(AppPlacerTest, TheFirstWindowsOfAProcessArePlacedInTheZonesOfTheirApplications) {
    settings.appZones["org.example.table"] = 0;
    const ProcessId office = desktop.launch({.bundleIdentifier = "org.example.office"});
    const auto table =
        desktop.openWindowBehind(office, {.axFrame = kStart, .bundleIdentifier = "org.example.table"});
    const auto text = open(office);

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(table), kLeft);
    EXPECT_EQ(desktop.frame(text), kStart);
}

TEST_F(AppPlacerTest, AWindowThatChangesItsApplicationIsPlacedInTheZoneOfTheNewOne) {
    settings.appZones["org.example.table"] = 0;
    const auto window = open(editor);

    desktop.advance(kWindowDelay - 1ms);
    desktop.window(window).bundleIdentifier = "org.example.table";
    desktop.advance(1ms);

    EXPECT_EQ(desktop.frame(window), kLeft);
}

TEST_F(AppPlacerTest, AnApplicationWithoutARememberedZoneIsNotAskedForItsWindows) {
    const ProcessId other = desktop.launch({.bundleIdentifier = "org.example.other"});
    (void)desktop.takeRequests();

    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.takeRequests(), Lines{}) << other;
}

} // namespace
} // namespace tessarel
