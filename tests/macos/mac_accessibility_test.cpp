// SPDX-License-Identifier: MIT

#include "macos/mac_test.h"

#include <chrono>
#include <limits>
#include <stdexcept>
#include <utility>

namespace tessarel::macos {
namespace {

using namespace std::chrono_literals;

class MacAccessibilityTest : public MacTest {
protected:
    [[nodiscard]] Element found(const Point& axPoint) {
        return accessibility().elementAtPosition(accessibility().systemWide(), axPoint).value();
    }
    [[nodiscard]] MacAccessibility& accessibility() { return desktop->accessibility; }

    fakemac::WindowNumber window = fakemac::openWindow({.pid = kEditor, .axFrame = {200, 150, 640, 480}});
    Element editor = desktop->accessibility.application(kEditor);
};

TEST_F(MacAccessibilityTest, APositionIsWrittenAsAPointAndASizeAsASize) {
    const Element element = found({300, 200});

    accessibility().setAttribute(element, attribute::kPosition, Point{10, 20});
    accessibility().setAttribute(element, attribute::kSize, Size{300, 400});

    const std::string name = "window " + std::to_string(window);
    EXPECT_EQ(fakemac::mac().writes, (Lines{name + " AXPosition 10 20", name + " AXSize 300 400"}));
}

TEST_F(MacAccessibilityTest, AMessagingTimeoutAppliesToTheObjectAndItsCopiesOnly) {
    const Element limited = found({300, 200});
    const Element copy = limited;
    const Element equal = found({300, 200});
    fakemac::mac().applications.at(kEditor).answers = false;

    accessibility().setMessagingTimeout(limited, 250ms);
    (void)accessibility().copyAttribute(copy, attribute::kRole);
    (void)accessibility().copyAttribute(equal, attribute::kRole);

    EXPECT_EQ(fakemac::mac().waits, (std::vector<double>{0.25, 6}));
}

TEST_F(MacAccessibilityTest, TheSystemWideTimeoutAppliesToElementsWithoutTheirOwn) {
    fakemac::mac().applications.at(kEditor).answers = false;
    accessibility().setMessagingTimeout(accessibility().systemWide(), 500ms);

    (void)accessibility().copyAttribute(editor, attribute::kRole);

    EXPECT_EQ(fakemac::mac().waits, std::vector<double>{0.5});
    accessibility().setMessagingTimeout(accessibility().systemWide(), 0ms);
}

TEST_F(MacAccessibilityTest, APartOfAWindowHasAnAttributeForItsWindow) {
    fakemac::mac().windows.at(window).partRole = "AXButton";

    const Element part = found({300, 200});
    const auto whole = accessibility().copyAttribute(part, attribute::kWindow);

    ASSERT_TRUE(whole);
    const auto role = accessibility().copyAttribute(part, attribute::kRole);
    ASSERT_TRUE(role);
    EXPECT_EQ(std::get<std::string>(*role), "AXButton");
    EXPECT_NE(accessibility().key(std::get<Element>(*whole)), accessibility().key(part));
}

TEST_F(MacAccessibilityTest, NumbersAndBooleansAreDistinguished) {
    fakemac::mac().applications.at(kEditor).numbers["AXMinimized"] = 1;
    fakemac::mac().applications.at(kEditor).enhancedInterface = true;

    const auto number = accessibility().copyAttribute(editor, attribute::kMinimized);
    const auto truth = accessibility().copyAttribute(editor, attribute::kEnhancedUserInterface);
    ASSERT_TRUE(number && truth);
    EXPECT_EQ(std::get<double>(*number), 1);
    EXPECT_TRUE(std::get<bool>(*truth));
}

TEST_F(MacAccessibilityTest, AValueOfAnUnknownTypeIsEmpty) {
    fakemac::mac().windows.at(window).odd = {{"AXPosition", fakemac::Odd::Rectangle},
                                             {"AXRole", fakemac::Odd::Unknown}};
    const Element element = found({300, 200});

    EXPECT_FALSE(accessibility().copyAttribute(element, attribute::kPosition));
    EXPECT_FALSE(accessibility().copyAttribute(element, attribute::kRole));
}

TEST_F(MacAccessibilityTest, AWindowWhoseFrameIsNoFrameCanBePlaced) {
    for (const auto odd :
         {fakemac::Odd::Unknown, fakemac::Odd::Text, fakemac::Odd::Rectangle, fakemac::Odd::MixedList}) {
        fakemac::mac().windows.at(window).axFrame = {200, 150, 640, 480};
        fakemac::mac().windows.at(window).odd = {{"AXPosition", odd}, {"AXSize", odd}};
        const Element element = found({300, 200});
        accessibility().setAttribute(element, attribute::kPosition, Point{10, 20});

        EXPECT_EQ(fakemac::mac().windows.at(window).axFrame, (Rect{10, 20, 640, 480}));
    }
}

TEST_F(MacAccessibilityTest, EntriesOfAListThatAreNoElementsAreLeftOut) {
    fakemac::mac().windows.at(window).odd = {{"AXWindows", fakemac::Odd::MixedList}};
    const Element element = found({300, 200});

    const auto list = accessibility().copyAttribute(element, attribute::kWindows);

    ASSERT_TRUE(list);
    const auto& elements = std::get<std::vector<Element>>(*list);
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_EQ(accessibility().key(elements.front()), accessibility().key(element));
}

TEST_F(MacAccessibilityTest, TheEnhancedUserInterfaceCanBeSwitchedOff) {
    fakemac::mac().applications.at(kEditor).enhancedInterface = true;

    accessibility().setAttribute(editor, attribute::kEnhancedUserInterface, false);

    EXPECT_EQ(fakemac::mac().applications.at(kEditor).enhancedInterface, false);
}

TEST_F(MacAccessibilityTest, ValuesThatTheSystemCannotExpressAreNotWritten) {
    const AttributeValue values[] = {1.5,
                                     std::numeric_limits<double>::infinity(),
                                     std::string("text"),
                                     std::string("\xff not UTF-8"),
                                     editor,
                                     Element{},
                                     std::vector<Element>{editor}};
    for (const AttributeValue& value : values)
        accessibility().setAttribute(found({300, 200}), attribute::kPosition, value);

    EXPECT_EQ(fakemac::mac().valuesGiven, 2) << "1.5 and \"text\"";
    EXPECT_EQ(fakemac::mac().writes, Lines());
    EXPECT_EQ(fakemac::mac().windows.at(window).axFrame, (Rect{200, 150, 640, 480}));
}

TEST_F(MacAccessibilityTest, WithoutPermissionReadsAreEmptyAndObserversNull) {
    const Element element = found({300, 200});
    fakemac::mac().trusted = false;

    EXPECT_FALSE(accessibility().copyAttribute(element, attribute::kRole));
    EXPECT_FALSE(accessibility().elementAtPosition(accessibility().systemWide(), {300, 200}));
    EXPECT_FALSE(accessibility().onWindowCreated(editor, [](const Element&) {}));
}

TEST_F(MacAccessibilityTest, ASuccessWithoutAResultCountsAsAFailure) {
    fakemac::mac().givesNothing = true;

    EXPECT_FALSE(accessibility().copyAttribute(editor, attribute::kRole));
    EXPECT_FALSE(accessibility().elementAtPosition(accessibility().systemWide(), {300, 200}));
    EXPECT_FALSE(accessibility().onWindowCreated(editor, [](const Element&) {}));
}

TEST_F(MacAccessibilityTest, TheSystemWideElementHasNoProcessId) {
    EXPECT_FALSE(accessibility().pid(accessibility().systemWide()));
}

TEST_F(MacAccessibilityTest, AnApplicationThatRefusesNotificationsYieldsNull) {
    fakemac::mac().applications.at(kEditor).allowsObservers = false;

    EXPECT_FALSE(accessibility().onWindowCreated(editor, [](const Element&) {}));
    EXPECT_FALSE(accessibility().onWindowClosed(found({300, 200}), [] {}));
}

TEST_F(MacAccessibilityTest, NoProgramIsAskedForTheExcessOfItsFrame) {
    const Element element = found({300, 200});
    fakemac::mac().applications.at(kEditor).answers = false;

    EXPECT_FALSE(accessibility().copyAttribute(element, attribute::kFrameExcess));

    EXPECT_EQ(fakemac::mac().waits, std::vector<double>());
}

/// Counts the requests to an application that cannot be observed yet.
class MacPatienceTest : public MacAccessibilityTest {
protected:
    [[nodiscard]] SubscriptionPtr observe() {
        return accessibility().onWindowCreated(editor, [this](const Element&) { ++created; });
    }
    [[nodiscard]] static fakemac::Application& program() { return fakemac::mac().applications.at(kEditor); }
    [[nodiscard]] static int requests() { return std::exchange(fakemac::mac().observationRequests, 0); }
    static void openWindow() { fakemac::openWindow({.pid = kEditor, .axFrame = {0, 0, 100, 100}}); }
    void letWaitsTakeTime() {
        fakemac::mac().waited = [this](double seconds) {
            clock.block(
                std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(seconds)));
        };
    }

