// SPDX-License-Identifier: MIT

#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace tessarel::x11 {
namespace {

using x11test::WindowOptions;

class AccessibilityTest : public X11Test {
protected:
    [[nodiscard]] std::optional<std::string> role(xcb_window_t window) {
        return read<std::string>(elementOf(window), attribute::kRole);
    }
    [[nodiscard]] std::optional<std::string> subrole(xcb_window_t window) {
        return read<std::string>(elementOf(window), attribute::kSubrole);
    }
    /// Opens a window without waiting for the focus, which some window types do not take.
    [[nodiscard]] xcb_window_t show(const WindowOptions& options) {
        const xcb_window_t window = client.open(options);
        EXPECT_TRUE(observer.waitUntil([&] { return observer.managed(window); }));
        settle();
        return window;
    }
};

TEST_F(AccessibilityTest, AFrameIncludesTheDecoration) {
    const xcb_window_t window = open();
    ASSERT_NE(observer.outerFrame(window), observer.clientFrame(window))
        << "the window manager adds no decoration";

    EXPECT_EQ(readFrame(elementOf(window)), actualFrame(window));
}

TEST_F(AccessibilityTest, AFrameExcludesTheShadows) {
    const xcb_window_t window =
        open({.client = {300, 200, 600, 400}, .shadow = {{10, 11, 12, 13}}, .decorated = false});

    EXPECT_EQ(readFrame(elementOf(window)).size(), (Size{579, 375}));
    EXPECT_EQ(readFrame(elementOf(window)), actualFrame(window));
}

TEST_F(AccessibilityTest, AWindowWithoutDecorationIsItsOwnFrame) {
    const xcb_window_t window = open({.client = {300, 200, 600, 400}, .decorated = false});

    EXPECT_EQ(readFrame(elementOf(window)), (Rect{300, 200, 600, 400}));
}

TEST_F(AccessibilityTest, AFrameThatIsLargerThanItsWindowAndDecorationHasAnExcess) {
    const xcb_window_t window = open();
    EXPECT_EQ(read<Size>(elementOf(window), attribute::kFrameExcess), (Size{0, 0}));

    const auto before = observer.topLevelFrame(window);
    ASSERT_TRUE(before);
    const xcb_window_t frame = observer.topLevel(window);
    const std::array size = {static_cast<std::uint32_t>(before->width) + 5,
                             static_cast<std::uint32_t>(before->height) + 7};
    const std::uint32_t unredirected = 1;
    xcb_connection_t* const xcb = observer.x().get();
    xcb_change_window_attributes(xcb, frame, XCB_CW_OVERRIDE_REDIRECT, &unredirected);
    xcb_configure_window(xcb, frame, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size.data());
    observer.x().roundTrip();
    settle();

    EXPECT_EQ(read<Size>(elementOf(window), attribute::kFrameExcess), (Size{5, 7}));
}

TEST_F(AccessibilityTest, AMaximizedWindowHasNoExcess) {
    const xcb_window_t window = open();
    observer.changeState(window, x11test::StateChange::Add, "_NET_WM_STATE_MAXIMIZED_VERT");
    ASSERT_TRUE(
        observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_MAXIMIZED_VERT"); }));
    settle();

    EXPECT_FALSE(accessibility.copyAttribute(elementOf(window), attribute::kFrameExcess));
}

TEST_F(AccessibilityTest, TheWindowTypeDeterminesRoleAndSubrole) {
    const auto ofType = [&](const char* type) {
        return show({.type = std::string("_NET_WM_WINDOW_TYPE_") + type});
    };
    struct Case {
        const char* type;
        const char* role;
        std::optional<std::string> subrole;
    };
    const std::vector<Case> cases = {
        {"NORMAL", "AXWindow", "AXStandardWindow"},  {"DIALOG", "AXWindow", "AXDialog"},
        {"UTILITY", "AXWindow", "AXFloatingWindow"}, {"SPLASH", "AXWindow", "AXFloatingWindow"},
        {"TOOLBAR", "AXWindow", "AXFloatingWindow"}, {"MENU", "AXWindow", "AXFloatingWindow"},
        {"DOCK", "AXUnknown", std::nullopt},         {"DESKTOP", "AXUnknown", std::nullopt},
    };

    for (const auto& [type, expectedRole, expectedSubrole] : cases) {
        const xcb_window_t window = ofType(type);
        EXPECT_EQ(role(window), expectedRole) << type;
        EXPECT_EQ(subrole(window), expectedSubrole) << type;
    }
}

TEST_F(AccessibilityTest, WithoutAKnownTypeOnlyTransientWindowsAreDialogs) {
    const xcb_window_t plain = show({});
    const xcb_window_t odd = show({.type = "_EXAMPLE_WINDOW_TYPE"});
    const xcb_window_t transient = show({.transientFor = plain});

    EXPECT_EQ(subrole(plain), "AXStandardWindow");
    EXPECT_EQ(subrole(odd), "AXStandardWindow");
    EXPECT_EQ(subrole(transient), "AXDialog");
    for (const xcb_window_t window : {plain, odd, transient})
        EXPECT_EQ(role(window), "AXWindow");
}

TEST_F(AccessibilityTest, AShadedWindowIsNotMinimised) {
    const xcb_window_t window = open();
    observer.changeState(window, x11test::StateChange::Add, "_NET_WM_STATE_SHADED");
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_SHADED"); }));

    EXPECT_EQ(read<bool>(elementOf(window), attribute::kMinimized), false);
}

TEST_F(AccessibilityTest, AMinimisedWindowHasAnElement) {
    const xcb_window_t window = open();
    observer.iconify(window);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_HIDDEN"); }));

    EXPECT_EQ(read<bool>(elementOf(window), attribute::kMinimized), true);
}

TEST_F(AccessibilityTest, AMinimisedWindowIsMinimisedEvenIfItIsShaded) {
    const xcb_window_t window = open();
    observer.iconify(window);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_HIDDEN"); }));
    observer.changeState(window, x11test::StateChange::Add, "_NET_WM_STATE_SHADED");
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_SHADED"); }));

    // openbox still shows an animation.
    EXPECT_TRUE(observer.waitUntil([&] {
        settle();
        return read<bool>(elementOf(window), attribute::kMinimized) == true;
    }));
}

TEST_F(AccessibilityTest, TheWindowAttributeOfAWindowIsTheWindowItself) {
    const xcb_window_t window = open();

    const auto itself = read<Element>(elementOf(window), "AXWindow");

    ASSERT_TRUE(itself);
    EXPECT_EQ(accessibility.key(*itself), accessibility.key(elementOf(window)));
    EXPECT_EQ(accessibility.pid(*itself), client.pid());
}

TEST_F(AccessibilityTest, NoApplicationHasAnEnhancedInterface) {
    (void)open();
    const Element application = accessibility.application(client.pid());

    EXPECT_FALSE(accessibility.copyAttribute(application, attribute::kEnhancedUserInterface));
    accessibility.setAttribute(application, attribute::kEnhancedUserInterface, true);
    EXPECT_FALSE(accessibility.copyAttribute(application, attribute::kEnhancedUserInterface));
}

TEST_F(AccessibilityTest, AnApplicationIsFocusedOnlyWhenTheActiveWindowIsItsOwn) {
    const xcb_window_t window = open();
    x11test::TestClient other(desktop.server);
    const xcb_window_t foreign = other.open();
    ASSERT_TRUE(observer.waitUntil([&] { return observer.managed(foreign); }));
    observer.activate(foreign);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == foreign; }));
    settle();

    EXPECT_FALSE(read<Element>(accessibility.application(client.pid()), attribute::kFocusedWindow));
    observer.activate(window);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == window; }));
    settle();
    EXPECT_TRUE(read<Element>(accessibility.application(client.pid()), attribute::kFocusedWindow));
}

