// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

#include <limits>

namespace tessarel::contract {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

class AccessibilityWriteContract : public ContractTest {};

TEST_F(AccessibilityWriteContract, AWindowTakesTheFrameThatIsWritten) {
    const auto window = openWindow();

    writeFrame(desktop->element(window), {725, 33, 707, 859});

    EXPECT_EQ(readFrame(desktop->element(window)), (Rect{725, 33, 707, 859}));
    EXPECT_EQ(desktop->actualFrame(window), (Rect{725, 33, 707, 859}));
}

TEST_F(AccessibilityWriteContract, AWindowMovesToTheOtherDisplay) {
    const auto window = openWindow();

    writeFrame(desktop->element(window), {2000, 512, 560, 512});

    EXPECT_EQ(readFrame(desktop->element(window)), (Rect{2000, 512, 560, 512}));
}

TEST_F(AccessibilityWriteContract, WritesTakeEffectWithoutARead) {
    const auto window = openWindow();

    writeFrame(desktop->element(window), {100, 120, 700, 500});
    desktop->settle();

    EXPECT_EQ(desktop->actualFrame(window), (Rect{100, 120, 700, 500}));
}

TEST_F(AccessibilityWriteContract, WritingTheSameFrameAgainChangesNothing) {
    const auto window = openWindow();
    writeFrame(desktop->element(window), {100, 120, 700, 500});
    ASSERT_EQ(readFrame(desktop->element(window)), (Rect{100, 120, 700, 500}));

    writeFrame(desktop->element(window), {100, 120, 700, 500});

    EXPECT_EQ(readFrame(desktop->element(window)), (Rect{100, 120, 700, 500}));
}

TEST_F(AccessibilityWriteContract, WritingThePositionKeepsTheSize) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});

    desktop->accessibility().setAttribute(desktop->element(window), attribute::kPosition, Point{300, 350});

    EXPECT_EQ(readFrame(desktop->element(window)), (Rect{300, 350, 640, 480}));
}

TEST_F(AccessibilityWriteContract, WritingTheSizeKeepsThePosition) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});

    desktop->accessibility().setAttribute(desktop->element(window), attribute::kSize, Size{500, 400});

    EXPECT_EQ(readFrame(desktop->element(window)), (Rect{200, 150, 500, 400}));
}

TEST_F(AccessibilityWriteContract, TheLastWriteWins) {
    const Element window = desktop->element(openWindow());

    writeFrame(window, {10, 40, 300, 300});
    writeFrame(window, {500, 200, 600, 400});

    EXPECT_EQ(readFrame(window), (Rect{500, 200, 600, 400}));
}

TEST_F(AccessibilityWriteContract, WritesToTwoWindowsAreIndependent) {
    const Element first = desktop->element(openWindow());
    const Element second = desktop->element(openWindow());

    writeFrame(first, {10, 40, 300, 310});
    writeFrame(second, {500, 200, 600, 400});

    EXPECT_EQ(readFrame(first), (Rect{10, 40, 300, 310}));
    EXPECT_EQ(readFrame(second), (Rect{500, 200, 600, 400}));
}

TEST_F(AccessibilityWriteContract, AWindowIsNotMadeSmallerThanItsMinimumSize) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}, .minimumSize = {500, 400}});

    writeFrame(desktop->element(window), {20, 40, 300, 200});

    EXPECT_EQ(readFrame(desktop->element(window)), (Rect{20, 40, 500, 400}));
    EXPECT_EQ(desktop->actualFrame(window), (Rect{20, 40, 500, 400}));
}

TEST_F(AccessibilityWriteContract, AWindowThatRefusesASizeTwiceCanBeReadBothTimes) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}, .minimumSize = {500, 400}});

    for (int write = 0; write < 2; ++write) {
        writeFrame(desktop->element(window), {20, 40, 300, 200});
        EXPECT_EQ(readFrame(desktop->element(window)), (Rect{20, 40, 500, 400}));
    }
}

