// SPDX-License-Identifier: MIT

#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace tessarel::x11 {
namespace {

using namespace std::chrono_literals;
using x11test::StateChange;
using x11test::WindowOptions;

class PlacementTest : public X11Test {
protected:
    [[nodiscard]] xcb_window_t openIn(const std::string& state) {
        const xcb_window_t window = open();
        observer.changeState(window, StateChange::Add, state);
        EXPECT_TRUE(observer.waitUntil([&] { return observer.hasState(window, state); }));
        settle();
        return window;
    }

    /// Places the window and expects that both the back end and the observer read the new frame.
    void expectPlaced(xcb_window_t window, const Rect& axFrame) {
        const Element element = elementOf(window);
        writeFrame(element, axFrame);
        EXPECT_EQ(readFrame(element), axFrame);
        EXPECT_EQ(actualFrame(window), axFrame);
    }
};

TEST_F(PlacementTest, APlainWindowGetsTheExactFrame) {
    expectPlaced(open(), kTarget);
}

TEST_F(PlacementTest, AWindowWithStaticGravityGetsTheExactFrame) {
    expectPlaced(open({.gravity = XCB_GRAVITY_STATIC}), kTarget);
}

TEST_F(PlacementTest, AWindowWithoutDecorationGetsTheExactFrame) {
    expectPlaced(open({.decorated = false}), kTarget);
}

TEST_F(PlacementTest, TheVisiblePartOfAWindowWithShadowsGetsTheExactFrame) {
    expectPlaced(open({.shadow = {{20, 21, 22, 23}}, .decorated = false}), kTarget);
}

TEST_F(PlacementTest, MaximisedWindowsAreUnmaximisedFirst) {
    for (const char* axis : {"_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ"}) {
        const xcb_window_t window = openIn(axis);
        expectPlaced(window, kTarget);
        EXPECT_FALSE(observer.hasState(window, axis));
    }
}

TEST_F(PlacementTest, AFullyMaximisedWindowIsUnmaximisedFirst) {
    const xcb_window_t window = open();
    observer.changeState(window, StateChange::Add, "_NET_WM_STATE_MAXIMIZED_VERT",
                         "_NET_WM_STATE_MAXIMIZED_HORZ");
    ASSERT_TRUE(
        observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_MAXIMIZED_VERT"); }));
    settle();

    expectPlaced(window, kTarget);
}

TEST_F(PlacementTest, AShadedWindowIsUnshadedFirst) {
    const xcb_window_t window = openIn("_NET_WM_STATE_SHADED");

    expectPlaced(window, kTarget);

    EXPECT_FALSE(observer.hasState(window, "_NET_WM_STATE_SHADED"));
}

TEST_F(PlacementTest, AWindowWithResizeIncrementsIsWithinOneIncrement) {
    const xcb_window_t window = open({.step = {{10, 20}}, .base = {{4, 4}}});
    const Element element = elementOf(window);

    writeFrame(element, kTarget);

    const Rect frame = readFrame(element);
    EXPECT_EQ(frame.origin(), kTarget.origin());
    EXPECT_LE(frame.width, kTarget.width);
    EXPECT_GT(frame.width, kTarget.width - 10);
    EXPECT_LE(frame.height, kTarget.height);
    EXPECT_GT(frame.height, kTarget.height - 20);
    EXPECT_EQ(actualFrame(window), frame);
}

TEST_F(PlacementTest, FractionsOfPixelsAreRounded) {
    const Element element = elementOf(open());

    writeFrame(element, {333.5, 221.6, 600.4, 449.5});

    EXPECT_EQ(readFrame(element), (Rect{334, 222, 600, 450}));
}

TEST_F(PlacementTest, SizePositionSizeIsOneVisibleStep) {
    const xcb_window_t window = open();
    const int before = client.configures(window).all();

    writeFrame(elementOf(window), kTarget);
    settle();

    EXPECT_LE(client.configures(window).all() - before, 2);
    EXPECT_EQ(actualFrame(window), kTarget);
}

TEST_F(PlacementTest, WritesHappenAtTheEndOfTheTurnAtTheLatest) {
    const xcb_window_t window = open();
    writeFrame(elementOf(window), kTarget);
    EXPECT_NE(actualFrame(window), kTarget);

    driver.queue().runTurn();

    EXPECT_EQ(actualFrame(window), kTarget);
}

TEST_F(PlacementTest, AnEmptySizeBecomesOnePixel) {
    const xcb_window_t window = open({.decorated = false});

    writeFrame(elementOf(window), {100, 100, 0, 0});
    driver.hear();

    EXPECT_EQ(actualFrame(window), (Rect{100, 100, 1, 1}));
}

TEST_F(PlacementTest, AWindowDestroyedAfterItWasReadIsLeftAlone) {
    const xcb_window_t window = open();
    const Element element = elementOf(window);
    ASSERT_FALSE(readFrame(element).isNull());
    client.destroy(window);

    writeFrame(element, kTarget);

    EXPECT_TRUE(readFrame(element).isNull());
    EXPECT_FALSE(accessibility.pid(element));
}

TEST_F(PlacementTest, AWindowOfAStoppedProgramIsPlaced) {
    const xcb_window_t window = open();
    const Element element = elementOf(window);
    client.stop();
    const auto start = std::chrono::steady_clock::now();

    writeFrame(element, kTarget);

    EXPECT_EQ(readFrame(element), kTarget);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
    client.resume();
}

TEST_F(PlacementTest, AStoppedWindowManagerIsWaitedForOncePerTurn) {
    const xcb_window_t window = open();
    const Element element = elementOf(window);
    // Counts the round trips of a placement. A wait that times out counts as well as a reply.
    const auto waits = [&](const Rect& axFrame) {
        const auto before = connection.roundTrips();
        writeFrame(element, axFrame);
        EXPECT_TRUE(readFrame(element).isNull());
        return connection.roundTrips() - before;
    };
    desktop.manager->process().signal(SIGSTOP);
    const auto start = std::chrono::steady_clock::now();

    static_cast<void>(waits(kTarget));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 1s);
    const auto second = waits({10, 40, 300, 200});

    desktop.manager->process().signal(SIGCONT);
    EXPECT_EQ(second, 1U) << "the frame is read back, without another wait";
    EXPECT_TRUE(observer.waitUntil([&] { return actualFrame(window) == Rect{10, 40, 300, 200}; }));
    settle();
    expectPlaced(window, kTarget);
}

class PlacementWithoutManagerTest : public X11Test {
protected:
    PlacementWithoutManagerTest() : X11Test(SharedDesktop::withoutManager()) {}
};

TEST_F(PlacementWithoutManagerTest, NoApplicationIsFrontmostAndNoWindowIsListed) {
    (void)client.open();
    driver.hear();

    EXPECT_FALSE(workspace.frontmostApplication());
    EXPECT_FALSE(workspace.runningApplication(client.pid()));
    EXPECT_FALSE(accessibility.copyAttribute(accessibility.application(client.pid()), attribute::kWindows));
    EXPECT_EQ(displays.screens().size(), 1U);
    EXPECT_TRUE(displays.mainScreen());
}

TEST_F(PlacementWithoutManagerTest, WindowsAreMovedDirectly) {
    const xcb_window_t window = client.open();
    ClientWindows clientWindows(connection);
    Placement placement(connection, clientWindows);

    placement.place(window, {.origin = Point{33, 22}, .size = Size{600, 450}});

    EXPECT_EQ(actualFrame(window), (Rect{33, 22, 600, 450}));
    placement.place(window, {.origin = Point{5, 6}, .size = std::nullopt});
    EXPECT_EQ(actualFrame(window), (Rect{5, 6, 600, 450}));
}

} // namespace
} // namespace tessarel::x11
