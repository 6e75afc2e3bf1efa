// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/offered_applications.h"

#include "platform/xdg/applications/installed_applications.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

/// Two folders of desktop entries, the user's and the system's, on the desktop "Budgie:GNOME".
class OfferedApplicationsTest : public ::testing::Test {
protected:
    OfferedApplicationsTest() { ::setenv("LANGUAGE", "de_AT", 1); }
    ~OfferedApplicationsTest() override { ::unsetenv("LANGUAGE"); }

    static fs::path write(const fs::path& file, const std::string& lines = "") {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "[Desktop Entry]\nType=Application\nName=Program\n" << lines;
        return file;
    }

    /// Reads all applications, sorted by identifier.
    [[nodiscard]] std::vector<OfferedApplication> all() const {
        OfferedApplications applications({users, systems}, {"Budgie", "GNOME"});
        auto offered = applications.read(1000);
        EXPECT_TRUE(applications.isAtEnd());
        std::ranges::sort(offered, {}, &OfferedApplication::identifier);
        return offered;
    }

    [[nodiscard]] std::vector<std::string> identifiers() const {
        std::vector<std::string> identifiers;
        for (const OfferedApplication& application : all())
            identifiers.push_back(application.identifier);
        return identifiers;
    }

    using Identifiers = std::vector<std::string>;

    ScratchFolder scratch;
    fs::path users = scratch.path() / "users";
    fs::path systems = scratch.path() / "systems";
};

TEST_F(OfferedApplicationsTest, WithoutFoldersThereIsNone) {
    EXPECT_EQ(identifiers(), Identifiers{});
}

TEST_F(OfferedApplicationsTest, AnEntryIsReadInTheLanguageOfTheUser) {
    write(systems / "editor.desktop", "Name[de]=Texteditor\nName[fr]=Editeur\nGenericName=Editor\n"
                                      "GenericName[de]=Schreiben\nIcon=org.example.editor\n");

    const auto offered = all();

    ASSERT_EQ(offered.size(), 1U);
    EXPECT_EQ(offered[0].identifier, "editor");
    EXPECT_EQ(offered[0].name, "Texteditor");
    EXPECT_EQ(offered[0].genericName, "Schreiben");
    EXPECT_EQ(offered[0].icon, "org.example.editor");
}

TEST_F(OfferedApplicationsTest, TheIdentifierIsThatOfTheEntrysFile) {
    const std::vector<fs::path> files = {write(systems / "org.example.editor.desktop"),
                                         write(systems / "vendor" / "deep" / "viewer.desktop"),
                                         write(users / "vendor" / "painter.desktop")};
    const InstalledApplications installed({users, systems});
    Identifiers ofFiles;
    for (const fs::path& file : files)
        ofFiles.push_back(installed.identifierOfEntry(file).value_or(""));
    std::ranges::sort(ofFiles);

    EXPECT_EQ(identifiers(), ofFiles);
}

TEST_F(OfferedApplicationsTest, WhatMenusDoNotOfferIsLeftOut) {
    write(systems / "hidden.desktop", "Hidden=true\n");
    write(systems / "helper.desktop", "NoDisplay=true\n");
    write(systems / "monitor.desktop", "Terminal=true\n");
    write(systems / "link.desktop", "Type=Link\n");
    write(systems / "nameless.desktop", "Name=\n");
    write(systems / "large.desktop", std::string(1 << 20, 'x'));
    write(systems / "readme.txt");
    write(systems / "editor.desktop", "NoDisplay=false\nHidden=false\n");

    EXPECT_EQ(identifiers(), Identifiers{"editor"});
}

TEST_F(OfferedApplicationsTest, WhatIsMeantForOtherDesktopsIsLeftOut) {
    write(systems / "other.desktop", "OnlyShowIn=KDE;XFCE;\n");
    write(systems / "not-here.desktop", "NotShowIn=KDE;GNOME;\n");
    write(systems / "here.desktop", "OnlyShowIn=KDE;GNOME;\n");
    write(systems / "not-there.desktop", "NotShowIn=KDE;\n");

    EXPECT_EQ(identifiers(), (Identifiers{"here", "not-there"}));
}

TEST_F(OfferedApplicationsTest, AnApplicationWhoseProgramIsGoneIsLeftOut) {
    write(systems / "gone.desktop", "TryExec=/nowhere/program\n");
    write(systems / "here.desktop", "TryExec=sh\n");

    EXPECT_EQ(identifiers(), Identifiers{"here"});
}

TEST_F(OfferedApplicationsTest, AnEntryOfTheUserReplacesThatOfTheSystem) {
    write(systems / "editor.desktop");
    write(systems / "viewer.desktop");
    write(users / "editor.desktop", "Name=Mine\n");
    write(users / "viewer.desktop", "Hidden=true\n");

    const auto offered = all();

    ASSERT_EQ(offered.size(), 1U);
    EXPECT_EQ(offered[0].name, "Mine");
}

TEST_F(OfferedApplicationsTest, NoMoreFilesAreLookedAtAtATimeThanAskedFor) {
    constexpr int kFiles = 30;
    for (int i = 0; i < kFiles; ++i)
        write(systems / (std::to_string(i) + (i % 3 == 0 ? ".desktop" : ".txt")));
    OfferedApplications applications({users, systems}, {});

    std::size_t found = 0;
    int times = 0;
    for (; !applications.isAtEnd(); ++times) {
        const auto some = applications.read(4);
        EXPECT_LE(some.size(), 4U);
        found += some.size();
    }

    EXPECT_EQ(found, 10U);
    EXPECT_GE(times, kFiles / 4) << "files that are no entries count, too";
    EXPECT_EQ(applications.read(4).size(), 0U);
}

} // namespace
} // namespace tessarel::xdg
