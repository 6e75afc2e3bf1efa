// SPDX-License-Identifier: MIT

#include "platform/sim/sim_desktop.h"

#include "support/main_queue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace tessarel::sim {
namespace {

using namespace std::chrono_literals;

/// The controls that the simulated desktop offers to tests.
class SimDesktopTest : public ::testing::Test {
protected:
    SimDesktop desktop;
};

TEST_F(SimDesktopTest, MenuBarAndDockReduceTheVisibleFrame) {
    const Screen screen = desktop.addScreen({.frame = {0, 0, 1440, 900}, .menuBar = 25, .dock = 70});

    EXPECT_EQ(screen.frame, (Rect{0, 0, 1440, 900}));
    EXPECT_EQ(screen.visibleFrame, (Rect{0, 70, 1440, 805}));

    desktop.setMenuBar(40);
    EXPECT_EQ(desktop.displays().screens().front().visibleFrame, (Rect{0, 70, 1440, 790}));
}

TEST_F(SimDesktopTest, SideBarsReduceTheVisibleFrame) {
    const Screen screen = desktop.addScreen(
        {.frame = {-1440, 500, 1440, 900}, .menuBar = 25, .dock = 55, .leftBar = 40, .rightBar = 100});

    EXPECT_EQ(screen.visibleFrame, (Rect{-1400, 555, 1300, 820}));
}

TEST_F(SimDesktopTest, DisplaysCanBeAddedAndRemoved) {
    const Screen first = desktop.addScreen({.frame = {0, 0, 1440, 900}});
    const Screen second = desktop.addScreen({.frame = {1440, 0, 1920, 1080}});
    EXPECT_EQ(desktop.displays().screens(), (std::vector{first, second}));

    desktop.removeScreen(second.id);
    EXPECT_EQ(desktop.displays().screens(), (std::vector{first}));

    desktop.removeScreen(first.id);
    EXPECT_TRUE(desktop.displays().screens().empty());
    EXPECT_FALSE(desktop.displays().mainScreen());
}

TEST_F(SimDesktopTest, ADisplayThatChangesKeepsItsIdAndItsPlaceInTheList) {
    Screen first = desktop.addScreen({.frame = {0, 0, 1440, 900}});
    const Screen second = desktop.addScreen({.frame = {1440, 0, 1920, 1080}});

    first.frame = {0, 0, 1280, 720};
    first.visibleFrame = {60, 0, 1180, 720};
    desktop.changeScreen(first);

    EXPECT_EQ(desktop.displays().screens(), (std::vector{first, second}));
}

TEST_F(SimDesktopTest, AnotherPrimaryDisplayMovesTheOrigin) {
    const Screen first = desktop.addScreen({.frame = {0, 0, 1440, 900}, .menuBar = 25});
    const Screen second = desktop.addScreen({.frame = {1440, -100, 1920, 1080}});

    desktop.makePrimary(second.id);

    const auto screens = desktop.displays().screens();
    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0], (Screen{second.id, {0, 0, 1920, 1080}, {0, 0, 1920, 1080}}));
    EXPECT_EQ(screens[1], (Screen{first.id, {-1440, 100, 1440, 900}, {-1440, 100, 1440, 875}}));
}

TEST_F(SimDesktopTest, TheMainScreenCanBeSet) {
    const Screen first = desktop.addScreen({.frame = {0, 0, 1440, 900}});
    const Screen second = desktop.addScreen({.frame = {1440, 0, 1920, 1080}});
    EXPECT_EQ(desktop.displays().mainScreen(), first);

    desktop.setMainScreen(second);

    EXPECT_EQ(desktop.displays().mainScreen(), second);
}

