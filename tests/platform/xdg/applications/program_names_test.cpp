// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/program_names.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

/// A folder of desktop entries, a window and its process.
class ProgramNamesTest : public ::testing::Test {
protected:
    using Names = std::vector<std::string>;

    ProgramNamesTest() { fs::create_directories(bin); }

    void entry(const std::string& identifier, const std::string& lines = {}) const {
        const fs::path file = scratch.path() / "applications" / (identifier + ".desktop");
        fs::create_directories(file.parent_path());
        ScratchFolder::write(file, "[Desktop Entry]\nType=Application\nName=Program\n" + lines);
    }
    /// Creates a program and returns its path.
    [[nodiscard]] std::string binary(const std::string& name) const {
        return file(name, "\x7F"
                          "ELF");
    }
    [[nodiscard]] std::string script(const std::string& name) const { return file(name, "#!/bin/sh\n"); }
    /// Makes `path` the program of the process, with its file name as a name.
    void run(const std::string& path) {
        facts = {.program = path, .file = path, .names = {fs::path(path).filename()}, .sandbox = {}};
    }

    [[nodiscard]] std::optional<ProgramNames> names() {
        InstalledApplications entries({scratch.path() / "applications"});
        return programNames(entries, window, [this] { return facts; });
    }
    [[nodiscard]] std::string identifier() { return names().value_or(ProgramNames{"none", {}}).identifier; }
    [[nodiscard]] Names others() { return names().value_or(ProgramNames{}).others; }

    ScratchFolder scratch;
    fs::path bin = scratch.path() / "bin";
    WindowNames window{.announced = {}, .instance = "edit", .windowClass = "Editor"};
    ProcessFacts facts;

private:
    [[nodiscard]] std::string file(const std::string& name, const std::string& content) const {
        ScratchFolder::write(bin / name, content);
        return (bin / name).native();
    }
};

TEST_F(ProgramNamesTest, WithoutAnyNameNothingIsKnown) {
    window = {};

    EXPECT_FALSE(names());
}

// Announced ids

TEST_F(ProgramNamesTest, AnAnnouncedIdThatNamesAnEntryIsTheIdentifier) {
    entry("org.example.editor");
    entry("other", "StartupWMClass=Editor\n");
    window.announced = {"org.example.editor"};

    EXPECT_EQ(identifier(), "org.example.editor");
}

TEST_F(ProgramNamesTest, TheFirstAnnouncedIdThatNamesAnEntryCounts) {
    entry("second");
    window.announced = {"org.example.first", "second"};

    EXPECT_EQ(identifier(), "second");
}

TEST_F(ProgramNamesTest, AnAnnouncedIdMayBeTheFileOfAnEntry) {
    entry("org.example.editor");
    window.announced = {"/usr/share/applications/org.example.editor.desktop"};

    EXPECT_EQ(identifier(), "org.example.editor");
    EXPECT_EQ(others(), (Names{"/usr/share/applications/org.example.editor.desktop", "Editor"}));
}

TEST_F(ProgramNamesTest, AnAnnouncedIdWithoutAnEntryDoesNotHideTheClass) {
    entry("office-text", "StartupWMClass=office-text\n");
    entry("office-table", "StartupWMClass=office-table\n");
    window = {.announced = {"org.example.office"}, .instance = "office", .windowClass = "office-table"};

    EXPECT_EQ(identifier(), "office-table");
    EXPECT_EQ(others(), Names{"org.example.office"}) << "the name that earlier versions used";
}

TEST_F(ProgramNamesTest, AnAnnouncedIdMayNameAnEntryThatMenusDoNotOffer) {
    entry("org.example.editor", "NoDisplay=true\n");
    entry("editor");
    window.announced = {"org.example.editor"};

    EXPECT_EQ(identifier(), "org.example.editor");
}

TEST_F(ProgramNamesTest, AHiddenEntryIsNotInstalled) {
    entry("org.example.editor", "Hidden=true\n");
    window.announced = {"org.example.editor"};

    EXPECT_EQ(identifier(), "Editor");
}

