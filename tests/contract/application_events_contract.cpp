// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

#include <algorithm>
#include <vector>

namespace tessarel::contract {
namespace {

/// Records all application events.
class ApplicationEventsContract : public ContractTest {
protected:
    struct Told {
        ApplicationEvent event;
        RunningApplication application;
        bool operator==(const Told&) const = default;
    };

    ApplicationEventsContract() {
        for (const auto event :
             {ApplicationEvent::Launched, ApplicationEvent::Activated, ApplicationEvent::Terminated})
            observers.push_back(
                desktop->workspace().addObserver(event, [this, event](const RunningApplication& app) {
                    told.push_back({event, app});
                }));
    }

    /// Returns how often `event` has been reported for the process.
    [[nodiscard]] auto count(ApplicationEvent event, ProcessId pid) const {
        return std::count_if(told.begin(), told.end(), [&](const Told& one) {
            return one.event == event && one.application.processIdentifier == pid;
        });
    }

    std::vector<Told> told;
    std::vector<SubscriptionPtr> observers;
};

TEST_F(ApplicationEventsContract, ALaunchIsReportedAtTheFirstWindowAtTheLatest) {
    const auto editor = desktop->launchApplication("org.example.editor");
    (void)desktop->openWindow(editor, {});

    const Told launch{ApplicationEvent::Launched, {desktop->pid(editor), "org.example.editor"}};
    EXPECT_EQ(std::count(told.begin(), told.end(), launch), 1);
}

TEST_F(ApplicationEventsContract, ASecondWindowIsNotReportedAsALaunch) {
    const auto editor = desktop->launchApplication("org.example.editor");
    desktop->closeWindow(desktop->openWindow(editor, {}));
    (void)desktop->openWindow(editor, {});

    EXPECT_EQ(count(ApplicationEvent::Launched, desktop->pid(editor)), 1);
    EXPECT_EQ(count(ApplicationEvent::Terminated, desktop->pid(editor)), 0);
}

TEST_F(ApplicationEventsContract, EachProcessOfAnApplicationIsReportedAsALaunch) {
    const auto first = desktop->launchApplication("org.example.editor");
    const auto second = desktop->launchApplication("org.example.editor");
    (void)desktop->openWindow(first, {});
    (void)desktop->openWindow(second, {});

    EXPECT_EQ(count(ApplicationEvent::Launched, desktop->pid(first)), 1);
    EXPECT_EQ(count(ApplicationEvent::Launched, desktop->pid(second)), 1);
}

TEST_F(ApplicationEventsContract, AnApplicationThatComesToTheFrontIsReportedAsActivated) {
    const auto editor = desktop->launchApplication("org.example.editor");
    const auto mail = desktop->launchApplication("org.example.mail");
    const auto editorWindow = desktop->openWindow(editor, {});
    const auto mailWindow = desktop->openWindow(mail, {});
    desktop->focus(editorWindow);
    told.clear();

    desktop->focus(mailWindow);

    EXPECT_EQ(told,
              (std::vector{Told{ApplicationEvent::Activated, {desktop->pid(mail), "org.example.mail"}}}));
}

TEST_F(ApplicationEventsContract, AFocusChangeWithinAnApplicationIsNoActivation) {
    const auto editor = desktop->launchApplication("org.example.editor");
    const auto first = desktop->openWindow(editor, {});
    const auto second = desktop->openWindow(editor, {});
    desktop->focus(first);
    told.clear();

    desktop->focus(second);

    EXPECT_TRUE(told.empty());
}

TEST_F(ApplicationEventsContract, ATerminationIsReportedWithProcessIdAndIdentifier) {
    const auto editor = desktop->launchApplication("org.example.editor");
    (void)desktop->openWindow(editor, {});
    const ProcessId pid = desktop->pid(editor);
    told.clear();

    desktop->killApplication(editor);

    EXPECT_EQ(told, (std::vector{Told{ApplicationEvent::Terminated, {pid, "org.example.editor"}}}));
}

TEST_F(ApplicationEventsContract, NothingIsReportedAfterTheSubscriptionIsDestroyed) {
    observers.clear();

    const auto editor = desktop->launchApplication("org.example.editor");
    desktop->focus(desktop->openWindow(editor, {}));
    desktop->killApplication(editor);

    EXPECT_TRUE(told.empty());
}

TEST_F(ApplicationEventsContract, EveryRunningApplicationIsListedOnce) {
    const auto editor = desktop->launchApplication("org.example.editor");
    const auto mail = desktop->launchApplication("org.example.mail");
    (void)desktop->openWindow(editor, {});
    (void)desktop->openWindow(mail, {});
    (void)desktop->openWindow(mail, {});

    const auto all = desktop->workspace().runningApplications();

    EXPECT_EQ(
        std::count(all.begin(), all.end(), RunningApplication{desktop->pid(editor), "org.example.editor"}),
        1);
    EXPECT_EQ(std::count(all.begin(), all.end(), RunningApplication{desktop->pid(mail), "org.example.mail"}),
              1);
}

/// Records the windows that an application with one window opens.
class WindowCreatedContract : public ContractTest {
protected:
    [[nodiscard]] SubscriptionPtr observe(AppHandle application) {
        AccessibilityPort& accessibility = desktop->accessibility();
        return accessibility.onWindowCreated(accessibility.application(desktop->pid(application)),
                                             [this](const Element& window) { created.push_back(window); });
    }

