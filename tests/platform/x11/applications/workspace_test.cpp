// SPDX-License-Identifier: MIT

#include "platform/x11/manual_queue.h"
#include "platform/x11/x11_fixture.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace tessarel::x11 {
namespace {

namespace fs = std::filesystem;

class WorkspaceTest : public X11Test {
protected:
    void setText(xcb_window_t window, const char* name, const std::string& text) {
        client.setProperty(window, name, "UTF8_STRING", 8, text);
        settle();
    }

    [[nodiscard]] std::optional<std::string> identifier() {
        const auto application = workspace.frontmostApplication();
        EXPECT_TRUE(application);
        return application ? application->bundleIdentifier : std::nullopt;
    }
};

TEST_F(WorkspaceTest, TheOwnProcessIdIsKnown) {
    EXPECT_EQ(workspace.ownProcessIdentifier(), getpid());
}

TEST_F(WorkspaceTest, AnApplicationInstalledAtRuntimeIsKnownWhenItOpensAWindow) {
    const ScratchFolder folder;
    Applications installed(windows, {folder.path()});
    ApplicationWatch launches(connection, windows, installed);
    const auto launched = launches.onApplication(ApplicationEvent::Launched, [](const auto&) {});
    (void)open({.className = "Editor"});
    EXPECT_EQ(installed.frontmost()->bundleIdentifier, "Editor");

    ScratchFolder::write(folder.path() / "org.example.editor.desktop",
                         "[Desktop Entry]\nStartupWMClass=Editor\n");
    (void)open({.className = "Editor"});

    EXPECT_EQ(installed.frontmost()->bundleIdentifier, "org.example.editor");
}

TEST_F(WorkspaceTest, ManyEntriesAreReadBetweenOtherWork) {
    const ScratchFolder folder;
    const auto install = [&folder](const std::string& name, const std::string& lines) {
        ScratchFolder::write(folder.path() / (name + ".desktop"), "[Desktop Entry]\n" + lines);
    };
    for (int number = 0; number < 1000; ++number)
        install(std::to_string(number), "");
    install("org.example.editor", "StartupWMClass=Editor\n");
    ManualQueue queue;
    Applications installed(windows, {folder.path()});
    installed.readEntriesOn(queue);
    (void)open({.className = "Editor"});

    EXPECT_TRUE(installed.frontmost());
    int rounds = 0;
    for (; queue.waiting() > 0; ++rounds)
        queue.runTurn();
    EXPECT_GE(rounds, 5);
    EXPECT_EQ(installed.frontmost()->bundleIdentifier, "org.example.editor");

    fs::remove(folder.path() / "org.example.editor.desktop");
    install("org.example.other", "StartupWMClass=Editor\n");
    fs::last_write_time(folder.path(), fs::file_time_type::clock::now() + std::chrono::seconds(1));
    installed.refresh();
    installed.refresh();
    EXPECT_EQ(queue.waiting(), 1U);
    EXPECT_EQ(installed.frontmost()->bundleIdentifier, "org.example.editor") << "not all have been read";
    while (queue.waiting() > 0)
        queue.runTurn();
    EXPECT_EQ(installed.frontmost()->bundleIdentifier, "org.example.other");
}

TEST_F(WorkspaceTest, AWindowWithoutANameIsIdentifiedByItsExecutable) {
    const xcb_window_t window = open({.className = ""});
    setText(window, "_GTK_APPLICATION_ID", "");
    setText(window, "_KDE_NET_WM_DESKTOP_FILE", "");

    EXPECT_EQ(identifier(), fs::read_symlink("/proc/" + std::to_string(client.pid()) + "/exe").native());
}

TEST_F(WorkspaceTest, AnIdentifierIsAlwaysValidUtf8) {
    (void)open({.className = "caf\xE9"});

    EXPECT_EQ(identifier(), "caf\xC3\xA9");
}

TEST_F(WorkspaceTest, ATooLongNameIsIgnored) {
    const xcb_window_t window = open({.className = "Editor"});

    setText(window, "_GTK_APPLICATION_ID", std::string(3000, 'x'));

    EXPECT_EQ(identifier(), "Editor");
    EXPECT_EQ(workspace.frontmostApplication()->otherNames, std::vector<std::string>{});
}

TEST_F(WorkspaceTest, AnApplicationIsIdentifiedByItsFrontWindow) {
    (void)open({.className = "First"});
    (void)open({.className = "Second"});

    EXPECT_EQ(workspace.runningApplication(client.pid()),
              (RunningApplication{.processIdentifier = client.pid(),
                                  .bundleIdentifier = "Second",
                                  .ownsWholeProcess = false}));
}

TEST_F(WorkspaceTest, AllApplicationsOfAProcessAreInUse) {
    (void)open({.className = "First"});
    (void)open({.className = "Second"});
    (void)open({.className = "Second"});
    (void)open({.className = "Panel", .type = "_NET_WM_WINDOW_TYPE_DOCK"});

    EXPECT_EQ(applications.identifiersInUse(), (std::set<std::string>{"First", "Second"}));
}

TEST_F(WorkspaceTest, AnUnmanagedWindowIsNotFrontmost) {
    const xcb_window_t menu = client.open({.overrideRedirect = true});
    const std::string bytes(reinterpret_cast<const char*>(&menu), sizeof(menu));
    client.setProperty(observer.root(), "_NET_ACTIVE_WINDOW", "WINDOW", 32, bytes);
    settle();

    EXPECT_FALSE(workspace.frontmostApplication());
}

TEST_F(WorkspaceTest, AProcessWithoutWindowsIsNoApplication) {
    EXPECT_FALSE(workspace.runningApplication(client.pid()));
    EXPECT_FALSE(workspace.runningApplication(0));
}

} // namespace
} // namespace tessarel::x11