// The class

TEST_F(ProgramNamesTest, AnEntryIsFoundByTheClassThatItNames) {
    entry("org.example.editor", "StartupWMClass=editor\n");

    EXPECT_EQ(identifier(), "org.example.editor");
    EXPECT_EQ(others(), Names{"Editor"});
}

TEST_F(ProgramNamesTest, AnEntryIsFoundByItsName) {
    entry("editor");

    EXPECT_EQ(identifier(), "editor");
}

TEST_F(ProgramNamesTest, AnEntryIsFoundByTheInstance) {
    entry("org.example.edit");
    window.instance = "org.example.edit";

    EXPECT_EQ(identifier(), "org.example.edit");
    EXPECT_EQ(others(), Names{"Editor"});
}

TEST_F(ProgramNamesTest, TheClassTakesPrecedenceOverTheInstance) {
    entry("terminal-unicode", "StartupWMClass=UTerm\n");
    entry("terminal", "StartupWMClass=Term\n");
    window = {.announced = {}, .instance = "term", .windowClass = "UTerm"};

    EXPECT_EQ(identifier(), "terminal-unicode");
    EXPECT_EQ(others(), Names{"UTerm"});
}

TEST_F(ProgramNamesTest, AnEntryThatNamesTheInstanceExactlyTakesPrecedenceOverTheClass) {
    entry("browser", "StartupWMClass=Browser\n");
    entry("mail-in-browser", "StartupWMClass=crx_mail\n");
    window = {.announced = {}, .instance = "crx_mail", .windowClass = "Browser"};

    EXPECT_EQ(identifier(), "mail-in-browser");
    EXPECT_EQ(others(), Names{}) << "not those of the browser";
}

TEST_F(ProgramNamesTest, OfTwoEntriesForAClassTheOneThatStartsTheProcessIsChosen) {
    run(binary("edit-gtk"));
    fs::create_symlink(bin / "edit-gtk", bin / "edit");
    entry("a-client", "StartupWMClass=Editor\nExec=" + binary("client") + " %F\n");
    entry("b-client", "StartupWMClass=Editor\nExec=sh -c \"exec client\" sh %F\n");
    entry("edit", "StartupWMClass=Editor\nExec=" + (bin / "edit").native() + " %F\n");

    EXPECT_EQ(identifier(), "edit");
    Names all = others();
    std::ranges::sort(all);
    EXPECT_EQ(all, (Names{"Editor", "a-client", "b-client"})) << "what earlier versions may have chosen";
}

TEST_F(ProgramNamesTest, TryExecNamesTheProgramAsWell) {
    run(binary("edit"));
    entry("a-client", "StartupWMClass=Editor\nExec=" + binary("client") + "\n");
    entry("b-edit", "StartupWMClass=Editor\nExec=sh -c edit\nTryExec=" + (bin / "edit").native() + "\n");

    EXPECT_EQ(identifier(), "b-edit");
}

TEST_F(ProgramNamesTest, AnEntryThatMenusDoNotOfferLosesTies) {
    run(binary("edit"));
    const std::string starts = "StartupWMClass=Editor\nExec=" + (bin / "edit").native() + "\n";
    entry("a", starts + "NoDisplay=true\n");
    entry("b", starts + "Terminal=true\n");
    entry("c", starts);

    EXPECT_EQ(identifier(), "c");
}

TEST_F(ProgramNamesTest, TheOnlyEntryForAClassIsChosenEvenIfMenusDoNotOfferIt) {
    entry("editor", "NoDisplay=true\n");

    EXPECT_EQ(identifier(), "editor");
}

TEST_F(ProgramNamesTest, WithoutAProcessTheEntryThatNamesTheClassAndIsNamedLikeItIsChosen) {
    entry("editor");
    entry("a-client", "StartupWMClass=Editor\n");
    entry("b-client", "StartupWMClass=Editor\n");
    EXPECT_EQ(identifier(), "a-client") << "the same one every time";

    entry("editor", "StartupWMClass=Editor\n");
    EXPECT_EQ(identifier(), "editor");
}

