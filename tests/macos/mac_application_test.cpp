// SPDX-License-Identifier: MIT

#include "macos/mac_application_test.h"

#include "support/main_queue.h"

namespace tessarel {
namespace {

TEST_F(MacApplicationTest, AHotKeySnapsTheFrontWindowIntoItsZone) {
    launch();
    const auto window = openEditorWindow();

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(frameOf(window), kZone1);
}

TEST_F(MacApplicationTest, AMenuActionRunsAfterTheMenuHasClosed) {
    launch();
    const auto window = openEditorWindow();

    choose({"Move window", "Maximize   (Ctrl+Opt+Return)"});
    EXPECT_EQ(frameOf(window), kWindow);

    EXPECT_TRUE(until([&] { return frameOf(window) == Rect{0, 25, 1440, 875}; }));
}

TEST_F(MacApplicationTest, AWindowMovesToTheOtherDisplayAndBack) {
    launch();
    const auto window = openEditorWindow();

    choose({"Move window", "Move to next display   (Ctrl+Opt+Cmd+Right)"});
    EXPECT_TRUE(until([&] { return frameOf(window).x >= 1440; }));
    choose({"Move window", "Move to previous display   (Ctrl+Opt+Cmd+Left)"});

    EXPECT_TRUE(until([&] { return frameOf(window).x < 1440; }));
}

TEST_F(MacApplicationTest, ALayoutChosenFromTheMenuIsSavedAndUsedByTheNextSnap) {
    launch();
    const auto window = openEditorWindow();

    choose({"Layouts", "Halves"});
    drain();
    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(frameOf(window), (Rect{0, 25, 720, 875}));
    program.reset();
    launch();
    fakemac::mac().windows.at(window).axFrame = kWindow;
    fakemac::pressKeys(kKey1, kCtrlOpt);
    EXPECT_EQ(frameOf(window), (Rect{0, 25, 720, 875})) << "after a restart";
}

TEST_F(MacApplicationTest, ANewWindowOfARememberedApplicationMovesIntoItsZone) {
    settings(R"(, "appZones": {"org.example.editor": 0})");
    launch();

    const auto window = openEditorWindow();

    EXPECT_TRUE(until([&] { return frameOf(window) == kZone1; }));
}

TEST_F(MacApplicationTest, ANewWindowThatHasNoAttributesAtFirstMovesIntoItsZone) {
    settings(R"(, "appZones": {"org.example.editor": 0})");
    launch();

    const auto window = fakemac::openWindow({.pid = kEditor, .axFrame = kWindow, .hasAttributes = false});
    asyncAfter(program->mainQueue(), std::chrono::milliseconds(200),
               [&] { fakemac::mac().windows.at(window).hasAttributes = true; });

    EXPECT_TRUE(until([&] { return frameOf(window) == kZone1; }));
}

TEST_F(MacApplicationTest, AnApplicationLaunchedLaterIsRemembered) {
    launch();
    fakemac::launch(8, {.bundleIdentifier = "org.example.terminal"});
    const auto first = fakemac::openWindow({.pid = 8, .axFrame = kWindow});
    fakemac::focus(first);
    fakemac::pressKeys(kKey1, kCtrlOpt);

    const auto second = fakemac::openWindow({.pid = 8, .axFrame = kWindow});

    EXPECT_TRUE(until([&] { return frameOf(second) == kZone1; }));
}

TEST_F(MacApplicationTest, AnApplicationThatCannotBeObservedAtLaunchIsObservedLater) {
    settings(R"(, "appZones": {"org.example.terminal": 0})");
    launch();
    fakemac::launch(8, {.bundleIdentifier = "org.example.terminal", .failures = 3});
    EXPECT_TRUE(until([] { return fakemac::mac().applications.at(8).failures == 0; }));
    const int before = fakemac::mac().observationRequests;
    EXPECT_TRUE(until([&] { return fakemac::mac().observationRequests > before; }));

    const auto window = fakemac::openWindow({.pid = 8, .axFrame = kWindow, .hasAttributes = false});
    asyncAfter(program->mainQueue(), std::chrono::milliseconds(200),
               [&] { fakemac::mac().windows.at(window).hasAttributes = true; });

    EXPECT_TRUE(until([&] { return frameOf(window) == kZone1; }));
}

TEST_F(MacApplicationTest, WindowsAreArrangedInTheWindowServersOrder) {
    launch();
    const auto behind = openEditorWindow();
    const auto front = openEditorWindow({500, 300, 500, 400});

    choose({"Arrange windows into zones"});

    EXPECT_TRUE(until([&] { return frameOf(front) == kZone1; }));
    EXPECT_EQ(frameOf(behind), (Rect{480, 25, 480, 438}));
}

TEST_F(MacApplicationTest, APauseLastsUntilTheMenuEndsIt) {
    launch();
    const auto window = openEditorWindow();

    choose({"Pause Tessarel"});
    drain();
    EXPECT_TRUE(fakemac::statusItems().at(0).appearsDisabled);
    fakemac::pressKeys(kKey1, kCtrlOpt);
    EXPECT_EQ(frameOf(window), kWindow);

    choose({"Pause Tessarel"});
    drain();
    fakemac::pressKeys(kKey1, kCtrlOpt);
    EXPECT_EQ(frameOf(window), kZone1);
}

} // namespace
} // namespace tessarel
