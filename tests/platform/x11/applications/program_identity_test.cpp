// SPDX-License-Identifier: MIT

#include "platform/x11/x11_fixture.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace tessarel::x11 {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

/// Windows of real processes, and desktop entries of programs. The server cannot resolve the process of a
/// client, so windows belong to the process that they claim.
class ProgramIdentityTest : public X11Test {
protected:
    ProgramIdentityTest() : X11Test(SharedDesktop::withoutProcesses()) {}

    void entry(const std::string& identifier, const std::string& lines) const {
        ScratchFolder::write(folder.path() / (identifier + ".desktop"), "[Desktop Entry]\n" + lines);
    }
    /// Creates a script that a shell runs until its input ends, and returns its path.
    [[nodiscard]] std::string script(const std::string& name) const {
        const fs::path path = folder.path() / name;
        ScratchFolder::write(path, "echo started\nread -r line\n");
        return path.native();
    }

    /// Opens a window of the process.
    [[nodiscard]] xcb_window_t openFor(const x11test::ChildProcess& process,
                                       const x11test::WindowOptions& options) {
        const xcb_window_t window = open(options);
        client.setCardinals(window, "_NET_WM_PID", {static_cast<std::uint32_t>(process.pid())});
        client.setCardinals(observer.root(), "_NET_CLIENT_LIST", {window}); // the process is read again
        settle();
        return window;
    }
    void setText(xcb_window_t window, const char* name, const char* type, const std::string& text) {
        client.setProperty(window, name, type, 8, text);
        settle();
    }

    [[nodiscard]] RunningApplication front() {
        installed.refresh();
        return installed.frontmost().value_or(RunningApplication());
    }
    [[nodiscard]] std::string identifier() { return front().bundleIdentifier.value_or("none"); }

    ScratchFolder folder;
    Applications installed{windows, {folder.path()}};
};

/// Starts a shell with the script, and waits until it runs.
class RunningScript {
public:
    explicit RunningScript(const std::string& path) : m_process({"sh", path}) {
        EXPECT_EQ(m_process.readLine(), "started");
    }
    [[nodiscard]] const x11test::ChildProcess& process() const { return m_process; }

private:
    x11test::ChildProcess m_process;
};

TEST_F(ProgramIdentityTest, AnAnnouncedIdCountsIfItNamesAnInstalledEntry) {
    entry("org.example.gtk", "");
    entry("org.example.kde", "");
    entry("editor", "StartupWMClass=Editor\n");
    const xcb_window_t window = open({.className = "Editor"});
    setText(window, "_GTK_APPLICATION_ID", "UTF8_STRING", "org.example.suite");
    EXPECT_EQ(identifier(), "editor");
    EXPECT_EQ(front().otherNames, (Names{"org.example.suite", "Editor"}));

    setText(window, "_KDE_NET_WM_DESKTOP_FILE", "UTF8_STRING", "org.example.kde");
    EXPECT_EQ(identifier(), "org.example.kde");

    setText(window, "_GTK_APPLICATION_ID", "UTF8_STRING", "org.example.gtk");
    EXPECT_EQ(identifier(), "org.example.gtk");
}

TEST_F(ProgramIdentityTest, EitherHalfOfTheClassNamesAnEntry) {
    entry("org.example.viewer", "");
    (void)open({.instance = "org.example.viewer", .className = "Viewer"});
    EXPECT_EQ(identifier(), "org.example.viewer");

    (void)open({.instance = "viewer", .className = "org.example.viewer"});
    EXPECT_EQ(identifier(), "org.example.viewer");
}

TEST_F(ProgramIdentityTest, OfTwoEntriesForAClassTheOneOfTheExecutableIsChosen) {
    entry("a-client", "StartupWMClass=TestClient\nExec=/bin/true\n");
    entry("tests", "StartupWMClass=TestClient\nExec=" +
                       fs::read_symlink("/proc/" + std::to_string(client.pid()) + "/exe").native() + "\n");
    entry("z-client", "StartupWMClass=TestClient\nExec=/bin/true\n");
    (void)open();

    EXPECT_EQ(identifier(), "tests");
}