TEST_F(ProgramNamesTest, AnEntryNamedLikeTheClassIsChosenIfItAloneStartsTheProcess) {
    run(binary("edit"));
    entry("client", "StartupWMClass=Editor\nExec=" + binary("client") + "\n");
    entry("editor", "Exec=" + (bin / "edit").native() + "\n");

    EXPECT_EQ(identifier(), "editor");
}

// The program of the process

TEST_F(ProgramNamesTest, AnEntryIsFoundByTheFileThatItStarts) {
    run(binary("demo"));
    entry("org.example.Demo", "Exec=" + (bin / "demo").native() + "\n");

    EXPECT_EQ(identifier(), "org.example.Demo");
    EXPECT_EQ(others(), Names{"Editor"});
}

TEST_F(ProgramNamesTest, AProgramIsLookedUpInThePath) {
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", ("/nowhere:" + bin.native()).c_str(), 1);
    run(binary("demo"));
    entry("org.example.Demo", "Exec=demo --new\n");

    EXPECT_EQ(identifier(), "org.example.Demo");
    ::setenv("PATH", path.c_str(), 1);
}

TEST_F(ProgramNamesTest, AnotherBinaryOfTheSameNameIsAnotherProgram) {
    run(binary("demo"));
    fs::create_directories(bin / "other");
    entry("org.example.Demo", "Exec=" + binary("other/demo") + "\n");

    EXPECT_EQ(identifier(), "Editor");
}

TEST_F(ProgramNamesTest, AProgramThatIsNotFoundHereIsComparedByItsName) {
    run("/app/bin/demo");
    entry("org.example.Demo", "Exec=/nowhere/demo\n");

    EXPECT_EQ(identifier(), "org.example.Demo");
}

TEST_F(ProgramNamesTest, AScriptMayStartAProgramOfItsName) {
    facts = {.program = "org.example.Demo", .file = {}, .names = {"demo", "org.example.demo"}, .sandbox = {}};
    entry("demo", "Exec=" + script("Demo") + "\n");

    EXPECT_EQ(identifier(), "demo");
}

TEST_F(ProgramNamesTest, AnEntryForTheClassTakesPrecedenceOverOneForTheProgram) {
    run(binary("demo"));
    entry("demo", "Exec=" + (bin / "demo").native() + "\n");
    entry("editor");

    EXPECT_EQ(identifier(), "editor");
}

// Names of toolkits

TEST_F(ProgramNamesTest, NamesOfToolkitsDoNotJoinDifferentPrograms) {
    const std::string idle = script("idle");
    const std::string other = script("other");
    entry("idle", "StartupWMClass=Tk\nExec=" + idle + "\n");
    for (const char* windowClass : {"Tk", "Toplevel"}) {
        window = {.announced = {}, .instance = "idle", .windowClass = windowClass};
        run(idle);
        EXPECT_EQ(identifier(), "idle");
        run(other);
        EXPECT_EQ(identifier(), other);
        EXPECT_EQ(std::ranges::count(others(), "idle"), 0);
    }
}

TEST_F(ProgramNamesTest, NamesThatJavaInventsAreNoEvidence) {
    run(script("viewer"));
    entry("sun-awt-x11-xframepeer");
    entry("java-lang-thread");
    for (const char* windowClass : {"java-lang-Thread", "sun-launcher-LauncherHelper", ""}) {
        window = {.announced = {}, .instance = "sun-awt-X11-XFramePeer", .windowClass = windowClass};
        EXPECT_EQ(identifier(), facts.program) << windowClass;
    }
    window.windowClass = "org-example-Viewer";
    EXPECT_EQ(identifier(), "org-example-Viewer") << "its main class";
}

