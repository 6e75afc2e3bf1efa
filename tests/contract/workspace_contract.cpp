// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

namespace tessarel::contract {
namespace {

class WorkspaceContract : public ContractTest {};

TEST_F(WorkspaceContract, AnEmptyDesktopHasNoFrontmostApplication) {
    EXPECT_FALSE(desktop->workspace().frontmostApplication());
}

TEST_F(WorkspaceContract, TheApplicationOfTheFocusedWindowIsFrontmost) {
    const auto editor = desktop->launchApplication("org.example.editor");
    const auto mail = desktop->launchApplication("org.example.mail");
    const auto editorWindow = desktop->openWindow(editor, {});
    const auto mailWindow = desktop->openWindow(mail, {});

    desktop->focus(editorWindow);
    EXPECT_EQ(desktop->workspace().frontmostApplication(),
              (RunningApplication{desktop->pid(editor), "org.example.editor"}));

    desktop->focus(mailWindow);
    EXPECT_EQ(desktop->workspace().frontmostApplication(),
              (RunningApplication{desktop->pid(mail), "org.example.mail"}));
}

TEST_F(WorkspaceContract, ARunningApplicationIsFoundByItsProcessId) {
    const auto editor = desktop->launchApplication("org.example.editor");
    (void)desktop->openWindow(editor, {});

    EXPECT_EQ(desktop->workspace().runningApplication(desktop->pid(editor)),
              (RunningApplication{desktop->pid(editor), "org.example.editor"}));
}

TEST_F(WorkspaceContract, AnApplicationMayHaveNoBundleIdentifier) {
    const auto nameless = desktop->launchApplication(std::nullopt);
    (void)desktop->openWindow(nameless, {});

    EXPECT_EQ(desktop->workspace().runningApplication(desktop->pid(nameless)),
              (RunningApplication{desktop->pid(nameless), desktop->identifierOfNameless()}));
}

TEST_F(WorkspaceContract, ATerminatedApplicationIsNotRunning) {
    const auto editor = desktop->launchApplication("org.example.editor");
    desktop->focus(desktop->openWindow(editor, {}));
    desktop->killApplication(editor);

    EXPECT_FALSE(desktop->workspace().runningApplication(desktop->pid(editor)));
    EXPECT_FALSE(desktop->workspace().frontmostApplication());
}

TEST_F(WorkspaceContract, AnInvalidProcessIdIsNotRunning) {
    EXPECT_FALSE(desktop->workspace().runningApplication(-1));
}

TEST_F(WorkspaceContract, AnInstalledApplicationHasADisplayName) {
    desktop->installApplication("org.example.editor", "Editor");
    desktop->installApplication("org.example.mail", "Letters & More");

    EXPECT_EQ(desktop->workspace().displayName("org.example.editor"), "Editor");
    EXPECT_EQ(desktop->workspace().displayName("org.example.mail"), "Letters & More");
}

TEST_F(WorkspaceContract, AnApplicationThatIsNotInstalledHasNoDisplayName) {
    (void)desktop->openWindow(desktop->launchApplication("org.example.editor"), {});

    EXPECT_EQ(desktop->workspace().displayName("org.example.editor"), std::nullopt);
}

TEST_F(WorkspaceContract, TheOwnProcessIdIsNotThatOfAnotherApplication) {
    const auto editor = desktop->launchApplication("org.example.editor");
    (void)desktop->openWindow(editor, {});

    EXPECT_GT(desktop->workspace().ownProcessIdentifier(), 0);
    EXPECT_NE(desktop->workspace().ownProcessIdentifier(), desktop->pid(editor));
}

} // namespace
} // namespace tessarel::contract
