// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/login_item.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;
using Status = LoginItemPort::Status;

/// Two copies of the program on one machine: one that is installed, and one in a build folder.
class LoginCopiesTest : public testing::Test {
protected:
    LoginCopiesTest() {
        std::string pattern = fs::temp_directory_path() / "tessarel-copies-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        folder = pattern;
        installed = program("libexec/tessarel/tessarel");
        launcher = program("bin/tessarel");
        built = program("build/tessarel");
    }
    ~LoginCopiesTest() override { fs::remove_all(folder); }

    [[nodiscard]] XdgLoginItem itemOf(const fs::path& copy) const {
        return XdgLoginItem({.configHome = folder / "config",
                             .configFolders = {folder / "all"},
                             .program = commandOf(copy),
                             .name = "Tessarel",
                             .desktops = {}});
    }

    /// Creates an executable file below the scratch folder, and returns its path.
    [[nodiscard]] fs::path program(const fs::path& name) const {
        const fs::path file = folder / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "#!/bin/sh\n";
        fs::permissions(file, fs::perms::owner_all);
        return file;
    }

    /// Writes an autostart entry that starts `command`, in the user's folder or in that for all users.
    void putEntry(const fs::path& config, const fs::path& command) const {
        const fs::path file = folder / config / "autostart/tessarel.desktop";
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "[Desktop Entry]\nType=Application\nExec=" << command.string() << "\n";
    }

    fs::path folder;
    fs::path installed;
    fs::path launcher;
    fs::path built;
};

TEST_F(LoginCopiesTest, OnlyTheCopyThatTheEntryStartsIsRegistered) {
    XdgLoginItem one = itemOf(installed);
    XdgLoginItem other = itemOf(built);

    EXPECT_EQ(one.registerItem(), std::nullopt);
    EXPECT_EQ(one.status(), Status::Enabled);
    EXPECT_EQ(other.status(), Status::NotRegistered);

    EXPECT_EQ(other.registerItem(), std::nullopt);
    EXPECT_EQ(one.status(), Status::NotRegistered);
    EXPECT_EQ(other.status(), Status::Enabled);
}

TEST_F(LoginCopiesTest, AnotherCopyThatStartsForAllUsersIsLeftAlone) {
    XdgLoginItem other = itemOf(built);
    putEntry("all", launcher);

    EXPECT_EQ(other.status(), Status::NotRegistered);
    EXPECT_EQ(other.registerItem(), std::nullopt);
    EXPECT_EQ(other.unregisterItem(), std::nullopt);

    EXPECT_FALSE(fs::exists(folder / "config/autostart/tessarel.desktop"));
    EXPECT_EQ(itemOf(installed).status(), Status::Enabled);
}

TEST_F(LoginCopiesTest, OneCopyMayHaveSeveralNames) {
    const fs::path link = folder / "link/tessarel";
    fs::create_directories(link.parent_path());
    fs::create_symlink(launcher, link);
    for (const fs::path& name : {launcher, installed, link}) {
        putEntry("config", name);
        EXPECT_EQ(itemOf(installed).status(), Status::Enabled) << name;
        EXPECT_EQ(itemOf(built).status(), Status::NotRegistered) << name;
    }
}

TEST_F(LoginCopiesTest, AScriptOfTheUserMayStartAnyCopy) {
    putEntry("config", program("bin/start-tessarel"));

    EXPECT_EQ(itemOf(installed).status(), Status::Enabled);
    EXPECT_EQ(itemOf(built).status(), Status::Enabled);
}

} // namespace
} // namespace tessarel::xdg