TEST_F(ProgramNamesTest, NamesOfInterpretersAreNoEvidence) {
    run(script("viewer.py"));
    entry("python3.11");
    window = {.announced = {}, .instance = "python3", .windowClass = "python3.11"};

    EXPECT_EQ(identifier(), facts.program);
    EXPECT_EQ(others(), Names{});
}

TEST_F(ProgramNamesTest, TheNameThatEarlierVersionsGaveToAProgramOfAToolkitIsKept) {
    run(script("viewer"));
    window = {.announced = {}, .instance = "tk", .windowClass = "Tk"};

    EXPECT_EQ(others(), Names{"Tk"});
}

TEST_F(ProgramNamesTest, WithoutAProcessAToolkitsNameIsBetterThanNone) {
    window = {.announced = {}, .instance = "tk", .windowClass = "Tk"};

    EXPECT_EQ(identifier(), "Tk");
}

// Packages

TEST_F(ProgramNamesTest, APackagesOwnEntryIsPreferred) {
    entry("editor", "StartupWMClass=Editor\n");
    entry("org.example.Editor", "StartupWMClass=Editor\n");
    facts.sandbox = Sandbox{"org.example.Editor", "org.example.Editor."};
    EXPECT_EQ(identifier(), "org.example.Editor");

    window.windowClass = "unknown";
    EXPECT_EQ(identifier(), "org.example.Editor");
}

TEST_F(ProgramNamesTest, TheClassChoosesAmongTheEntriesOfAPackage) {
    entry("org.example.Office");
    entry("org.example.Office.table", "StartupWMClass=office-table\n");
    facts.sandbox = Sandbox{"org.example.Office", "org.example.Office."};
    window.windowClass = "office-table";
    EXPECT_EQ(identifier(), "org.example.Office.table");

    window.windowClass = "office-text";
    EXPECT_EQ(identifier(), "org.example.Office");
}

TEST_F(ProgramNamesTest, ThePackagesMainEntryMayBeTheOneForTheClass) {
    entry("org.example.Office", "StartupWMClass=Office\n");
    entry("org.example.Office.handler", "StartupWMClass=Office\nNoDisplay=true\n");
    facts.sandbox = Sandbox{"org.example.Office", "org.example.Office."};
    window.windowClass = "Office";

    EXPECT_EQ(identifier(), "org.example.Office");
}

TEST_F(ProgramNamesTest, APackageWithoutEntriesIsIdentifiedLikeAnyProgram) {
    entry("editor");
    facts.sandbox = Sandbox{"org.example.Editor", "org.example.Editor."};

    EXPECT_EQ(identifier(), "editor");
}

// Without an entry

TEST_F(ProgramNamesTest, WithoutAnEntryTheClassIsTheIdentifier) {
    run(binary("edit"));
    window.announced = {"org.example.office"};

    EXPECT_EQ(identifier(), "Editor");
    EXPECT_EQ(others(), Names{"org.example.office"});
}

TEST_F(ProgramNamesTest, WithoutAnEntryAndAClassAnAnnouncedIdIsTheIdentifier) {
    window = {.announced = {"org.example.a", "b"}, .instance = {}, .windowClass = {}};

    EXPECT_EQ(identifier(), "org.example.a");
    EXPECT_EQ(others(), Names{"b"});
}

TEST_F(ProgramNamesTest, WithoutAnyNameOfTheWindowTheProgramIsTheIdentifier) {
    run(binary("edit"));
    window = {};

    EXPECT_EQ(identifier(), facts.program);
}

TEST_F(ProgramNamesTest, AProcessIsLookedAtOnlyIfItsWindowAnnouncesNoEntry) {
    entry("org.example.editor");
    window.announced = {"org.example.editor"};
    InstalledApplications entries({scratch.path() / "applications"});
    int reads = 0;
    const auto read = [&] {
        ++reads;
        return ProcessFacts();
    };

    (void)programNames(entries, window, read);
    EXPECT_EQ(reads, 0);

    window.announced.clear();
    (void)programNames(entries, window, read);
    EXPECT_EQ(reads, 1);
}

} // namespace
} // namespace tessarel::xdg
