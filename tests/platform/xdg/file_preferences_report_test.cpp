// SPDX-License-Identifier: MIT

#include "platform/xdg/file_preferences.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

constexpr std::string_view kReportKey = "settings";

class FilePreferencesReportTest : public testing::Test {
protected:
    ScratchFolder scratch;
    const fs::path folder = scratch.path() / "tessarel";
    const fs::path file = folder / "settings.json";
    Lines reports;
    const FilePreferences::Report report = [this](const std::string& line) { reports.push_back(line); };
    FilePreferences preferences{folder, nullptr, report};
};

TEST_F(FilePreferencesReportTest, AKeptDocumentIsReportedOnceWithItsPath) {
    fs::create_directories(folder);
    ScratchFolder::write(file, "broken");
    preferences.keepRejected(kReportKey);
    EXPECT_EQ(reports, Lines());

    preferences.setData(kReportKey, "new");
    preferences.setData(kReportKey, "newer");

    const std::string copy = (folder / "settings.json.rejected").string();
    EXPECT_EQ(reports, Lines{"the settings could not be read; a copy of them is in " + copy});
}

TEST_F(FilePreferencesReportTest, SavesThatFailInARowAreReportedOnce) {
    for (int row = 0; row < 2; ++row) {
        fs::create_directories(file);
        EXPECT_FALSE(preferences.setData(kReportKey, "new"));
        EXPECT_FALSE(preferences.setData(kReportKey, "newer"));
        fs::remove(file);
        EXPECT_TRUE(preferences.setData(kReportKey, "newest"));
        fs::remove(file);
    }

    const std::string failure = "cannot save the settings in " + file.string();
    EXPECT_EQ(reports, (Lines{failure, failure}));
}

TEST_F(FilePreferencesReportTest, ADocumentThatCannotBeKeptIsReportedAsAFailedSave) {
    fs::create_directories(file);
    preferences.keepRejected(kReportKey);

    EXPECT_FALSE(preferences.setData(kReportKey, "new"));

    EXPECT_EQ(reports, Lines{"cannot save the settings in " + file.string()});
}

TEST_F(FilePreferencesReportTest, ASaveWithoutAHomeFolderIsReported) {
    FilePreferences nowhere{fs::path(), nullptr, report};

    nowhere.setData(kReportKey, "new");

    EXPECT_EQ(reports, Lines{"cannot save the settings: the user has no home folder"});
}

} // namespace
} // namespace tessarel::xdg