TEST_F(SimDesktopTest, WindowsOfOneIdentifierBelongToOneProgram) {
    const auto first = desktop.openWindow("org.example.editor", {0, 0, 100, 100});
    const auto second = desktop.openWindow("org.example.editor", {0, 0, 100, 100});
    const auto third = desktop.openWindow("org.example.mail", {0, 0, 100, 100});

    EXPECT_EQ(desktop.window(first).pid, desktop.window(second).pid);
    EXPECT_NE(desktop.window(first).pid, desktop.window(third).pid);
}

TEST_F(SimDesktopTest, ANewWindowHasTheFocus) {
    desktop.openWindow("org.example.editor", {0, 0, 100, 100});
    const auto mail = desktop.openWindow("org.example.mail", {0, 0, 100, 100});

    EXPECT_EQ(desktop.workspace().frontmostApplication()->bundleIdentifier, "org.example.mail");
    EXPECT_EQ(desktop.applicationOf(mail).focusedWindow, mail);
}

TEST_F(SimDesktopTest, AWindowOpenedBehindLeavesTheFocusWhereItIs) {
    const auto editor = desktop.openWindow("org.example.editor", {0, 0, 100, 100});
    const ProcessId mail = desktop.launch({.bundleIdentifier = "org.example.mail"});
    int activations = 0;
    const auto observer = desktop.workspace().addObserver(ApplicationEvent::Activated,
                                                          [&](const auto& /*app*/) { ++activations; });

    const auto first = desktop.openWindowBehind(mail, {.axFrame = {0, 0, 200, 200}});
    desktop.openWindowBehind(mail, {.axFrame = {0, 0, 300, 300}});

    EXPECT_EQ(activations, 0);
    EXPECT_EQ(desktop.workspace().frontmostApplication()->bundleIdentifier, "org.example.editor");
    EXPECT_EQ(desktop.applicationOf(editor).focusedWindow, editor);
    EXPECT_EQ(desktop.application(mail).focusedWindow, first) << "for when the program comes to the front";
    const auto listed = desktop.windowList().onScreenWindows();
    ASSERT_EQ(listed.size(), 3U);
    EXPECT_EQ(listed[0].axBounds, (Rect{0, 0, 100, 100}));
    EXPECT_EQ(listed[2].axBounds, (Rect{0, 0, 300, 300}));
}

TEST_F(SimDesktopTest, AWindowOpenedBehindIsReportedToObserversOfItsProgram) {
    const ProcessId mail = desktop.launch({.bundleIdentifier = "org.example.mail"});
    int created = 0;
    const auto observer = desktop.accessibility().onWindowCreated(
        desktop.accessibility().application(mail), [&](const Element& /*window*/) { ++created; });

    desktop.openWindowBehind(mail, {.axFrame = {0, 0, 200, 200}});

    EXPECT_EQ(created, 1);
}

TEST_F(SimDesktopTest, AProgramKeepsItsFocusedWindowWhileInTheBackground) {
    const auto editor = desktop.openWindow("org.example.editor", {0, 0, 100, 100});
    desktop.openWindow("org.example.editor", {0, 0, 100, 100});
    desktop.focus(editor);
    desktop.openWindow("org.example.mail", {0, 0, 100, 100});

    desktop.activate(desktop.window(editor).pid);

    EXPECT_EQ(desktop.workspace().frontmostApplication()->bundleIdentifier, "org.example.editor");
    EXPECT_EQ(desktop.applicationOf(editor).focusedWindow, editor);
}

TEST_F(SimDesktopTest, WhenAWindowClosesTheNextOneOfItsProgramHasTheFocus) {
    const auto first = desktop.openWindow("org.example.editor", {0, 0, 100, 100});
    const ProcessId pid = desktop.window(first).pid;
    const auto second = desktop.openWindow("org.example.editor", {0, 0, 100, 100});

    desktop.close(second);
    EXPECT_EQ(desktop.application(pid).focusedWindow, first);

    desktop.close(first);
    EXPECT_FALSE(desktop.application(pid).focusedWindow);
}