TEST_F(AccessibilityWriteContract, SeveralWindowsAreWrittenTogether) {
    const Element first = desktop->element(openWindow());
    const Element second = desktop->element(openWindow({.minimumSize = {500, 400}}));

    auto several = desktop->accessibility().writeSeveral();
    writeFrame(first, {10, 40, 300, 310});
    (void)readFrameOnce(first);
    writeFrame(second, {500, 200, 300, 200});
    (void)readFrameOnce(second);
    several.reset();

    EXPECT_EQ(readFrame(first), (Rect{10, 40, 300, 310}));
    EXPECT_EQ(readFrame(second), (Rect{500, 200, 500, 400}));
}

TEST_F(AccessibilityWriteContract, AWindowOfFixedSizeMovesButKeepsItsSize) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}, .resizable = false});

    writeFrame(desktop->element(window), {20, 40, 900, 700});

    EXPECT_EQ(readFrame(desktop->element(window)), (Rect{20, 40, 640, 480}));
}

TEST_F(AccessibilityWriteContract, ValuesThatAreNotFiniteAreNotWritten) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});
    const Element element = desktop->element(window);

    for (const double bad : {kInfinity, -kInfinity, kNotANumber}) {
        desktop->accessibility().setAttribute(element, attribute::kPosition, Point{bad, 40});
        desktop->accessibility().setAttribute(element, attribute::kPosition, Point{40, bad});
        desktop->accessibility().setAttribute(element, attribute::kSize, Size{bad, 400});
        desktop->accessibility().setAttribute(element, attribute::kSize, Size{400, bad});
        EXPECT_EQ(readFrame(element), (Rect{200, 150, 640, 480}));
    }
}

TEST_F(AccessibilityWriteContract, OnlyFiniteFramesCanBeExpressed) {
    AccessibilityPort& accessibility = desktop->accessibility();

    EXPECT_TRUE(accessibility.canExpress({725, 33, 707, 859}));
    EXPECT_TRUE(accessibility.canExpress({-1440, -200.5, 40, 40}));
    for (const double bad : {kInfinity, -kInfinity, kNotANumber}) {
        EXPECT_FALSE(accessibility.canExpress({bad, 33, 707, 859}));
        EXPECT_FALSE(accessibility.canExpress({725, bad, 707, 859}));
        EXPECT_FALSE(accessibility.canExpress({725, 33, bad, 859}));
        EXPECT_FALSE(accessibility.canExpress({725, 33, 707, bad}));
    }
}

TEST_F(AccessibilityWriteContract, AValueOfTheWrongTypeIsNotWritten) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});
    const Element element = desktop->element(window);

    desktop->accessibility().setAttribute(element, attribute::kPosition, Size{10, 10});
    desktop->accessibility().setAttribute(element, attribute::kSize, true);
    desktop->accessibility().setAttribute(element, "AXNoSuchThing", Point{10, 10});

    EXPECT_EQ(readFrame(element), (Rect{200, 150, 640, 480}));
}

TEST_F(AccessibilityWriteContract, WritesToClosedWindowsAreIgnored) {
    const auto application = desktop->launchApplication("org.example.editor");
    const auto window = desktop->openWindow(application, {});
    const Element closed = desktop->element(window);
    desktop->closeWindow(window);
    const Element orphaned = desktop->element(desktop->openWindow(application, {}));
    desktop->killApplication(application);
    const auto bystander = openWindow({.axFrame = {200, 150, 640, 480}});

    for (const Element& gone : {closed, orphaned, Element{}})
        writeFrame(gone, {20, 40, 300, 200});
    desktop->settle();

    EXPECT_EQ(readFrame(desktop->element(bystander)), (Rect{200, 150, 640, 480}));
}

TEST_F(AccessibilityWriteContract, AWindowThatClosesBetweenWriteAndReadHasNoFrame) {
    const auto window = openWindow();
    const Element element = desktop->element(window);

    writeFrame(element, {20, 40, 300, 200});
    desktop->closeWindow(window);

    EXPECT_TRUE(readFrameOnce(element).isNull());
}

} // namespace
} // namespace tessarel::contract