TEST_F(ProgramIdentityTest, ProgramsOfOneToolkitAreKeptApartByTheirScripts) {
    const RunningScript first(script("idle"));
    const RunningScript second(script("other"));
    entry("idle", "Exec=" + (folder.path() / "idle").native() + "\n");

    (void)openFor(first.process(), {.instance = "toplevel", .className = "Toplevel"});
    EXPECT_EQ(identifier(), "idle");
    EXPECT_EQ(front().otherNames, Names{"Toplevel"});

    (void)openFor(second.process(), {.instance = "toplevel", .className = "Toplevel"});
    EXPECT_EQ(identifier(), (folder.path() / "other").native());
}

TEST_F(ProgramIdentityTest, AProcessOnAnotherMachineIsNotLookedUpHere) {
    const RunningScript program(script("idle"));
    entry("idle", "Exec=" + (folder.path() / "idle").native() + "\n");
    const xcb_window_t window = openFor(program.process(), {.instance = "tk", .className = "Tk"});
    EXPECT_EQ(identifier(), "idle");

    setText(window, "WM_CLIENT_MACHINE", "STRING", "elsewhere");
    EXPECT_EQ(identifier(), "Tk");

    std::array<char, 256> host{};
    ASSERT_EQ(::gethostname(host.data(), host.size() - 1), 0);
    setText(window, "WM_CLIENT_MACHINE", "STRING", std::string(host.data()) + ".example.org");
    EXPECT_EQ(identifier(), "idle");
}

TEST_F(ProgramIdentityTest, AProcessThatDoesNotExistLeavesTheNamesOfTheWindow) {
    const xcb_window_t window = open({.className = "Editor"});
    client.setCardinals(window, "_NET_WM_PID", {0x7FFFFFFF});
    client.setCardinals(observer.root(), "_NET_CLIENT_LIST", {window});
    settle();

    EXPECT_EQ(identifier(), "Editor");
}

TEST_F(ProgramIdentityTest, OneProcessMayRunSeveralApplications) {
    entry("office-text", "StartupWMClass=office-text\n");
    entry("office-table", "StartupWMClass=office-table\n");
    X11Accessibility elements(connection, monitors, windows, installed, watch, driver.queue());
    const Element text = elementOf(open({.className = "office-text"}));
    const Element table = elementOf(open({.className = "office-table"}));

    EXPECT_EQ(elements.owner(text)->bundleIdentifier, "office-text");
    EXPECT_EQ(elements.owner(table)->bundleIdentifier, "office-table");
    EXPECT_EQ(installed.ofProcess(client.pid())->bundleIdentifier, "office-table");
    EXPECT_FALSE(installed.ofProcess(client.pid())->ownsWholeProcess);
}

TEST_F(ProgramIdentityTest, AWindowThatChangesItsClassChangesItsApplication) {
    const xcb_window_t window = open({.className = "Loader"});
    EXPECT_EQ(identifier(), "Loader");

    setText(window, "WM_CLASS", "STRING", std::string("editor\0Editor\0", 14));

    EXPECT_EQ(installed.frontmost()->bundleIdentifier, "Editor") << "also without a refresh";
}

TEST_F(ProgramIdentityTest, AClosedWindowBelongsToNoApplication) {
    const xcb_window_t window = open();
    const Element element = elementOf(window);
    EXPECT_TRUE(accessibility.owner(element));

    client.destroy(window);
    settle();

    EXPECT_FALSE(accessibility.owner(element));
    EXPECT_FALSE(accessibility.owner(accessibility.application(client.pid())));
}

TEST_F(ProgramIdentityTest, AProcessIsReadOnceUntilTheNextRefresh) {
    int reads = 0;
    Applications counted(windows, {folder.path()}, [&](ProcessId) {
        ++reads;
        return xdg::ProcessFacts();
    });
    (void)open();

    for (int i = 0; i < 3; ++i)
        (void)counted.frontmost();
    EXPECT_EQ(reads, 1);

    counted.refresh();
    (void)counted.frontmost();
    EXPECT_EQ(reads, 2);
}

} // namespace
} // namespace tessarel::x11