TEST_F(SimDesktopTest, ADragEndsARunningAnimation) {
    const auto window = desktop.openWindow("org.example.editor", {0, 0, 100, 100});
    desktop.applicationOf(window).enhancedInterface = true;
    desktop.accessibility().setAttribute(desktop.element(window), attribute::kPosition, Point{50, 50});

    desktop.drag(window, {300, 300, 100, 100});

    EXPECT_EQ(desktop.frame(window), (Rect{300, 300, 100, 100}));
}

TEST_F(SimDesktopTest, HotKeysOfOtherProgramsAreNotDelivered) {
    int pressed = 0;
    const auto handler = desktop.hotKeys().installHandler([&](std::uint32_t) { ++pressed; });
    const auto other = desktop.hotKeys().holdByAnotherProgram(18, 6144);

    EXPECT_FALSE(desktop.hotKeys().press(18, 6144));
    EXPECT_EQ(pressed, 0);
    EXPECT_TRUE(desktop.hotKeys().registered().empty());
}

TEST_F(SimDesktopTest, RegistrationsMayOutliveTheDesktop) {
    auto passing = std::make_unique<SimDesktop>();
    const auto handler = passing->hotKeys().installHandler([](std::uint32_t) {});
    const auto held = passing->hotKeys().holdByAnotherProgram(18, 6144);
    const auto instance = passing->makeCopy().claim([] {}, [] {});
    passing.reset();

    EXPECT_TRUE(handler && held && instance);
}

TEST_F(SimDesktopTest, AnAlertStandsUntilItIsClosedOrItsSubscriptionEnds) {
    const Alert first{"Welcome", "Read this.", {"Continue", "Open Settings"}};
    const Alert second{"Done", "", {"OK"}};
    std::vector<std::optional<std::size_t>> closedBy;
    const auto note = [&](std::optional<std::size_t> button) { closedBy.push_back(button); };
    auto one = desktop.alerts().show(first, note);
    auto two = desktop.alerts().show(second, note);
    EXPECT_EQ(desktop.alerts().standing(), (std::vector{first, second}));

    EXPECT_TRUE(desktop.alerts().close(std::nullopt));
    EXPECT_EQ(desktop.alerts().standing(), (std::vector{first}));
    two.reset();
    one.reset();
    EXPECT_FALSE(desktop.alerts().close(0));

    EXPECT_EQ(closedBy, (std::vector<std::optional<std::size_t>>{std::nullopt}));
    EXPECT_EQ(desktop.alerts().shown, (std::vector{first, second}));
}

TEST_F(SimDesktopTest, ServicesRecordTheirCalls) {
    desktop.alertSound().beep();
    desktop.openUrl().open("https://example.org");
    desktop.trust().prompt();
    EXPECT_EQ(desktop.trust().prompts, 0) << "nothing to ask for while trusted";
    EXPECT_EQ(desktop.trust().promptCalls, 1);

    desktop.trust().trusted = false;
    desktop.trust().prompt();

    EXPECT_EQ(desktop.beeps(), 1);
    EXPECT_EQ(desktop.openUrl().opened, (std::vector<std::string>{"https://example.org"}));
    EXPECT_EQ(desktop.trust().prompts, 1);
}

TEST_F(SimDesktopTest, TimeStandsStillUntilItIsAdvanced) {
    const auto start = desktop.mainQueue().now();
    std::vector<MainQueuePort::Duration> ranAt;
    for (const auto delay : {400ms, 30ms, 1000ms})
        asyncAfter(desktop.mainQueue(), delay, [&] { ranAt.push_back(desktop.mainQueue().now() - start); });
    EXPECT_EQ(desktop.mainQueue().now(), start);

    desktop.advance(400ms);
    EXPECT_EQ(ranAt, (std::vector<MainQueuePort::Duration>{30ms, 400ms}));
    EXPECT_EQ(desktop.mainQueue().now() - start, 400ms);

    desktop.advance(600ms);
    EXPECT_EQ(ranAt.size(), 3U);
}

} // namespace
} // namespace tessarel::sim
