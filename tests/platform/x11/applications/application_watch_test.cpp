// SPDX-License-Identifier: MIT

#include "platform/x11/x11_fixture.h"
#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::x11 {
namespace {

using Lines = std::vector<std::string>;

/// Records the events of applications, and of the windows that the client opens.
class ApplicationWatchTest : public X11Test {
protected:
    explicit ApplicationWatchTest(SharedDesktop& shared = SharedDesktop::withManager()) : X11Test(shared) {
        listenTo(watch);
    }

    void listenTo(ApplicationWatch& told) {
        observers.clear();
        listen(told, ApplicationEvent::Launched, "launched");
        listen(told, ApplicationEvent::Activated, "activated");
        listen(told, ApplicationEvent::Terminated, "terminated");
        observers.push_back(
            told.onWindow(client.pid(), [this](xcb_window_t) { heard.emplace_back("opened"); }));
    }

    void listen(ApplicationWatch& told, ApplicationEvent event, const std::string& word) {
        observers.push_back(told.onApplication(event, [this, word](const RunningApplication& application) {
            heard.push_back(word + " " + application.bundleIdentifier.value_or("?") +
                            (application.isRegular ? "" : " in the background"));
        }));
    }

    /// Opens a window that does not take the focus.
    [[nodiscard]] xcb_window_t openUnfocused(x11test::TestClient& owner,
                                             const x11test::WindowOptions& options) {
        const xcb_window_t window = owner.open(options);
        observer.watch(window);
        EXPECT_TRUE(observer.waitUntil([&] { return observer.managed(window); }));
        settle();
        return window;
    }

    void close(xcb_window_t window) {
        client.destroy(window);
        EXPECT_TRUE(observer.waitUntil([&] { return !observer.managed(window); }));
        settle();
    }

    /// Appends nothing to _NET_CLIENT_LIST, for which the server sends a PropertyNotify all the same.
    void sayAgainWhatIsListed() {
        xcb_connection_t* x = observer.x().get();
        xcb_change_property(x, XCB_PROP_MODE_APPEND, observer.root(), observer.x().atom("_NET_CLIENT_LIST"),
                            XCB_ATOM_WINDOW, 32, 0, nullptr);
        observer.x().roundTrip();
    }

    Lines take() { return std::exchange(heard, {}); }

    Lines heard;
    std::vector<SubscriptionPtr> observers;
};

TEST_F(ApplicationWatchTest, AnApplicationIsLaunchedWithItsFirstWindowAndThenActivated) {
    (void)open({.className = "Editor"});

    EXPECT_EQ(take(), (Lines{"launched Editor", "activated Editor"}));
}

TEST_F(ApplicationWatchTest, AWindowThatIsActiveBeforeItIsListedIsLaunchedBeforeItIsActivated) {
    const xcb_window_t window = client.open({.className = "Editor", .overrideRedirect = true});
    const std::string number(reinterpret_cast<const char*>(&window), sizeof(window));
    client.setProperty(observer.root(), "_NET_ACTIVE_WINDOW", "WINDOW", 32, number);
    settle();
    EXPECT_EQ(take(), Lines{});

    client.setProperty(observer.root(), "_NET_CLIENT_LIST", "WINDOW", 32, number);
    settle();
    EXPECT_EQ(take(), (Lines{"launched Editor", "activated Editor"}));
    client.setProperty(observer.root(), "_NET_CLIENT_LIST", "WINDOW", 32, "");
}

TEST_F(ApplicationWatchTest, AFurtherWindowIsReportedAsOpened) {
    (void)open({.className = "Editor"});
    (void)take();

    (void)open({.className = "Editor"});

    EXPECT_EQ(take(), Lines{"opened"});
}

TEST_F(ApplicationWatchTest, AProcessIsKnownWithoutAProcessIdProperty) {
    (void)open({.className = "Editor", .processId = false});

    EXPECT_EQ(take(), (Lines{"launched Editor", "activated Editor"}));
}

TEST_F(ApplicationWatchTest, AProcessThatHasClosedItsLastWindowStillRuns) {
    close(open({.className = "Editor"}));
    (void)take();

    (void)open({.className = "Editor"});

    EXPECT_EQ(take().front(), "opened");
}

TEST_F(ApplicationWatchTest, AnExitWithoutWindowsIsNoticedAtTheNextWindow) {
    auto other = std::make_unique<x11test::TestClient>(desktop.server);
    const xcb_window_t window = openUnfocused(*other, {.className = "Other"});
    other->destroy(window);
    ASSERT_TRUE(observer.waitUntil([&] { return !observer.managed(window); }));
    settle();
    other.reset();
    (void)take();

    (void)open({.className = "Editor"});

    EXPECT_EQ(take(), (Lines{"terminated Other", "launched Editor", "activated Editor"}));
}

TEST_F(ApplicationWatchTest, AWindowIdReusedUnnoticedIsANewWindow) {
    auto before = std::make_unique<x11test::TestClient>(desktop.server);
    const xcb_window_t window = openUnfocused(*before, {.className = "Before"});
    (void)take();
    before->process().kill();
    ASSERT_TRUE(observer.waitUntil([&] { return !observer.managed(window); }));

    x11test::TestClient after(desktop.server); // the server assigns it the ids of `before`
    ASSERT_EQ(openUnfocused(after, {.className = "After"}), window);

    const Lines lines = take();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "terminated Before"), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "launched After"), 1);
}

