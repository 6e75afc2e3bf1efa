// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/installed_applications.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

/// Two folders of desktop entries, the user's and the system's.
class InstalledApplicationsTest : public ::testing::Test {
protected:
    InstalledApplicationsTest() { ::setenv("LANGUAGE", "de_AT", 1); }
    ~InstalledApplicationsTest() override { ::unsetenv("LANGUAGE"); }

    static void write(const fs::path& file, const std::string& lines) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "[Desktop Entry]\nType=Application\nName=Program\n" << lines;
        // The timestamps of folders are too coarse to show two changes in a row.
        fs::last_write_time(file.parent_path(), nextChange += std::chrono::seconds(1));
    }

    /// Finishes what has been begun.
    void readAll() {
        while (entries.readSome(1)) {
        }
    }

    using Identifiers = std::vector<std::string>;

    /// Returns the identifiers in alphabetical order.
    static Identifiers namesOf(const std::vector<const InstalledApplication*>& applications) {
        Identifiers names;
        for (const InstalledApplication* application : applications)
            names.push_back(application->identifier);
        std::ranges::sort(names);
        return names;
    }
    [[nodiscard]] Identifiers ofClass(const std::string& windowClass) {
        return namesOf(entries.ofClass(windowClass));
    }

    static inline fs::file_time_type nextChange = fs::file_time_type::clock::now();
    ScratchFolder scratch;
    fs::path users = scratch.path() / "users";
    fs::path systems = scratch.path() / "systems";
    InstalledApplications entries{{users, systems}};
};

TEST_F(InstalledApplicationsTest, WithoutFoldersNoEntryIsFound) {
    EXPECT_EQ(ofClass("Editor"), Identifiers{});
}

TEST_F(InstalledApplicationsTest, AnEntryIsFoundByTheClassThatItNames) {
    write(systems / "org.example.editor.desktop", "StartupWMClass=Editor\n");

    EXPECT_EQ(ofClass("Editor"), Identifiers{"org.example.editor"});
    EXPECT_EQ(ofClass("editor"), Identifiers{"org.example.editor"});
    EXPECT_EQ(ofClass("Edit"), Identifiers{});
}

TEST_F(InstalledApplicationsTest, AnEntryIsFoundByItsFileName) {
    write(systems / "firefox-esr.desktop", "");

    EXPECT_EQ(ofClass("Firefox-esr"), Identifiers{"firefox-esr"});
}

TEST_F(InstalledApplicationsTest, AllEntriesForAClassAreFoundOnce) {
    write(systems / "editor.desktop", "StartupWMClass=Editor\n");
    write(systems / "org.example.editor.desktop", "StartupWMClass=editor\n");
    write(systems / "viewer.desktop", "StartupWMClass=Viewer\n");

    EXPECT_EQ(ofClass("Editor"), (Identifiers{"editor", "org.example.editor"}));
}

TEST_F(InstalledApplicationsTest, AnApplicationIsFoundByItsIdentifier) {
    write(systems / "org.example.Editor.desktop", "StartupWMClass=Edit\nExec=edit %F\nTryExec=/opt/edit\n");

    const InstalledApplication* found = entries.named("org.example.Editor");

    ASSERT_TRUE(found);
    EXPECT_EQ(found->identifier, "org.example.Editor");
    EXPECT_EQ(found->windowClass, "Edit");
    EXPECT_EQ(found->programs, (Identifiers{"edit", "/opt/edit"}));
    EXPECT_TRUE(found->isOffered);
    EXPECT_EQ(entries.named("org.example.editor"), found);
    EXPECT_EQ(entries.named("Editor"), nullptr);
    EXPECT_EQ(entries.named(""), nullptr);
}

TEST_F(InstalledApplicationsTest, TheCaseOfIdentifiersCountsWhereTheyDifferOnlyInCase) {
    write(systems / "editor.desktop", "");
    write(systems / "Editor.desktop", "");

    EXPECT_EQ(entries.named("Editor")->identifier, "Editor");
    EXPECT_EQ(entries.named("editor")->identifier, "editor");
    EXPECT_EQ(entries.named("EDITOR"), nullptr);
}