    int created = 0;
};

TEST_F(MacPatienceTest, AnApplicationThatCannotCompleteIsRetriedFiveTimes) {
    program().failures = 5;
    const auto observer = observe();
    ASSERT_TRUE(observer);
    EXPECT_EQ(requests(), 1);

    for (const auto delay : {20ms, 40ms, 80ms, 160ms, 320ms}) {
        openWindow();
        turn(delay - 1ns);
        EXPECT_EQ(requests(), 0) << delay.count();
        turn(1ns);
        EXPECT_EQ(requests(), 1) << delay.count();
    }

    EXPECT_EQ(created, 0);
    openWindow();
    EXPECT_EQ(created, 1);
    turn(1min);
    EXPECT_EQ(requests(), 0);
}

TEST_F(MacPatienceTest, AfterFiveRetriesItIsRetriedAtItsNextActivation) {
    program().failures = 7;
    const auto observer = observe();
    turn(1min);
    EXPECT_EQ(requests(), 6);

    fakemac::focus(window);
    EXPECT_EQ(requests(), 1);
    turn(20ms);
    EXPECT_EQ(requests(), 1);
    openWindow();

    EXPECT_EQ(created, 1);
    fakemac::launch(8, {});
    fakemac::focus(fakemac::openWindow({.pid = 8, .axFrame = {0, 0, 100, 100}}));
    fakemac::focus(window);
    EXPECT_EQ(requests(), 0) << "the application is observed already";
}

TEST_F(MacPatienceTest, AnActivationThatSucceedsEndsTheRetries) {
    program().failures = 1;
    const auto observer = observe();
    EXPECT_EQ(requests(), 1);

    fakemac::focus(window);
    EXPECT_EQ(requests(), 1);
    turn(1min);

    EXPECT_EQ(requests(), 0);
}

TEST_F(MacPatienceTest, TheActivationOfAnotherApplicationCausesNoRetry) {
    program().failures = 7;
    const auto observer = observe();
    turn(1min);
    (void)requests();

    fakemac::launch(8, {});
    fakemac::focus(fakemac::openWindow({.pid = 8, .axFrame = {0, 0, 100, 100}}));

    EXPECT_EQ(requests(), 0);
}

TEST_F(MacPatienceTest, AHangingApplicationIsNotRetriedBeforeItsNextActivation) {
    letWaitsTakeTime();
    program().answers = false;
    accessibility().setMessagingTimeout(editor, 100ms);
    const auto observer = observe();
    ASSERT_TRUE(observer);
    turn(1min);
    EXPECT_EQ(fakemac::mac().waits.size(), 1U);

    program().answers = true;
    fakemac::focus(window);
    openWindow();

    EXPECT_EQ(created, 1);
}

TEST_F(MacPatienceTest, AnErrorWithin100MillisecondsIsRetried) {
    letWaitsTakeTime();
    program().answers = false;
    accessibility().setMessagingTimeout(editor, 99ms);
    const auto observer = observe();

    turn(1min);

    EXPECT_EQ(fakemac::mac().waits.size(), 6U);
}

TEST_F(MacPatienceTest, ARefusalIsNotRetried) {
    program().allowsObservers = false;

    EXPECT_FALSE(observe());

    turn(1min);
    EXPECT_EQ(requests(), 1);
}

TEST_F(MacPatienceTest, NothingIsRetriedAfterTheSubscriptionIsDestroyed) {
    program().failures = 3;
    auto observer = observe();
    turn(20ms);
    (void)requests();

    observer.reset();
    turn(1min);
    fakemac::focus(window);

    EXPECT_EQ(requests(), 0);
}

TEST_F(MacPatienceTest, ObservingTheCloseOfAWindowIsNotRetried) {
    program().failures = 1;

    EXPECT_FALSE(accessibility().onWindowClosed(found({300, 200}), [] {}));

    turn(1min);
    EXPECT_EQ(requests(), 1);
}

TEST_F(MacAccessibilityTest, NewWindowsAreReportedWhileAMenuIsOpen) {
    int created = 0;
    const auto observer = accessibility().onWindowCreated(editor, [&](const Element&) { ++created; });

    fakemac::mac().loopMode = fakemac::LoopMode::EventTracking;
    fakemac::openWindow({.pid = kEditor, .axFrame = {0, 0, 100, 100}});

    EXPECT_EQ(created, 1);
}

TEST_F(MacAccessibilityTest, AHandlerMayDestroyItsObserver) {
    int created = 0;
    SubscriptionPtr observer;
    observer = accessibility().onWindowCreated(editor, [&](const Element&) {
        observer.reset();
        ++created; // the captures must still be alive
    });

    for (int i = 0; i < 2; ++i)
        fakemac::openWindow({.pid = kEditor, .axFrame = {0, 0, 100, 100}});

    EXPECT_EQ(created, 1);
}

TEST_F(MacAccessibilityTest, AQueuedNotificationDoesNotReachADestroyedObserver) {
    int created = 0;
    SubscriptionPtr observer;
    observer = accessibility().onWindowCreated(editor, [&](const Element&) {
        observer.reset();
        ++created;
    });

    fakemac::mac().notificationsComeTwice = true;
    fakemac::openWindow({.pid = kEditor, .axFrame = {0, 0, 100, 100}});

    EXPECT_EQ(created, 1);
}

TEST_F(MacAccessibilityTest, AnObserverMayOutliveTheBackEnd) {
    int created = 0;
    const auto observer = accessibility().onWindowCreated(editor, [&](const Element&) { ++created; });
    editor = {};
    desktop.reset();

    fakemac::openWindow({.pid = kEditor, .axFrame = {0, 0, 100, 100}});

    EXPECT_EQ(created, 1);
}

TEST_F(MacAccessibilityTest, NoExceptionLeavesACallback) {
    const auto observer = accessibility().onWindowCreated(
        editor, [](const Element&) { throw std::runtime_error("of a test"); });

    EXPECT_NO_THROW(fakemac::openWindow({.pid = kEditor, .axFrame = {0, 0, 100, 100}}));
}

} // namespace
} // namespace tessarel::macos