TEST_F(ApplicationWatchTest, AReusedWindowIdThatIsStillListedIsANewWindow) {
    auto before = std::make_unique<x11test::TestClient>(desktop.server);
    const xcb_window_t window = openUnfocused(*before, {.className = "Before"});
    desktop.manager->process().signal(SIGSTOP);
    before->process().kill();
    ASSERT_TRUE(observer.waitUntil([&] { return !observer.clientFrame(window); }));
    x11test::TestClient after(desktop.server);
    sayAgainWhatIsListed();
    driver.hear();
    (void)take();

    desktop.manager->process().signal(SIGCONT);
    ASSERT_EQ(openUnfocused(after, {.className = "After"}), window);

    const Lines lines = take();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "launched After"), 1);
}

TEST_F(ApplicationWatchTest, AForgedProcessIdIsIgnored) {
    const std::string somebodyElse(sizeof(std::uint32_t), '\1');
    const xcb_window_t window = client.open({.className = "Editor"});
    client.setProperty(window, "_NET_WM_PID", "CARDINAL", 32, somebodyElse);
    (void)openUnfocused(client, {.className = "Editor"});

    EXPECT_EQ(workspace.runningApplications().size(), 1U);
    EXPECT_TRUE(workspace.runningApplication(client.pid()));
}

TEST_F(ApplicationWatchTest, AProcessWithOnlyAPanelIsABackgroundApplication) {
    (void)openUnfocused(client, {.className = "Panel", .type = "_NET_WM_WINDOW_TYPE_DOCK"});

    EXPECT_EQ(take().front(), "launched Panel in the background");
    EXPECT_FALSE(workspace.runningApplication(client.pid()).value().isRegular);
}

TEST_F(ApplicationWatchTest, AProcessWithAPanelAndAWindowIsARegularApplication) {
    (void)openUnfocused(client, {.className = "Panel", .type = "_NET_WM_WINDOW_TYPE_DOCK"});
    (void)take();

    (void)open({.className = "Panel"});

    EXPECT_EQ(take(), (Lines{"opened", "activated Panel"}));
    EXPECT_TRUE(workspace.runningApplication(client.pid()).value().isRegular);
}

TEST_F(ApplicationWatchTest, ADialogIsReportedAsAWindow) {
    const xcb_window_t parent = open();
    (void)take();

    (void)open({.type = "_NET_WM_WINDOW_TYPE_DIALOG", .transientFor = parent});

    EXPECT_EQ(take(), Lines{"opened"});
}

TEST_F(ApplicationWatchTest, AtRestNoRequestIsSentAndNoWorkIsPending) {
    (void)open();
    close(open());
    settle();
    const auto before = connection.roundTrips();

    driver.queue().runTurn();
    connection.dispatch();

    EXPECT_EQ(connection.roundTrips(), before);
    EXPECT_EQ(driver.queue().waiting(), 0U);
}

TEST_F(ApplicationWatchTest, RunningApplicationsAreNotReportedAsLaunched) {
    (void)open();
    ConnectionDriver latecomer(desktop.server.display());
    ClientWindows lateWindows(latecomer.connection());
    Applications lateApplications(lateWindows);
    ApplicationWatch late(latecomer.connection(), lateWindows, lateApplications);
    int launches = 0;
    const auto subscription =
        late.onApplication(ApplicationEvent::Launched, [&](const RunningApplication&) { ++launches; });

    (void)open();
    latecomer.hear();

    EXPECT_EQ(launches, 0);
}

/// Several programs whose connections are made by one proxy process, the only process that the server knows.
class ProxyTest : public ApplicationWatchTest {
protected:
    ProxyTest() {
        (void)open({.className = "Editor"});
        (void)open({.className = "Mail"});
    }
};

TEST_F(ProxyTest, ItsProgramsAreOneApplicationThatIsLaunchedOnce) {
    EXPECT_EQ(take(), (Lines{"launched Editor", "activated Editor", "opened"}));
    EXPECT_EQ(workspace.runningApplications().size(), 1U);
}

TEST_F(ProxyTest, TheFrontWindowNamesTheApplication) {
    EXPECT_EQ(workspace.frontmostApplication(), (RunningApplication{client.pid(), "Mail"}));
    EXPECT_EQ(workspace.runningApplication(client.pid()),
              (RunningApplication{
                  .processIdentifier = client.pid(), .bundleIdentifier = "Mail", .ownsWholeProcess = false}));

    (void)open({.className = "Editor"});
    EXPECT_EQ(workspace.frontmostApplication(), (RunningApplication{client.pid(), "Editor"}));
}

