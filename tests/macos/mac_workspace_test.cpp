// SPDX-License-Identifier: MIT

#include "macos/mac_test.h"

#include <stdexcept>

namespace tessarel::macos {
namespace {

class MacWorkspaceTest : public MacTest {
protected:
    [[nodiscard]] SubscriptionPtr observeEnds() {
        return desktop->workspace.addObserver(
            ApplicationEvent::Terminated, [this](const RunningApplication& app) { ended.push_back(app); });
    }

    const RunningApplication editor{kEditor, "org.example.editor"};
    std::vector<RunningApplication> ended;
};

TEST_F(MacWorkspaceTest, AnAccessoryIsNotARegularApplication) {
    fakemac::launch(8, {.isRegular = false});

    EXPECT_EQ(desktop->workspace.runningApplication(8), (RunningApplication{8, std::nullopt, false}));
}

TEST_F(MacWorkspaceTest, AnApplicationWithoutAProcessIsNotReported) {
    std::vector<ProcessId> told;
    const auto observer =
        desktop->workspace.addObserver(ApplicationEvent::Launched, [&](const RunningApplication& app) {
            told.push_back(app.processIdentifier);
        });

    fakemac::launch(-1, {});
    fakemac::launch(8, {});

    EXPECT_EQ(told, std::vector<ProcessId>{8});
    EXPECT_EQ(desktop->workspace.runningApplications().size(), 2U);
}

TEST_F(MacWorkspaceTest, AHandlerMayDestroyItsObserver) {
    int told = 0;
    SubscriptionPtr observer;
    observer = desktop->workspace.addObserver(ApplicationEvent::Launched, [&](const RunningApplication&) {
        ++told;
        observer.reset();
    });

    fakemac::launch(8, {});
    fakemac::launch(9, {});

    EXPECT_EQ(told, 1);
}

TEST_F(MacWorkspaceTest, ATerminationWithoutAProcessIdIsReportedWithTheRecordedOne) {
    const auto observer = observeEnds();
    fakemac::launch(8, {.bundleIdentifier = "org.example.mail"});

    fakemac::terminate(8, false);
    fakemac::terminate(kEditor, false);

    EXPECT_EQ(ended, (std::vector<RunningApplication>{{8, "org.example.mail"}, editor}));
}

TEST_F(MacWorkspaceTest, ATerminationIsReportedOnce) {
    const auto first = observeEnds();
    const auto second =
        desktop->workspace.addObserver(ApplicationEvent::Terminated, [](const RunningApplication&) {});

    fakemac::terminate(kEditor);

    EXPECT_EQ(ended, std::vector<RunningApplication>{editor});
}

TEST_F(MacWorkspaceTest, AReusedProcessIdIsReportedAsTheLaterApplication) {
    const auto observer = observeEnds();
    fakemac::terminate(kEditor);
    fakemac::launch(kEditor, {.bundleIdentifier = "org.example.mail"});

    fakemac::terminate(kEditor, false);

    EXPECT_EQ(ended, (std::vector<RunningApplication>{editor, {kEditor, "org.example.mail"}}));
}

TEST_F(MacWorkspaceTest, ARelaunchedApplicationIsReportedWithItsLaterProcessId) {
    const auto observer = observeEnds();
    fakemac::launch(8, {.bundleIdentifier = "org.example.mail"});
    fakemac::launch(9, {.bundleIdentifier = "org.example.mail", .relaunchedFrom = 8});

    fakemac::terminate(9, false);

    EXPECT_EQ(ended, (std::vector<RunningApplication>{{9, "org.example.mail"}}));
}

TEST_F(MacWorkspaceTest, TheRecordOfATerminatedApplicationIsNotUsedAgain) {
    const auto observer = observeEnds();
    fakemac::launch(8, {.bundleIdentifier = "org.example.mail"});
    fakemac::terminate(8, false);
    ASSERT_EQ(ended.size(), 1U);

    fakemac::launch(-1, {.relaunchedFrom = 8}); // has no process yet
    fakemac::terminate(-1);

    EXPECT_EQ(ended.size(), 1U);
}

TEST_F(MacWorkspaceTest, TheTerminationOfAnUnknownApplicationIsNotReported) {
    fakemac::launch(-1, {});
    const auto observer = observeEnds();

    fakemac::terminate(-1);

    EXPECT_TRUE(ended.empty());
}

TEST_F(MacWorkspaceTest, AWindowIsClosedWhenItsApplicationTerminatesWithoutAProcessId) {
    int closed = 0;
    fakemac::openWindow({.pid = kEditor, .axFrame = {200, 150, 640, 480}});
    const auto window =
        desktop->accessibility.elementAtPosition(desktop->accessibility.systemWide(), {300, 200});
    const auto observer = desktop->accessibility.onWindowClosed(window.value(), [&] { ++closed; });

    fakemac::terminate(kEditor, false);

    EXPECT_EQ(closed, 1);
}

TEST_F(MacWorkspaceTest, AWindowStaysOpenWhenAnotherApplicationTerminates) {
    int closed = 0;
    fakemac::openWindow({.pid = kEditor, .axFrame = {200, 150, 640, 480}});
    const auto window =
        desktop->accessibility.elementAtPosition(desktop->accessibility.systemWide(), {300, 200});
    const auto observer = desktop->accessibility.onWindowClosed(window.value(), [&] { ++closed; });
    fakemac::launch(8, {});

    fakemac::terminate(8);

    EXPECT_EQ(closed, 0);
}

TEST_F(MacWorkspaceTest, EveryExtensionIsRemovedFromADisplayName) {
    fakemac::mac().installed["org.example.mail"] = "Mail.app copy.app";

    EXPECT_EQ(desktop->workspace.displayName("org.example.mail"), "Mail copy");
}

TEST_F(MacWorkspaceTest, ATerminationHandlerMayDestroyItsObserverAndTheBackEnd) {
    SubscriptionPtr observer;
    observer = desktop->workspace.addObserver(ApplicationEvent::Terminated, [&](const RunningApplication&) {
        observer.reset();
        desktop.reset();
    });

    fakemac::terminate(kEditor);

    EXPECT_FALSE(desktop);
}

TEST_F(MacWorkspaceTest, AThrowingHandlerDoesNotPreventTheOthersFromBeingCalled) {
    const auto first =
        desktop->workspace.addObserver(ApplicationEvent::Terminated, [](const RunningApplication&) {
            throw std::runtime_error("of a test");
        });
    const auto second = observeEnds();

    EXPECT_NO_THROW(fakemac::terminate(kEditor));

    EXPECT_EQ(ended.size(), 1U);
}

} // namespace
} // namespace tessarel::macos
