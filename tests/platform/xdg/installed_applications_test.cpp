#include "platform/xdg/installed_applications.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>

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

    static inline fs::file_time_type nextChange = fs::file_time_type::clock::now();
    ScratchFolder scratch;
    fs::path users = scratch.path() / "users";
    fs::path systems = scratch.path() / "systems";
    InstalledApplications entries{{users, systems}};
};

TEST_F(InstalledApplicationsTest, WithoutFoldersNoEntryIsFound) {
    EXPECT_EQ(entries.identifier("Editor"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, AnEntryIsFoundByTheClassThatItNames) {
    write(systems / "org.example.editor.desktop", "StartupWMClass=Editor\n");

    EXPECT_EQ(entries.identifier("Editor"), "org.example.editor");
    EXPECT_EQ(entries.identifier("editor"), "org.example.editor");
    EXPECT_EQ(entries.identifier("Edit"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, AnEntryIsFoundByItsFileName) {
    write(systems / "firefox-esr.desktop", "");

    EXPECT_EQ(entries.identifier("Firefox-esr"), "firefox-esr");
}

TEST_F(InstalledApplicationsTest, TheNamedClassTakesPrecedenceOverTheFileName) {
    write(systems / "editor.desktop", "");
    write(systems / "org.example.editor.desktop", "StartupWMClass=Editor\n");

    EXPECT_EQ(entries.identifier("Editor"), "org.example.editor");
}

TEST_F(InstalledApplicationsTest, ASubfolderIsPartOfTheIdentifier) {
    write(systems / "kde" / "editor.desktop", "StartupWMClass=Editor\n");

    EXPECT_EQ(entries.identifier("Editor"), "kde-editor");
}

TEST_F(InstalledApplicationsTest, TheUsersEntryReplacesTheSystems) {
    write(systems / "editor.desktop", "StartupWMClass=Editor\n");
    write(users / "editor.desktop", "StartupWMClass=MyEditor\n");

    EXPECT_EQ(entries.identifier("MyEditor"), "editor");

    write(users / "editor.desktop", "Hidden=true\n");
    entries.refresh();
    EXPECT_EQ(entries.identifier("Editor"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, OnlyTheMainGroupCounts) {
    write(systems / "editor.desktop", "[Desktop Action New]\nStartupWMClass=Other\n");

    EXPECT_EQ(entries.identifier("Other"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, RefreshFindsAddedAndRemovedEntries) {
    EXPECT_EQ(entries.identifier("Editor"), std::nullopt);

    write(systems / "editor.desktop", "");
    entries.refresh();
    EXPECT_EQ(entries.identifier("Editor"), "editor");

    fs::remove(systems / "editor.desktop");
    entries.refresh();
    EXPECT_EQ(entries.identifier("Editor"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, LookingUpAnIdentifierDoesNotRefresh) {
    write(systems / "editor.desktop", "");
    EXPECT_EQ(entries.identifier("Editor"), "editor");

    fs::remove(systems / "editor.desktop");
    EXPECT_EQ(entries.identifier("Editor"), "editor");
}

TEST_F(InstalledApplicationsTest, InvalidEntriesAreIgnored) {
    write(systems / "good.desktop", "");
    write(systems / "large.desktop", "StartupWMClass=Large\n" + std::string(1 << 20, 'x'));
    write(systems / "bytes.desktop", std::string("\0\xFF=\n[[[\n===\n", 11));
    fs::create_symlink(systems / "nowhere", systems / "broken.desktop");
    mkfifo((systems / "pipe.desktop").c_str(), 0600);
    fs::create_directory(systems / "folder.desktop");

    EXPECT_EQ(entries.identifier("good"), "good");
    EXPECT_EQ(entries.identifier("Large"), std::nullopt);
    EXPECT_EQ(entries.identifier("pipe"), std::nullopt);
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

    EXPECT_EQ(entries.identifier("Class4999"), "4999");
    EXPECT_EQ(entries.identifier("Class0"), "0");
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