TEST_F(AccessibilityTest, AWindowWithoutAProcessIdPropertyStillHasItsProcess) {
    const xcb_window_t window = open({.processId = false});

    EXPECT_EQ(accessibility.pid(elementOf(window)), client.pid());
}

TEST_F(AccessibilityTest, AForgedProcessIdIsIgnored) {
    const xcb_window_t window = open();
    client.setCardinals(window, "_NET_WM_PID", {static_cast<std::uint32_t>(getpid())});
    settle();

    EXPECT_EQ(accessibility.pid(elementOf(window)), client.pid());
    EXPECT_FALSE(accessibility.copyAttribute(accessibility.application(getpid()), attribute::kWindows));
}

TEST_F(AccessibilityTest, OwnWindowsAreNotReturned) {
    xcb_connection_t* const xcb = observer.x().get();
    const xcb_window_t own = xcb_generate_id(xcb);
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, own, observer.root(), 10, 10, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(xcb, own);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.managed(own); }));
    observer.activate(own);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == own; }));
    settle();

    const Element self = accessibility.application(getpid());
    EXPECT_FALSE(accessibility.copyAttribute(self, attribute::kWindows));
    EXPECT_FALSE(accessibility.copyAttribute(self, attribute::kFocusedWindow));
    EXPECT_EQ(workspace.frontmostApplication()->processIdentifier, getpid());

    xcb_destroy_window(xcb, own);
    observer.x().roundTrip();
}

