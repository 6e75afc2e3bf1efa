// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

#include <vector>

namespace tessarel::contract {
namespace {

class AccessibilityReadContract : public ContractTest {
protected:
    [[nodiscard]] std::vector<std::uintptr_t> keysOfWindows(AppHandle application) {
        std::vector<std::uintptr_t> keys;
        const Element element = desktop->accessibility().application(desktop->pid(application));
        const auto windows = read<std::vector<Element>>(element, attribute::kWindows);
        for (const Element& window : windows.value_or(std::vector<Element>{}))
            keys.push_back(desktop->accessibility().key(window));
        return keys;
    }

    [[nodiscard]] std::uintptr_t key(WindowHandle window) {
        return desktop->accessibility().key(desktop->element(window));
    }
};

TEST_F(AccessibilityReadContract, AWindowsFrameIsItsVisibleOuterFrame) {
    const auto window = openWindow({.axFrame = {200, 150, 640, 480}});

    const Rect axFrame = readFrame(desktop->element(window));

    EXPECT_EQ(axFrame, desktop->actualFrame(window));
    EXPECT_EQ(axFrame, (Rect{200, 150, 640, 480}));
}

TEST_F(AccessibilityReadContract, PositionsOnTheSecondDisplayAreRelativeToThePrimaryDisplay) {
    const auto window = openWindow({.axFrame = {1600, 500, 640, 480}});

    EXPECT_EQ(readFrame(desktop->element(window)), (Rect{1600, 500, 640, 480}));
}

TEST_F(AccessibilityReadContract, AnOrdinaryWindowHasTheRoleAndSubroleOfAStandardWindow) {
    const Element window = desktop->element(openWindow());

    EXPECT_EQ(read<std::string>(window, attribute::kRole), "AXWindow");
    EXPECT_EQ(read<std::string>(window, attribute::kSubrole), "AXStandardWindow");
    EXPECT_FALSE(read<bool>(window, attribute::kMinimized).value_or(false));
    EXPECT_FALSE(read<bool>(window, attribute::kFullScreen).value_or(false));
}

TEST_F(AccessibilityReadContract, AMinimizedWindowReportsThatItIsMinimized) {
    const auto window = openWindow();
    desktop->minimize(window);

    EXPECT_EQ(read<bool>(desktop->element(window), attribute::kMinimized), true);
}

TEST_F(AccessibilityReadContract, AFullScreenWindowReportsThatItIsFullScreen) {
    const auto window = openWindow();
    desktop->enterFullScreen(window);

    EXPECT_EQ(read<bool>(desktop->element(window), attribute::kFullScreen), true);
}

TEST_F(AccessibilityReadContract, AnUnknownAttributeHasNoValue) {
    const Element window = desktop->element(openWindow());

    EXPECT_FALSE(desktop->accessibility().copyAttribute(window, "AXNoSuchThing"));
    EXPECT_FALSE(desktop->accessibility().copyAttribute(window, ""));
}

TEST_F(AccessibilityReadContract, AnElementWithoutAHandleHasNoValues) {
    const Element nothing;

    EXPECT_FALSE(desktop->accessibility().copyAttribute(nothing, attribute::kPosition));
    EXPECT_FALSE(desktop->accessibility().pid(nothing));
}

TEST_F(AccessibilityReadContract, TheFocusedWindowIsTheOneWithTheKeyboardFocus) {
    const auto application = desktop->launchApplication("org.example.editor");
    const auto first = desktop->openWindow(application, {});
    const auto second = desktop->openWindow(application, {});
    const Element element = desktop->accessibility().application(desktop->pid(application));

    for (const auto window : {first, second, first}) {
        desktop->focus(window);
        const auto focused = read<Element>(element, attribute::kFocusedWindow);
        ASSERT_TRUE(focused);
        EXPECT_EQ(desktop->accessibility().key(*focused), key(window));
    }
}

TEST_F(AccessibilityReadContract, AnApplicationListsItsOwnWindowsFrontToBack) {
    const auto application = desktop->launchApplication("org.example.editor");
    const auto first = desktop->openWindow(application, {});
    const auto second = desktop->openWindow(application, {});
    const auto foreign = openWindow();
    desktop->focus(foreign);
    desktop->focus(first);

    EXPECT_EQ(keysOfWindows(application), (std::vector{key(first), key(second)}));
}

TEST_F(AccessibilityReadContract, AWindowKeepsItsKeyAndDifferentWindowsHaveDifferentKeys) {
    const auto first = openWindow();
    const auto second = openWindow();
    const auto keyOfFirst = key(first);

    EXPECT_EQ(key(first), keyOfFirst);
    EXPECT_NE(key(second), keyOfFirst);

    writeFrame(desktop->element(first), {50, 60, 500, 400});
    EXPECT_EQ(key(first), keyOfFirst);
}

TEST_F(AccessibilityReadContract, AnElementHasTheProcessIdOfItsOwner) {
    const auto application = desktop->launchApplication("org.example.editor");
    const auto window = desktop->openWindow(application, {});
    const ProcessId pid = desktop->pid(application);

    EXPECT_EQ(desktop->accessibility().pid(desktop->element(window)), pid);
    EXPECT_EQ(desktop->accessibility().pid(desktop->accessibility().application(pid)), pid);
}

TEST_F(AccessibilityReadContract, AWindowBelongsToTheApplicationOfItsProcess) {
    const auto application = desktop->launchApplication("org.example.editor");
    const auto window = desktop->openWindow(application, {});
    const auto owner = desktop->accessibility().owner(desktop->element(window));

    ASSERT_TRUE(owner);
    EXPECT_EQ(owner->processIdentifier, desktop->pid(application));
    EXPECT_EQ(owner->bundleIdentifier, "org.example.editor");
    EXPECT_EQ(owner, desktop->workspace().runningApplication(desktop->pid(application)));
    EXPECT_FALSE(desktop->accessibility().owner(Element()));
}

TEST_F(AccessibilityReadContract, AClosedWindowHasNoValues) {
    const auto window = openWindow();
    const Element element = desktop->element(window);
    desktop->closeWindow(window);

    for (const auto name : {attribute::kPosition, attribute::kSize, attribute::kRole, attribute::kMinimized})
        EXPECT_FALSE(desktop->accessibility().copyAttribute(element, name)) << name;
}

TEST_F(AccessibilityReadContract, AClosedWindowIsNotAttributedToAnotherProcess) {
    const auto application = desktop->launchApplication("org.example.editor");
    const auto window = desktop->openWindow(application, {});
    const Element element = desktop->element(window);
    desktop->closeWindow(window);

    const ProcessId owner = desktop->pid(application);
    EXPECT_EQ(desktop->accessibility().pid(element).value_or(owner), owner);
}

TEST_F(AccessibilityReadContract, AKilledApplicationHasNoValues) {
    const auto application = desktop->launchApplication("org.example.editor");
    const Element window = desktop->element(desktop->openWindow(application, {}));
    const Element element = desktop->accessibility().application(desktop->pid(application));
    desktop->killApplication(application);

    EXPECT_FALSE(desktop->accessibility().copyAttribute(window, attribute::kPosition));
    EXPECT_FALSE(desktop->accessibility().copyAttribute(element, attribute::kFocusedWindow));
    EXPECT_TRUE(
        read<std::vector<Element>>(element, attribute::kWindows).value_or(std::vector<Element>{}).empty());
}

TEST_F(AccessibilityReadContract, AnInvalidProcessIdHasNoValues) {
    const Element element = desktop->accessibility().application(-1);

    EXPECT_FALSE(desktop->accessibility().copyAttribute(element, attribute::kFocusedWindow));
    EXPECT_FALSE(desktop->accessibility().pid(element));
}

} // namespace
} // namespace tessarel::contract
