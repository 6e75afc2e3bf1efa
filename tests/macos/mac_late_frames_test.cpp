// SPDX-License-Identifier: MIT

#include "engine/ax.h"
#include "macos/mac_test.h"

#include <chrono>

namespace tessarel::macos {
namespace {

using namespace std::chrono_literals;

/// Places a window of an application that confirms a frame 50 ms before it applies it.
class MacLateFramesTest : public MacTest {
protected:
    static constexpr Rect kStart{200, 150, 640, 480};
    static constexpr Rect kTarget{0, 25, 720, 400};

    MacLateFramesTest() { its().lateness = 0.05; }

    [[nodiscard]] fakemac::Window& its() const { return fakemac::mac().windows.at(window); }
    [[nodiscard]] Element element() {
        return desktop->accessibility.elementAtPosition(desktop->accessibility.systemWide(), {300, 200})
            .value();
    }
    [[nodiscard]] std::optional<Rect> place(const Rect& axFrame, const std::optional<Rect>& bounds = {}) {
        const Element placed = element();
        ax.setFrame(placed, kEditor, axFrame, bounds);
        return ax.frame(placed);
    }

    fakemac::WindowNumber window = fakemac::openWindow({.pid = kEditor, .axFrame = kStart});
    AX ax{desktop->accessibility, desktop->workspace};
};

TEST_F(MacLateFramesTest, AReadWaitsUntilTheFrameHasBeenApplied) {
    EXPECT_EQ(place(kTarget), kTarget);
    EXPECT_EQ(waited, 50ms);
}

TEST_F(MacLateFramesTest, AReadWaitsAfterAMoveOrAResizeAlone) {
    const Element placed = element();

    desktop->accessibility.setAttribute(placed, attribute::kPosition, kTarget.origin());
    EXPECT_EQ(ax.frame(placed), (Rect{0, 25, 640, 480}));
    desktop->accessibility.setAttribute(placed, attribute::kSize, kTarget.size());
    EXPECT_EQ(ax.frame(placed), kTarget);

    EXPECT_EQ(waited, 100ms);
}

TEST_F(MacLateFramesTest, ALateWindowIsNotPulledBackFromItsOldFrame) {
    its().axFrame = {250, 150, 1400, 480};

    EXPECT_EQ(place(kTarget, Rect{0, 25, 1440, 875}), kTarget);
}

TEST_F(MacLateFramesTest, AReadDoesNotWaitWhenTheFrameIsAppliedAtOnce) {
    its().lateness = 0;

    EXPECT_EQ(place(kTarget), kTarget);
    EXPECT_EQ(waited, 0ms);
}

TEST_F(MacLateFramesTest, AReadDoesNotWaitWhenTheWindowAlreadyHasTheFrame) {
    EXPECT_EQ(place(kStart), kStart);
    EXPECT_EQ(waited, 0ms);
}

TEST_F(MacLateFramesTest, AFrameThatIsNeverAppliedIsWaitedForOnce) {
    its().fullScreen = true;

    EXPECT_EQ(place(kTarget), kStart);
    EXPECT_EQ(waited, 100ms);
    EXPECT_EQ(ax.frame(element()), kStart);
    EXPECT_EQ(waited, 100ms);
}

TEST_F(MacLateFramesTest, AReadDoesNotWaitForTheSizeOnceTheWindowHasMoved) {
    its().lateness = 0;
    its().minimum = {640, 480};
    its().maximum = {640, 480};

    EXPECT_EQ(place(kTarget), (Rect{0, 25, 640, 480}));
    EXPECT_EQ(waited, 0ms);
}

TEST_F(MacLateFramesTest, OtherWindowsAreReadAtOnce) {
    const auto other = fakemac::openWindow({.pid = kEditor, .axFrame = {900, 150, 100, 100}});
    const Element otherElement =
        desktop->accessibility.elementAtPosition(desktop->accessibility.systemWide(), {950, 200}).value();
    const Element placed = element();
    ax.setFrame(placed, kEditor, kTarget, {});

    EXPECT_EQ(ax.frame(otherElement), fakemac::mac().windows.at(other).axFrame);
    EXPECT_EQ(waited, 0ms);
    EXPECT_EQ(ax.frame(placed), kTarget);
    EXPECT_EQ(waited, 50ms);
}

TEST_F(MacLateFramesTest, OnlyTheWindowWrittenLastIsWaitedFor) {
    (void)fakemac::openWindow({.pid = kEditor, .axFrame = {900, 150, 100, 100}, .lateness = 0.05});
    const Element earlier =
        desktop->accessibility.elementAtPosition(desktop->accessibility.systemWide(), {950, 200}).value();
    ax.setFrame(earlier, kEditor, {900, 150, 200, 200}, {});

    EXPECT_EQ(place(kTarget), kTarget);
    EXPECT_EQ(waited, 50ms);
    EXPECT_EQ(ax.frame(earlier), (Rect{900, 150, 200, 200}));
    EXPECT_EQ(waited, 50ms);
}

TEST_F(MacLateFramesTest, OtherAttributesAreReadAtOnce) {
    const Element placed = element();
    ax.setFrame(placed, kEditor, kTarget, {});

    EXPECT_TRUE(ax.isUsable(placed));

    EXPECT_EQ(waited, 0ms);
}

TEST_F(MacLateFramesTest, AReadDoesNotWaitInAdditionToAMessagingTimeout) {
    const Element placed = element();
    fakemac::mac().applications.at(kEditor).answers = false;

    ax.setFrame(placed, kEditor, kTarget, Rect{0, 25, 1440, 875});

    EXPECT_EQ(waited, 0ms);
}

TEST_F(MacLateFramesTest, AnApplicationThatDoesNotReplyIsAskedForItsFrameOnce) {
    const Element placed = element();
    fakemac::mac().applications.at(kEditor).answers = false;

    desktop->accessibility.setAttribute(placed, attribute::kSize, kTarget.size());
    desktop->accessibility.setAttribute(placed, attribute::kPosition, kTarget.origin());
    desktop->accessibility.setAttribute(placed, attribute::kSize, kTarget.size());

    EXPECT_EQ(fakemac::mac().waits.size(), 4U) << "one read and three writes";
}

TEST_F(MacLateFramesTest, AReadDoesNotWaitForAClosedWindow) {
    const Element placed = element();
    ax.setFrame(placed, kEditor, kTarget, {});
    fakemac::closeWindow(window);

    EXPECT_EQ(ax.frame(placed), std::nullopt);
    EXPECT_EQ(waited, 0ms);
}

} // namespace
} // namespace tessarel::macos