    AppHandle editor = desktop->launchApplication("org.example.editor");
    WindowHandle first = desktop->openWindow(editor, {});
    std::vector<Element> created;
};

TEST_F(WindowCreatedContract, ANewWindowIsReported) {
    const auto observer = observe(editor);
    ASSERT_TRUE(observer);

    const auto second = desktop->openWindow(editor, {});

    AccessibilityPort& accessibility = desktop->accessibility();
    ASSERT_EQ(created.size(), 1U);
    EXPECT_EQ(accessibility.key(created.front()), accessibility.key(desktop->element(second)));
    EXPECT_EQ(accessibility.pid(created.front()), desktop->pid(editor));
}

TEST_F(WindowCreatedContract, WindowsOfOtherApplicationsAreNotReported) {
    const auto observer = observe(editor);

    (void)desktop->openWindow(desktop->launchApplication("org.example.mail"), {});

    EXPECT_TRUE(created.empty());
}

TEST_F(WindowCreatedContract, FocusMinimizeAndCloseAreNotReported) {
    const auto observer = observe(editor);

    desktop->focus(first);
    desktop->minimize(first);
    desktop->closeWindow(first);

    EXPECT_TRUE(created.empty());
}

TEST_F(WindowCreatedContract, NothingIsReportedAfterTheSubscriptionIsDestroyed) {
    auto observer = observe(editor);
    observer.reset();

    (void)desktop->openWindow(editor, {});

    EXPECT_TRUE(created.empty());
}

TEST_F(WindowCreatedContract, ATerminatedApplicationCannotBeObserved) {
    desktop->killApplication(editor);

    EXPECT_FALSE(observe(editor));
}

TEST_F(WindowCreatedContract, ThisProgramCannotBeObserved) {
    AccessibilityPort& accessibility = desktop->accessibility();
    const Element own = accessibility.application(desktop->workspace().ownProcessIdentifier());

    EXPECT_FALSE(accessibility.onWindowCreated(own, [](const Element&) {}));
}

/// Counts the closes reported for one window of an application that has two.
class WindowClosedContract : public ContractTest {
protected:
    [[nodiscard]] SubscriptionPtr observe(WindowHandle observed) {
        return desktop->accessibility().onWindowClosed(desktop->element(observed), [this] { ++closed; });
    }

    AppHandle editor = desktop->launchApplication("org.example.editor");
    WindowHandle other = desktop->openWindow(editor, {});
    WindowHandle window = desktop->openWindow(editor, {});
    int closed = 0;
};

TEST_F(WindowClosedContract, TheCloseIsReportedOnce) {
    const auto observer = observe(window);
    ASSERT_TRUE(observer);

    desktop->closeWindow(window);
    desktop->closeWindow(other);

    EXPECT_EQ(closed, 1);
}

TEST_F(WindowClosedContract, TheEndOfTheProcessIsReportedAsAClose) {
    const auto observer = observe(window);

    desktop->killApplication(editor);

    EXPECT_EQ(closed, 1);
}

TEST_F(WindowClosedContract, OtherChangesAreNotReported) {
    const auto observer = observe(window);

    desktop->closeWindow(other);
    desktop->focus(window);
    (void)desktop->openWindow(editor, {});
    desktop->minimize(window);

    EXPECT_EQ(closed, 0);
}

TEST_F(WindowClosedContract, NothingIsReportedAfterTheSubscriptionIsDestroyed) {
    auto observer = observe(window);
    observer.reset();

    desktop->closeWindow(window);

    EXPECT_EQ(closed, 0);
}

TEST_F(WindowClosedContract, AHandlerMayDestroyItsSubscription) {
    SubscriptionPtr observer;
    observer = desktop->accessibility().onWindowClosed(desktop->element(window), [&] {
        ++closed;
        observer.reset();
    });

    desktop->closeWindow(window);

    EXPECT_EQ(closed, 1);
}

TEST_F(WindowClosedContract, OnlyWindowsCanBeObserved) {
    AccessibilityPort& accessibility = desktop->accessibility();

    for (const Element& element :
         {accessibility.application(desktop->pid(editor)), accessibility.systemWide(), Element{}})
        EXPECT_FALSE(accessibility.onWindowClosed(element, [] {}));
}

} // namespace
} // namespace tessarel::contract
