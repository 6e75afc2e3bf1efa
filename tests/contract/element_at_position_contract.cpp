// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

namespace tessarel::contract {
namespace {

/// Looks up elements by position.
class ElementAtPositionContract : public ContractTest {
protected:
    /// Returns the key of the window found at the point; 0 when there is none.
    [[nodiscard]] std::uintptr_t keyAt(const Point& axPoint) {
        AccessibilityPort& accessibility = desktop->accessibility();
        const auto found = accessibility.elementAtPosition(accessibility.systemWide(), axPoint);
        if (!found)
            return 0;
        if (read<std::string>(*found, attribute::kRole) == "AXWindow")
            return accessibility.key(*found);
        const auto window = read<Element>(*found, attribute::kWindow);
        return window ? accessibility.key(*window) : 0;
    }

    [[nodiscard]] std::uintptr_t key(WindowHandle window) {
        return desktop->accessibility().key(desktop->element(window));
    }
};

TEST_F(ElementAtPositionContract, AWindowIsFoundAtItsTitleBarAndInItsMiddle) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});

    EXPECT_EQ(keyAt({520, 155}), key(window));
    EXPECT_EQ(keyAt({520, 390}), key(window));
}

TEST_F(ElementAtPositionContract, AWindowIsFoundUpToItsLastPixelOnly) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});

    EXPECT_EQ(keyAt({200, 150}), key(window));
    EXPECT_EQ(keyAt({839, 629}), key(window));
    for (const Point& outside : {Point{199, 390}, Point{840, 390}, Point{520, 149}, Point{520, 630}})
        EXPECT_EQ(keyAt(outside), 0U) << outside.x << ", " << outside.y;
}

TEST_F(ElementAtPositionContract, TheTopmostWindowIsFound) {
    const auto below = openWindow({.axFrame = {200, 150, 640, 480}});
    const auto above = openWindow({.axFrame = {400, 300, 640, 480}});
    desktop->focus(above);
    EXPECT_EQ(keyAt({500, 400}), key(above));

    desktop->focus(below);

    EXPECT_EQ(keyAt({500, 400}), key(below));
    EXPECT_EQ(keyAt({900, 700}), key(above));
}

TEST_F(ElementAtPositionContract, AWindowOnTheSecondDisplayIsFound) {
    const auto window = openWindow({.axFrame = {1600, 500, 640, 480}});

    EXPECT_EQ(keyAt({1610, 505}), key(window));
}

TEST_F(ElementAtPositionContract, NoElementIsFoundOnTheBareDesktop) {
    (void)openWindow({.axFrame = {200, 150, 640, 480}});

    EXPECT_EQ(keyAt({50, 50}), 0U);
    EXPECT_EQ(keyAt({-20000, 50}), 0U);
    EXPECT_EQ(keyAt({1e9, -1e9}), 0U);
}

TEST_F(ElementAtPositionContract, AMinimizedWindowIsNotFound) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});
    desktop->minimize(window);

    EXPECT_EQ(keyAt({520, 390}), 0U);
}

TEST_F(ElementAtPositionContract, AClosedWindowIsNotFound) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});
    desktop->closeWindow(window);

    EXPECT_EQ(keyAt({520, 390}), 0U);
}

TEST_F(ElementAtPositionContract, WithinAnApplicationOnlyItsOwnWindowsAreFound) {
    const auto application = desktop->launchApplication("org.example.editor");
    const auto window = desktop->openWindow(application, {.axFrame = {200, 150, 640, 480}});
    const auto other = desktop->launchApplication("org.example.viewer");
    desktop->openWindow(other, {.axFrame = {1000, 150, 300, 300}});
    AccessibilityPort& accessibility = desktop->accessibility();
    const auto keyWithin = [&](AppHandle within) {
        const auto found =
            accessibility.elementAtPosition(accessibility.application(desktop->pid(within)), {520, 390});
        return found ? accessibility.key(*found) : 0;
    };

    EXPECT_EQ(keyWithin(application), key(window));
    EXPECT_EQ(keyWithin(other), 0U);
}

TEST_F(ElementAtPositionContract, NoElementIsFoundWithinAnElementWithoutAHandle) {
    (void)openWindow({.axFrame = {200, 150, 640, 480}});

    EXPECT_FALSE(desktop->accessibility().elementAtPosition(Element{}, {520, 390}));
}

TEST_F(ElementAtPositionContract, TheSystemWideElementHasNoAttributesAndNoProcess) {
    const Element all = desktop->accessibility().systemWide();

    EXPECT_FALSE(desktop->accessibility().copyAttribute(all, attribute::kPosition));
    EXPECT_FALSE(desktop->accessibility().pid(all));
}

TEST_F(ElementAtPositionContract, AMessagingTimeoutDoesNotChangeTheResults) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});
    AccessibilityPort& accessibility = desktop->accessibility();
    accessibility.setMessagingTimeout(accessibility.systemWide(), 250ms);
    const auto found = accessibility.elementAtPosition(accessibility.systemWide(), {520, 390});
    ASSERT_TRUE(found);

    accessibility.setMessagingTimeout(*found, 250ms);
    accessibility.setMessagingTimeout(Element{}, 250ms);

    EXPECT_EQ(accessibility.key(*found), key(window));
    EXPECT_EQ(readFrame(*found), (Rect{200, 150, 640, 480}));
}

} // namespace
} // namespace tessarel::contract