TEST_F(AccessibilityTest, KeysOfApplicationsAndWindowsAreDistinct) {
    const xcb_window_t window = open();
    const Element application = accessibility.application(client.pid());
    const Element sameNumber = accessibility.application(static_cast<ProcessId>(window));

    EXPECT_NE(accessibility.key(application), accessibility.key(elementOf(window)));
    EXPECT_NE(accessibility.key(sameNumber), accessibility.key(elementOf(window)));
    EXPECT_EQ(accessibility.key(application), accessibility.key(accessibility.application(client.pid())));
}

TEST_F(AccessibilityTest, AReusedWindowIdIsAnotherWindow) {
    auto first = std::make_unique<x11test::TestClient>(desktop.server);
    const auto openIn = [&](x11test::TestClient& program) {
        const xcb_window_t window = program.open();
        EXPECT_TRUE(observer.waitUntil([&] { return observer.managed(window); }));
        settle();
        return window;
    };
    const xcb_window_t window = openIn(*first);
    const auto elements =
        read<std::vector<Element>>(accessibility.application(first->pid()), attribute::kWindows);
    ASSERT_TRUE(elements);
    const Element gone = elements->front();
    const auto goneKey = accessibility.key(gone);
    first.reset();
    ASSERT_TRUE(observer.waitUntil([&] { return !observer.managed(window); }));
    x11test::TestClient second(desktop.server);
    ASSERT_EQ(openIn(second), window) << "the server gives the lowest free ids";
    const Rect before = actualFrame(window);

    writeFrame(gone, {10, 40, 300, 200});

    EXPECT_TRUE(readFrame(gone).isNull());
    EXPECT_FALSE(accessibility.pid(gone));
    EXPECT_EQ(actualFrame(window), before);
    const auto present =
        read<std::vector<Element>>(accessibility.application(second.pid()), attribute::kWindows);
    ASSERT_TRUE(present);
    EXPECT_NE(accessibility.key(present->front()), goneKey);
}

TEST_F(AccessibilityTest, ReadsAreCachedForOneTurn) {
    const xcb_window_t window = open();
    const Element element = elementOf(window);
    const Rect before = readFrame(element);
    observer.moveOuterFrame(window, {40, 50, 300, 200});
    ASSERT_TRUE(observer.settle());
    EXPECT_EQ(readFrame(element), before);

    driver.hear();

    EXPECT_EQ(readFrame(element), (Rect{40, 50, 300, 200}));
}

TEST_F(AccessibilityTest, CoordinatesStartAtThePrimaryMonitorWhereverItIs) {
    desktop.server.setMonitors(
        {{.name = "L", .x = 0, .y = 0, .width = 800, .height = 900, .primary = false},
         {.name = "R", .x = 800, .y = 0, .width = 800, .height = 900, .primary = true}});
    settle();
    const xcb_window_t window = open();
    const Element element = elementOf(window);

    writeFrame(element, {-700, 100, 400, 300});

    EXPECT_EQ(readFrame(element), (Rect{-700, 100, 400, 300}));
    EXPECT_EQ(actualFrame(window), (Rect{100, 100, 400, 300}));
    desktop.server.setMonitors({});
}

} // namespace
} // namespace tessarel::x11
