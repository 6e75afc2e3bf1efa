// SPDX-License-Identifier: MIT

#include "platform/sim/sim_desktop.h"
#include "support/main_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace tessarel::sim {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

/// Behaviour of the simulated programs beyond the contract of the port.
class SimAccessibilityTest : public ::testing::Test {
protected:
    static constexpr Rect kStart{200, 150, 640, 480};

    SimAccessibilityTest() { desktop.addScreen({.frame = {0, 0, 1440, 900}}); }

    SimApplication& editor() { return desktop.applicationOf(window); }
    Element app() { return desktop.accessibility().application(desktop.window(window).pid); }
    void move(const Point& to) {
        desktop.accessibility().setAttribute(desktop.element(window), attribute::kPosition, to);
    }
    void resize(const Size& to) {
        desktop.accessibility().setAttribute(desktop.element(window), attribute::kSize, to);
    }
    std::optional<Point> position() {
        const auto value =
            desktop.accessibility().copyAttribute(desktop.element(window), attribute::kPosition);
        return value ? std::optional(std::get<Point>(*value)) : std::nullopt;
    }

    SimDesktop desktop;
    WindowId window = desktop.openWindow("org.example.editor", kStart);
};

TEST_F(SimAccessibilityTest, SizesStayBetweenMinimumAndMaximum) {
    desktop.window(window).minimum = {300, 200};
    desktop.window(window).maximum = {800, 600};

    resize({10, 10});
    EXPECT_EQ(desktop.frame(window).size(), (Size{300, 200}));
    resize({5000, 5000});
    EXPECT_EQ(desktop.frame(window).size(), (Size{800, 600}));
}

TEST_F(SimAccessibilityTest, SizesAreWholeStepsRoundedDown) {
    desktop.window(window).step = {7, 14};

    resize({707, 861});

    EXPECT_EQ(desktop.frame(window), (Rect{200, 150, 707, 854}));
}

TEST_F(SimAccessibilityTest, AWriteMayTakeEffectWithADelay) {
    desktop.window(window).settlingTime = 50ms;

    resize({300, 200});

    EXPECT_EQ(desktop.frame(window), kStart);
    desktop.advance(50ms);
    EXPECT_EQ(desktop.frame(window).size(), (Size{300, 200}));
}

TEST_F(SimAccessibilityTest, WindowsMayHaveTheSameKeyAndKeepItWhenTheyClose) {
    const WindowId other = desktop.openWindow("org.example.editor", kStart);
    const Element element = desktop.element(window);
    desktop.setKey(window, 7);
    desktop.setKey(other, 7);

    EXPECT_EQ(desktop.accessibility().key(element), 7U);
    EXPECT_EQ(desktop.accessibility().key(desktop.element(other)), 7U);
    desktop.close(window);
    EXPECT_EQ(desktop.accessibility().key(element), 7U);
}

TEST_F(SimAccessibilityTest, TheDesktopMayChangeAfterAnyWrite) {
    std::vector<std::string> lines;
    desktop.accessibility().setWriteHandler([&](const std::string& line) {
        lines.push_back(line);
        desktop.close(window);
    });

    resize({300, 200});

    EXPECT_THAT(lines, ElementsAre("write window 1 AXSize 300x200"));
    EXPECT_FALSE(position());
}

TEST_F(SimAccessibilityTest, SizesMayBeClippedAtTheEdgeOfTheDisplay) {
    desktop.addScreen({.frame = {1440, 0, 1920, 900}});
    desktop.window(window).cutAtDisplayEdge = true;

    resize({1800, 860});
    EXPECT_EQ(desktop.frame(window), (Rect{200, 150, 1240, 750}));

    move({1440, 0});
    resize({1800, 860});
    EXPECT_EQ(desktop.frame(window), (Rect{1440, 0, 1800, 860}));
}

TEST_F(SimAccessibilityTest, AProgramMayRefuseToBeMovedOrResized) {
    editor().refusesPosition = true;
    move({0, 0});
    resize({300, 200});
    EXPECT_EQ(desktop.frame(window), (Rect{200, 150, 300, 200}));

    editor() = {.bundleIdentifier = "org.example.editor", .refusesSize = true};
    move({0, 0});
    resize({500, 400});
    EXPECT_EQ(desktop.frame(window), (Rect{0, 0, 300, 200}));
}

