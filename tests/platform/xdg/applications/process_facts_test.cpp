// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/process_facts.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

/// A folder like /proc with one process, and programs for it to run.
class ProcessFactsTest : public ::testing::Test {
protected:
    ProcessFactsTest() { fs::create_directories(process); }

    /// Creates a file below the scratch folder and returns its path.
    [[nodiscard]] std::string file(const std::string& name) const {
        const fs::path path = scratch.path() / name;
        fs::create_directories(path.parent_path());
        ScratchFolder::write(path, "program");
        return path.native();
    }
    void run(const std::string& executable, const std::vector<std::string>& words) const {
        fs::remove(process / "exe");
        fs::create_symlink(executable, process / "exe");
        std::string line;
        for (const std::string& word : words)
            line += word + '\0';
        ScratchFolder::write(process / "cmdline", line);
    }
    [[nodiscard]] ProcessFacts facts() const { return processFacts(kPid, scratch.path() / "proc"); }

    static constexpr int kPid = 77;
    ScratchFolder scratch;
    fs::path process = scratch.path() / "proc" / std::to_string(kPid);
};

TEST_F(ProcessFactsTest, NothingIsKnownOfAProcessThatIsNotThere) {
    const ProcessFacts nothing = processFacts(1234567, scratch.path() / "nowhere");

    EXPECT_EQ(nothing.program, "");
    EXPECT_EQ(nothing.file, "");
    EXPECT_EQ(nothing.names, Names{});
    EXPECT_FALSE(nothing.sandbox);
    EXPECT_EQ(processFacts(-1).program, "");
}

TEST_F(ProcessFactsTest, TheOwnProcessIsVisible) {
    const ProcessFacts own = processFacts(getpid());

    EXPECT_EQ(own.file, fs::canonical("/proc/self/exe"));
    EXPECT_EQ(own.names.front(), "xdg_test");
}

TEST_F(ProcessFactsTest, ABinaryIsItsExecutableAndAlsoGoesByTheNameItWasStartedWith) {
    const std::string binary = file("bin/edit-gtk");
    run(binary, {"edit", "-Q"});

    EXPECT_EQ(facts().program, binary);
    EXPECT_EQ(facts().file, binary);
    EXPECT_EQ(facts().names, (Names{"edit-gtk", "edit"}));
}

TEST_F(ProcessFactsTest, TheExecutableIsBelievedOverTheCommandLine) {
    const std::string binary = file("bin/edit");
    run(binary, {"python3", "/opt/other.py"});

    EXPECT_EQ(facts().program, binary);
}

TEST_F(ProcessFactsTest, AnExecutableThatHasBeenReplacedKeepsItsName) {
    run("/nowhere/edit (deleted)", {"edit"});

    EXPECT_EQ(facts().program, "/nowhere/edit");
    EXPECT_EQ(facts().file, "");
}

TEST_F(ProcessFactsTest, AScriptIsTheProgram) {
    const std::string script = file("bin/Idle.py");
    fs::create_symlink(script, scratch.path() / "bin/idle");
    const std::string link = (scratch.path() / "bin/idle").native();
    run("/usr/bin/python3.11", {"/usr/bin/python3", link});

    EXPECT_EQ(facts().program, link);
    EXPECT_EQ(facts().file, script);
    EXPECT_EQ(facts().names, (Names{"idle", "idle.py"}));
}

TEST_F(ProcessFactsTest, ARelativeScriptIsLookedUpInTheWorkingFolder) {
    const std::string script = file("work/edit.py");
    fs::create_symlink(scratch.path() / "work", process / "cwd");
    run("/usr/bin/python3.11", {"python3", "edit.py"});

    EXPECT_EQ(facts().file, script);
}

TEST_F(ProcessFactsTest, AMainClassGoesByItsLastPart) {
    run("/opt/java/bin/java", {"java", "-cp", "/opt/edit.jar", "org.example.Edit"});

    EXPECT_EQ(facts().program, "org.example.Edit");
    EXPECT_EQ(facts().file, "");
    EXPECT_EQ(facts().names, (Names{"edit", "org.example.edit"}));
}