TEST_F(ProxyTest, ItsProgramsTerminateTogether) {
    (void)take();
    client.process().kill();
    ASSERT_TRUE(observer.waitUntil([&] { return observer.clients().empty(); }));
    settle();

    EXPECT_EQ(take(), Lines{"terminated Editor"});
}

/// A server that cannot resolve the process of a client, as with clients on another machine.
class UnknownProcessTest : public ApplicationWatchTest {
protected:
    UnknownProcessTest() : ApplicationWatchTest(SharedDesktop::withoutProcesses()) {}

    [[nodiscard]] xcb_window_t openNobodys() { return open({.className = "Editor", .processId = false}); }
};

TEST_F(UnknownProcessTest, AWindowWithoutAProcessIdHasNoApplication) {
    const xcb_window_t window = openNobodys();

    EXPECT_EQ(windows.activeWindow(), window);
    EXPECT_EQ(windows.pid(window), std::nullopt);
    EXPECT_FALSE(workspace.frontmostApplication());
    EXPECT_TRUE(workspace.runningApplications().empty());
    EXPECT_FALSE(accessibility.elementAtPosition(accessibility.systemWide(), actualFrame(window).origin()));
}

TEST_F(UnknownProcessTest, AWindowWithoutAProcessIdIsNotReported) {
    close(openNobodys());
    (void)openNobodys();

    EXPECT_EQ(take(), Lines{});
}

TEST_F(UnknownProcessTest, TheProcessIdPropertyIsUsed) {
    (void)openNobodys();
    (void)open({.className = "Mail"});

    EXPECT_EQ(take(), (Lines{"launched Mail", "activated Mail"}));
    EXPECT_EQ(workspace.frontmostApplication(), (RunningApplication{client.pid(), "Mail"}));
}

/// Watches applications with process start times that the test controls.
class ProcessStartTest : public ApplicationWatchTest {
protected:
    ProcessStartTest() { listenTo(m_watch); }

    std::optional<std::uint64_t> start = 1;

private:
    ApplicationWatch m_watch{connection, windows, applications, [this](ProcessId) { return start; }};
};

TEST_F(ProcessStartTest, AWindowMayOutliveTheProcessThatConnected) {
    (void)open({.className = "Editor"});
    start.reset(); // as for a program that continues in a child process
    (void)take();

    (void)open({.className = "Editor"});

    EXPECT_EQ(take(), Lines{"opened"});
}

TEST_F(ProcessStartTest, AProcessWithoutAStartTimeLastsAsLongAsItsWindows) {
    start.reset();
    const xcb_window_t first = open({.className = "Editor"});
    const xcb_window_t second = open({.className = "Editor"});
    EXPECT_EQ(take(), (Lines{"launched Editor", "activated Editor", "opened"}));

    close(first);
    EXPECT_EQ(take(), Lines{});
    close(second);
    EXPECT_EQ(take(), Lines{"terminated Editor"});
}

TEST_F(ProcessStartTest, AReusedProcessIdIsAnotherProgram) {
    close(open({.className = "Before"}));
    ++*start;
    (void)take();

    (void)open({.className = "After"});

    EXPECT_EQ(take(), (Lines{"terminated Before", "launched After"}));
}

/// A desktop whose window manager is replaced.
class ReplacedManagerTest : public ApplicationWatchTest {
protected:
    ~ReplacedManagerTest() override {
        client.process().kill(); // while there is a window manager that removes its windows from the list
        EXPECT_TRUE(observer.waitUntil([&] { return observer.clients().empty(); }));
        desktop.manager.reset(); // the next test starts its own
    }

    void replaceManager() {
        replacement = std::make_unique<x11test::ChildProcess>(
            std::vector<std::string>{"openbox", "--replace", "--sm-disable"}, desktop.server.environment());
        EXPECT_TRUE(desktop.manager->process().waitForExit());
    }
    /// Waits until the window is listed and its event, with all earlier ones, is handled.
    void waitUntilManaged(xcb_window_t window) {
        const auto isListed = [&] { return observer.managed(window); };
        EXPECT_TRUE(observer.waitUntil([&] { return !observer.windowManagerName().empty() && isListed(); }));
        settle();
    }

    std::unique_ptr<x11test::ChildProcess> replacement;
};

TEST_F(ReplacedManagerTest, ReplacingTheWindowManagerReportsNothingAgain) {
    (void)open();
    const xcb_window_t second = open();
    (void)take();

    replaceManager();
    const xcb_window_t third = client.open();
    waitUntilManaged(second);
    waitUntilManaged(third);

    EXPECT_EQ(take(), Lines{"opened"});
}

} // namespace
} // namespace tessarel::x11