TEST_F(SimAccessibilityTest, AFullScreenWindowKeepsItsFrame) {
    desktop.window(window).fullScreen = true;

    move({0, 0});
    resize({300, 200});

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(SimAccessibilityTest, ASlowReplyTakesItsTime) {
    editor().answerTime = 300ms;
    const auto start = desktop.mainQueue().now();

    EXPECT_EQ(position(), (Point{200, 150}));
    EXPECT_EQ(desktop.mainQueue().now() - start, 300ms);

    move({0, 0});
    EXPECT_EQ(desktop.mainQueue().now() - start, 600ms);
}

TEST_F(SimAccessibilityTest, AProgramThatNeverRepliesCostsTheTimeLimit) {
    editor().answerTime = 1h;
    const auto start = desktop.mainQueue().now();

    EXPECT_FALSE(position());
    EXPECT_EQ(desktop.mainQueue().now() - start, SimApplication::kTimeLimit);

    move({0, 0});
    EXPECT_EQ(desktop.mainQueue().now() - start, 2 * SimApplication::kTimeLimit);
    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(SimAccessibilityTest, NoWorkRunsWhileAReplyIsAwaited) {
    bool ran = false;
    asyncAfter(desktop.mainQueue(), 100ms, [&] { ran = true; });
    editor().answerTime = 300ms;

    (void)position();
    EXPECT_FALSE(ran);

    desktop.advance(0ms);
    EXPECT_TRUE(ran);
}

TEST_F(SimAccessibilityTest, AProgramMayExitBetweenTwoRequests) {
    editor().requestsUntilDeath = 2;
    const Element element = desktop.element(window);
    const ProcessId pid = desktop.window(window).pid;

    EXPECT_TRUE(desktop.accessibility().copyAttribute(element, attribute::kPosition));
    EXPECT_TRUE(desktop.accessibility().copyAttribute(element, attribute::kSize));
    EXPECT_FALSE(desktop.accessibility().copyAttribute(element, attribute::kRole));

    EXPECT_FALSE(desktop.workspace().runningApplication(pid));
    EXPECT_FALSE(desktop.workspace().frontmostApplication());
}

TEST_F(SimAccessibilityTest, WithTheEnhancedInterfaceOnAMoveTakesEffectLater) {
    editor().enhancedInterface = true;

    move({0, 0});
    EXPECT_EQ(position(), (Point{200, 150}));
    desktop.advance(SimApplication::kAnimation - 1ms);
    EXPECT_EQ(position(), (Point{200, 150}));

    desktop.advance(1ms);
    EXPECT_EQ(position(), (Point{0, 0}));
    EXPECT_EQ(desktop.frame(window), (Rect{0, 0, 640, 480}));
}

TEST_F(SimAccessibilityTest, WithTheEnhancedInterfaceSwitchedOffAMoveTakesEffectAtOnce) {
    editor().enhancedInterface = true;
    desktop.accessibility().setAttribute(app(), attribute::kEnhancedUserInterface, false);
    EXPECT_EQ(editor().enhancedInterface, false);

    move({0, 0});

    EXPECT_EQ(position(), (Point{0, 0}));
}

TEST_F(SimAccessibilityTest, AProgramWithoutAnEnhancedInterfaceCannotBeGivenOne) {
    desktop.accessibility().setAttribute(app(), attribute::kEnhancedUserInterface, true);

    EXPECT_FALSE(desktop.accessibility().copyAttribute(app(), attribute::kEnhancedUserInterface));
}

TEST_F(SimAccessibilityTest, AWindowMayReportWrongAttributes) {
    desktop.window(window).overrides["AXPosition"] = "nonsense";
    const auto nonsense =
        desktop.accessibility().copyAttribute(desktop.element(window), attribute::kPosition);
    ASSERT_TRUE(nonsense);
    EXPECT_TRUE(std::holds_alternative<std::string>(*nonsense));

    desktop.window(window).overrides["AXPosition"] = std::nullopt;
    EXPECT_FALSE(position());
}

TEST_F(SimAccessibilityTest, RequestsAreRecordedInOrder) {
    (void)position();
    resize({640.5, 480});
    move({-10, 20});
    desktop.accessibility().setAttribute(app(), attribute::kEnhancedUserInterface, true);

    EXPECT_THAT(desktop.takeRequests(),
                ElementsAre("read window 1 AXPosition", "write window 1 AXSize 640.5x480",
                            "write window 1 AXPosition -10,20",
                            "write application 101 AXEnhancedUserInterface true"));
    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(SimAccessibilityTest, WritesCanBeTakenAlone) {
    (void)position();
    move({0, 0});

    EXPECT_THAT(desktop.takeWrites(), ElementsAre("write window 1 AXPosition 0,0"));
}

TEST_F(SimAccessibilityTest, APartOfAWindowReportsItsRoleAndItsWindow) {
    desktop.window(window).partRole = "AXButton";
    SimAccessibility& port = desktop.accessibility();
    const auto part = port.elementAtPosition(port.systemWide(), {300, 160});
    ASSERT_TRUE(part);

    const auto role = port.copyAttribute(*part, attribute::kRole);
    ASSERT_TRUE(role);
    EXPECT_EQ(std::get<std::string>(*role), "AXButton");
    const auto owner = port.copyAttribute(*part, attribute::kWindow);
    ASSERT_TRUE(owner);
    EXPECT_EQ(port.key(std::get<Element>(*owner)), port.key(desktop.element(window)));
    EXPECT_NE(port.key(*part), port.key(desktop.element(window)));
    EXPECT_FALSE(port.copyAttribute(*part, attribute::kPosition));
}

TEST_F(SimAccessibilityTest, APartMayHaveNoWindowAttribute) {
    desktop.window(window).partRole = "AXButton";
    desktop.window(window).overrides["AXWindow"] = std::nullopt;
    SimAccessibility& port = desktop.accessibility();

    const auto part = port.elementAtPosition(port.systemWide(), {300, 160});

    EXPECT_FALSE(port.copyAttribute(*part, attribute::kWindow));
}

TEST_F(SimAccessibilityTest, ATimeLimitAppliesToItsElementOnly) {
    editor().answerTime = 1s;
    const Element limited = desktop.element(window);
    const Element copy = limited;
    desktop.accessibility().setMessagingTimeout(limited, 250ms);

    EXPECT_FALSE(desktop.accessibility().copyAttribute(copy, attribute::kPosition));
    EXPECT_EQ(desktop.mainQueue().now().time_since_epoch(), 250ms);
    EXPECT_TRUE(desktop.accessibility().copyAttribute(desktop.element(window), attribute::kPosition));
    EXPECT_EQ(desktop.mainQueue().now().time_since_epoch(), 1250ms);
}

TEST_F(SimAccessibilityTest, TheGlobalTimeLimitAppliesToElementsWithoutTheirOwn) {
    editor().answerTime = 1s;
    SimAccessibility& port = desktop.accessibility();
    port.setMessagingTimeout(port.systemWide(), 250ms);

    EXPECT_FALSE(position());
    EXPECT_FALSE(port.elementAtPosition(port.systemWide(), {300, 160}));
    EXPECT_EQ(desktop.mainQueue().now().time_since_epoch(), 500ms);
}

TEST_F(SimAccessibilityTest, HitTestsAndTimeLimitsAreRecorded) {
    SimAccessibility& port = desktop.accessibility();
    port.setMessagingTimeout(port.systemWide(), 250ms);
    const auto found = port.elementAtPosition(port.systemWide(), {300.5, 160});
    ASSERT_TRUE(found);
    port.setMessagingTimeout(*found, 100ms);

    EXPECT_THAT(desktop.takeRequests(),
                ElementsAre("limit desktop 250", "find 300.5,160", "limit window 1 100"));
}

} // namespace
} // namespace tessarel::sim