TEST_F(InstalledApplicationsTest, AnApplicationIsFoundByTheFileThatItsEntryStarts) {
    write(systems / "editor.desktop", "Exec=/opt/editor/bin/Edit --new %F\n");
    write(systems / "script.desktop", "Exec=env LANG=C python3 -u /opt/script.py\n");

    EXPECT_EQ(namesOf(entries.startedBy("edit")), Identifiers{"editor"});
    EXPECT_EQ(namesOf(entries.startedBy("script.py")), Identifiers{"script"});
    EXPECT_EQ(namesOf(entries.startedBy("python3")), Identifiers{});
}

TEST_F(InstalledApplicationsTest, HiddenAndTerminalApplicationsAreNotOffered) {
    write(systems / "a.desktop", "NoDisplay=true\n");
    write(systems / "b.desktop", "Terminal=true\n");
    write(systems / "c.desktop", "NoDisplay=false\nTerminal=false\n");

    EXPECT_FALSE(entries.named("a")->isOffered);
    EXPECT_FALSE(entries.named("b")->isOffered);
    EXPECT_TRUE(entries.named("c")->isOffered);
}

TEST_F(InstalledApplicationsTest, ASubfolderIsPartOfTheIdentifier) {
    write(systems / "kde" / "editor.desktop", "StartupWMClass=Editor\n");

    EXPECT_EQ(ofClass("Editor"), Identifiers{"kde-editor"});
}

TEST_F(InstalledApplicationsTest, TheUsersEntryReplacesTheSystems) {
    write(systems / "editor.desktop", "StartupWMClass=Editor\n");
    write(users / "editor.desktop", "StartupWMClass=MyEditor\n");

    EXPECT_EQ(ofClass("MyEditor"), Identifiers{"editor"});

    write(users / "editor.desktop", "Hidden=true\n");
    entries.refresh();
    EXPECT_EQ(ofClass("Editor"), Identifiers{});
}

TEST_F(InstalledApplicationsTest, OnlyTheMainGroupCounts) {
    write(systems / "editor.desktop", "[Desktop Action New]\nStartupWMClass=Other\n");

    EXPECT_EQ(ofClass("Other"), Identifiers{});
}

TEST_F(InstalledApplicationsTest, RefreshFindsAddedAndRemovedEntries) {
    EXPECT_EQ(ofClass("Editor"), Identifiers{});

    write(systems / "editor.desktop", "");
    entries.refresh();
    EXPECT_EQ(ofClass("Editor"), Identifiers{"editor"});

    fs::remove(systems / "editor.desktop");
    entries.refresh();
    EXPECT_EQ(ofClass("Editor"), Identifiers{});
}

TEST_F(InstalledApplicationsTest, LookingUpAnIdentifierDoesNotRefresh) {
    write(systems / "editor.desktop", "");
    EXPECT_EQ(ofClass("Editor"), Identifiers{"editor"});

    fs::remove(systems / "editor.desktop");
    EXPECT_EQ(ofClass("Editor"), Identifiers{"editor"});
}

TEST_F(InstalledApplicationsTest, InvalidEntriesAreIgnored) {
    write(systems / "good.desktop", "");
    write(systems / "large.desktop", "StartupWMClass=Large\n" + std::string(1 << 20, 'x'));
    write(systems / "bytes.desktop", std::string("\0\xFF=\n[[[\n===\n", 11));
    fs::create_symlink(systems / "nowhere", systems / "broken.desktop");
    mkfifo((systems / "pipe.desktop").c_str(), 0600);
    fs::create_directory(systems / "folder.desktop");

    EXPECT_EQ(ofClass("good"), Identifiers{"good"});
    EXPECT_EQ(ofClass("Large"), Identifiers{});
    EXPECT_EQ(ofClass("pipe"), Identifiers{});
}

TEST_F(InstalledApplicationsTest, AnInstalledApplicationHasAName) {
    write(systems / "kde" / "editor.desktop", "");

    EXPECT_EQ(entries.displayName("kde-editor"), "Program");
    EXPECT_EQ(entries.displayName("editor"), std::nullopt);
    EXPECT_EQ(entries.displayName(""), std::nullopt);
}