TEST_F(ProcessFactsTest, AnInterpreterWithoutAScriptIsTheProgramButGoesByNoName) {
    const std::string wish = file("bin/wish8.6");
    run(wish, {"wish"});

    EXPECT_EQ(facts().program, wish);
    EXPECT_EQ(facts().names, Names{});
}

TEST_F(ProcessFactsTest, WithoutAReadableExecutableTheCommandLineCounts) {
    run("/nowhere", {"/opt/edit"});
    fs::remove(process / "exe");

    EXPECT_EQ(facts().program, "/opt/edit");
}

TEST_F(ProcessFactsTest, HugeAndOddFilesAreReadInPart) {
    run(file("bin/wish"), {"wish", std::string(1'000'000, 'x')});
    EXPECT_EQ(facts().program.size(), 64U * 1024 - 5);

    fs::remove(process / "cmdline");
    mkfifo((process / "cmdline").c_str(), 0600);
    fs::create_directory(process / "cgroup");
    EXPECT_EQ(facts().program, (scratch.path() / "bin/wish").native());
}

TEST_F(ProcessFactsTest, APackageIsReadFromTheControlGroup) {
    run(file("bin/edit"), {"edit"});
    ScratchFolder::write(process / "cgroup", "0::/user.slice/app-flatpak-org.example.Edit-12.scope\n");

    EXPECT_EQ(facts().sandbox, (Sandbox{"org.example.Edit", "org.example.Edit."}));
}

TEST_F(ProcessFactsTest, AProgramStartedInTheTerminalOfASnapIsNotThatSnap) {
    const std::string scope = "0::/snap.code.code-01234567-89ab-cdef-0123-456789abcdef.scope\n";
    ScratchFolder::write(process / "cgroup", scope);
    run("/usr/bin/edit", {"edit"});
    EXPECT_FALSE(facts().sandbox);

    run("/snap/code/12/usr/bin/code", {"code"});
    EXPECT_EQ(facts().sandbox, (Sandbox{"code_code", "code_"}));
}

TEST(SandboxTest, UnitNamesOfPackagesAreParsed) {
    const std::string uuid = "01234567-89ab-cdef-0123-456789abcdef";
    const Sandbox edit{"org.example.My-Edit", "org.example.My-Edit."};
    EXPECT_EQ(sandboxIn(R"(0::/a.slice/app-flatpak-org.example.My\x2dEdit-1234.scope)"), edit);
    EXPECT_EQ(sandboxIn("1:name=systemd:/b\n0::/flatpak-org.example.My-Edit-1234.scope/sub\n"), edit);
    EXPECT_EQ(sandboxIn("0::/snap.my-edit.new-edit-" + uuid + ".scope"),
              (Sandbox{"my-edit_new-edit", "my-edit_"}));
    EXPECT_EQ(sandboxIn("0::/snap.edit.edit." + uuid + ".scope"), (Sandbox{"edit_edit", "edit_"}));
    EXPECT_EQ(sandboxIn("0::/system.slice/snap.edit.daemon.service"), (Sandbox{"edit_daemon", "edit_"}));
}

TEST(SandboxTest, OtherControlGroupsNameNoPackage) {
    for (const char* cgroups :
         {"", "0::/", "0::/user.slice/session-2.scope", "0::/app-gnome-org.example.Edit-12.scope",
          "0::/app-flatpak-.scope", "0::/app-flatpak--1.scope", "0::/app-flatpak-x", "0::/snap.scope",
          "0::/snap..scope", "0::/snap.edit.service", "0::/snap..edit.service", "0::/flatpak-portal.service"})
        EXPECT_FALSE(sandboxIn(cgroups)) << cgroups;
}

} // namespace
} // namespace tessarel::xdg