TEST_F(InstalledApplicationsTest, ANameIsInTheUsersLanguageWhereThereIsOne) {
    write(systems / "both.desktop", "Name[fr]=Programme\nName[de]=Programm\nName[de_AT]=Programmerl\n");
    write(systems / "one.desktop", "Name[fr]=Programme\nName[de]=Programm\n");
    write(systems / "none.desktop", "Name[fr]=Programme\n");

    EXPECT_EQ(entries.displayName("both"), "Programmerl");
    EXPECT_EQ(entries.displayName("one"), "Programm");
    EXPECT_EQ(entries.displayName("none"), "Program");
}

TEST_F(InstalledApplicationsTest, TheUsersEntryNamesTheApplication) {
    write(systems / "editor.desktop", "");
    write(users / "editor.desktop", "Name[de]=Meiner\n");
    EXPECT_EQ(entries.displayName("editor"), "Meiner");

    write(users / "editor.desktop", "Hidden=true\n");
    EXPECT_EQ(entries.displayName("editor"), std::nullopt);

    fs::remove(users / "editor.desktop");
    EXPECT_EQ(entries.displayName("editor"), std::nullopt) << "not looked for yet";
    entries.refresh();
    EXPECT_EQ(entries.displayName("editor"), "Program");
}

TEST_F(InstalledApplicationsTest, AnUnreadableEntryHasNoName) {
    write(systems / "large.desktop", std::string(1 << 20, 'x'));
    fs::create_symlink(systems / "nowhere", systems / "broken.desktop");

    EXPECT_EQ(entries.displayName("large"), std::nullopt);
    EXPECT_EQ(entries.displayName("broken"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, FiveThousandEntriesAreIndexed) {
    fs::create_directories(systems);
    for (int i = 0; i < 5000; ++i) {
        const std::string number = std::to_string(i);
        std::ofstream(systems / (number + ".desktop")) << "[Desktop Entry]\nStartupWMClass=Class" << number;
    }

    EXPECT_EQ(ofClass("Class4999"), Identifiers{"4999"});
    EXPECT_EQ(ofClass("Class0"), Identifiers{"0"});
}

TEST_F(InstalledApplicationsTest, TheFirstTimeEntriesAreFoundAsSoonAsTheyHaveBeenRead) {
    for (const char* const name : {"a", "b", "c"})
        write(systems / (std::string(name) + ".desktop"), "StartupWMClass=Editor\n");
    entries.beginRefresh();

    EXPECT_EQ(ofClass("Editor").size(), 0U);
    while (ofClass("Editor").size() < 2)
        EXPECT_TRUE(entries.readSome(1));
    EXPECT_EQ(ofClass("Editor").size(), 2U);
    readAll();
    EXPECT_EQ(ofClass("Editor").size(), 3U);
    EXPECT_FALSE(entries.readSome(2)) << "nothing has changed";
}

TEST_F(InstalledApplicationsTest, WhileEntriesAreReadAgainTheFormerOnesAreFound) {
    write(systems / "first.desktop", "StartupWMClass=Editor\n");
    EXPECT_EQ(ofClass("Editor"), Identifiers{"first"});
    fs::remove(systems / "first.desktop");
    write(systems / "second.desktop", "StartupWMClass=Editor\n");
    write(systems / "third.desktop", "StartupWMClass=Editor\n");

    entries.beginRefresh();
    for (int looks = 0; looks < 5; ++looks) {
        EXPECT_TRUE(entries.readSome(1));
        EXPECT_EQ(ofClass("Editor"), Identifiers{"first"});
        entries.beginRefresh(); // goes on with the entries that are being read
    }
    readAll();
    EXPECT_EQ(ofClass("Editor"), (Identifiers{"second", "third"}));
}

TEST_F(InstalledApplicationsTest, OnlyTheChangedFolderIsReadAgain) {
    write(systems / "kept" / "deep" / "editor.desktop", "StartupWMClass=Editor\n");
    write(systems / "changed" / "viewer.desktop", "StartupWMClass=Viewer\n");
    EXPECT_EQ(ofClass("Editor"), Identifiers{"kept-deep-editor"});
    // Without a trace at the folder, so that what is found shows whether the file was read.
    std::ofstream(systems / "kept" / "deep" / "editor.desktop") << "[Desktop Entry]\nStartupWMClass=Other\n";
    write(systems / "changed" / "viewer.desktop", "StartupWMClass=Other\n");

    entries.refresh();

    EXPECT_EQ(ofClass("Viewer"), Identifiers{});
    EXPECT_EQ(ofClass("Other"), Identifiers{"changed-viewer"});
    EXPECT_EQ(ofClass("Editor"), Identifiers{"kept-deep-editor"});
}

TEST_F(InstalledApplicationsTest, AFolderThatIsAddedOrRemovedIsNoticed) {
    write(systems / "a" / "one.desktop", "StartupWMClass=Editor\n");
    write(systems / "b" / "c" / "two.desktop", "StartupWMClass=Editor\n");
    EXPECT_EQ(ofClass("Editor"), (Identifiers{"a-one", "b-c-two"}));

    fs::remove_all(systems / "b");
    write(users / "d" / "three.desktop", "StartupWMClass=Editor\n");
    entries.refresh();

    EXPECT_EQ(ofClass("Editor"), (Identifiers{"a-one", "d-three"}));
}

TEST_F(InstalledApplicationsTest, ManyFoldersAreLookedAtFewAtATime) {
    constexpr int kFolders = 200;
    for (int number = 0; number < kFolders; ++number)
        fs::create_directories(systems / std::to_string(number));
    entries.refresh();

    entries.beginRefresh();

    int pieces = 1;
    while (entries.readSome(10))
        ++pieces;
    EXPECT_GE(pieces, kFolders / 10);
}

TEST_F(InstalledApplicationsTest, ALinkToAFolderAboveEndsTheSearch) {
    write(systems / "a" / "one.desktop", "StartupWMClass=Editor\n");
    fs::create_directory_symlink(systems, systems / "a" / "up");

    EXPECT_EQ(ofClass("Editor"), Identifiers{"a-one"});
}

TEST_F(InstalledApplicationsTest, ARefreshFindsWhatWasInstalledWhileEntriesWereRead) {
    write(systems / "first.desktop", "StartupWMClass=Editor\n");
    write(systems / "second.desktop", "StartupWMClass=Editor\n");
    entries.beginRefresh();
    while (ofClass("Editor").empty())
        EXPECT_TRUE(entries.readSome(1));
    write(users / "third.desktop", "StartupWMClass=Editor\n");

    entries.refresh();

    EXPECT_EQ(ofClass("Editor"), (Identifiers{"first", "second", "third"}));
}

TEST_F(InstalledApplicationsTest, AnEntryIsIdentifiedByItsPathBelowItsFolder) {
    write(systems / "org.example.editor.desktop", "");
    write(users / "vendor" / "viewer.desktop", "");

    EXPECT_EQ(entries.identifierOfEntry(systems / "org.example.editor.desktop"), "org.example.editor");
    EXPECT_EQ(entries.identifierOfEntry(users / "vendor" / "viewer.desktop"), "vendor-viewer");
}

TEST_F(InstalledApplicationsTest, AnEntryElsewhereIsIdentifiedByItsFileName) {
    write(scratch.path() / "home" / "org.example.editor.desktop", "");

    EXPECT_EQ(entries.identifierOfEntry(scratch.path() / "home" / "org.example.editor.desktop"),
              "org.example.editor");
}

TEST_F(InstalledApplicationsTest, AFileThatIsNotAnApplicationHasNoIdentifier) {
    write(systems / "picture.png", "");
    write(systems / "hidden.desktop", "Hidden=true\n");
    std::ofstream(systems / "text.desktop") << "Nothing of the kind\n";

    EXPECT_EQ(entries.identifierOfEntry(systems / "picture.png"), std::nullopt);
    EXPECT_EQ(entries.identifierOfEntry(systems / "hidden.desktop"), std::nullopt);
    EXPECT_EQ(entries.identifierOfEntry(systems / "text.desktop"), std::nullopt);
    EXPECT_EQ(entries.identifierOfEntry(systems / "missing.desktop"), std::nullopt);
    EXPECT_EQ(entries.identifierOfEntry(systems), std::nullopt);
}

} // namespace
} // namespace tessarel::xdg
