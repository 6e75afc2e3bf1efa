// SPDX-License-Identifier: MIT

#include "platform/xdg/file_preferences.h"

#include "model/settings/store.h"
#include "platform/xdg/document_file.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <optional>
#include <pwd.h>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

constexpr std::string_view kKey = "settings";

mode_t permissions(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

class FilePreferencesTest : public testing::Test {
protected:
    ScratchFolder scratch;
    const fs::path folder = scratch.path() / "config" / "tessarel";
    const fs::path file = folder / "settings.json";
    FilePreferences preferences{folder};

    void store(std::string_view bytes) const {
        fs::create_directories(folder);
        ScratchFolder::write(file, bytes);
    }

    std::optional<std::string> stored() const { return ScratchFolder::read(file); }
    std::optional<std::string> storedAs(const std::string& name) const {
        return ScratchFolder::read(folder / name);
    }
    Names names() const { return ScratchFolder::names(folder); }
};

TEST_F(FilePreferencesTest, WithoutAFileThereIsNoValueAndNoFolderIsCreated) {
    EXPECT_EQ(preferences.data(kKey), std::nullopt);
    EXPECT_FALSE(fs::exists(scratch.path() / "config"));
}

TEST_F(FilePreferencesTest, SavedBytesAreReadBack) {
    const std::string bytes("{\"a\":\0\xff}\n", 9);

    preferences.setData(kKey, bytes);

    EXPECT_EQ(preferences.data(kKey), bytes);
    EXPECT_EQ(FilePreferences(folder).data(kKey), bytes);
    EXPECT_EQ(stored(), bytes);
}

TEST_F(FilePreferencesTest, ASaveReplacesALongerDocument) {
    preferences.setData(kKey, std::string(100'000, 'a'));
    preferences.setData(kKey, "b");

    EXPECT_EQ(stored(), "b");
    EXPECT_EQ(names(), Names{"settings.json"});
}

TEST_F(FilePreferencesTest, EachKeyHasItsFile) {
    preferences.setData("tessarel.settings.v1", "one");
    preferences.setData("other", "two");

    EXPECT_EQ(names(), (Names{"other.json", "tessarel.settings.v1.json"}));
    EXPECT_EQ(preferences.data("tessarel.settings.v1"), "one");
}

TEST_F(FilePreferencesTest, AnEmptyFileIsAnEmptyValue) {
    store("");

    EXPECT_EQ(preferences.data(kKey), "");
}

TEST_F(FilePreferencesTest, NewFoldersAndFilesArePrivateToTheUser) {
    const mode_t before = ::umask(0);
    preferences.setData(kKey, "new");
    ::umask(before);

    EXPECT_EQ(permissions(scratch.path() / "config"), 0700U);
    EXPECT_EQ(permissions(folder), 0700U);
    EXPECT_EQ(permissions(file), 0600U);
}

TEST_F(FilePreferencesTest, AFileKeepsItsPermissions) {
    store("old");
    fs::permissions(file, fs::perms(0664));

    preferences.setData(kKey, "new");

    EXPECT_EQ(stored(), "new");
    EXPECT_EQ(permissions(file), 0664U);
}

TEST_F(FilePreferencesTest, ASymbolicLinkIsKeptAndItsTargetIsReplaced) {
    const fs::path target = scratch.path() / "dotfiles" / "tessarel.json";
    fs::create_directories(folder);
    fs::create_directories(target.parent_path());
    ScratchFolder::write(target, "old");
    fs::create_symlink("../../dotfiles/tessarel.json", file);

    EXPECT_EQ(preferences.data(kKey), "old");
    preferences.setData(kKey, "new");

    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(ScratchFolder::read(target), "new");
    EXPECT_EQ(names(), Names{"settings.json"});
    EXPECT_EQ(ScratchFolder::names(target.parent_path()), Names{"tessarel.json"});
}

TEST_F(FilePreferencesTest, ALinkToALinkIsFollowedToItsEnd) {
    fs::create_directories(folder);
    fs::create_symlink("second", file);
    fs::create_symlink(scratch.path() / "third", folder / "second");
    ScratchFolder::write(scratch.path() / "third", "old");

    preferences.setData(kKey, "new");

    EXPECT_EQ(fs::read_symlink(file), "second");
    EXPECT_TRUE(fs::is_symlink(folder / "second"));
    EXPECT_EQ(ScratchFolder::read(scratch.path() / "third"), "new");
}

TEST_F(FilePreferencesTest, TheFirstSaveCreatesTheTargetOfADanglingLink) {
    fs::create_directories(folder);
    fs::create_symlink(scratch.path() / "dotfiles" / "tessarel.json", file);

    EXPECT_EQ(preferences.data(kKey), std::nullopt);
    preferences.setData(kKey, "new");

    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(ScratchFolder::read(scratch.path() / "dotfiles" / "tessarel.json"), "new");
}

TEST_F(FilePreferencesTest, ALinkLoopIsLeftAlone) {
    fs::create_directories(folder);
    fs::create_symlink("other", file);
    fs::create_symlink("settings.json", folder / "other");

    EXPECT_EQ(preferences.data(kKey), std::nullopt);
    preferences.setData(kKey, "new");

    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_symlink(folder / "other"));
    EXPECT_EQ(names(), (Names{"other", "settings.json"}));
}

TEST_F(FilePreferencesTest, AFolderThatIsADanglingLinkIsLeftAlone) {
    fs::create_symlink(scratch.path() / "gone", scratch.path() / "config");

    preferences.setData(kKey, "new");

    EXPECT_EQ(ScratchFolder::names(scratch.path()), Names{"config"});
}

TEST_F(FilePreferencesTest, RejectedBytesAreKeptInASeparateFile) {
    store("broken");

    preferences.keepRejected(kKey);
    EXPECT_EQ(names(), Names{"settings.json"});
    preferences.setData(kKey, "new");

    EXPECT_EQ(stored(), "new");
    EXPECT_EQ(storedAs("settings.json.rejected"), "broken");
}

TEST_F(FilePreferencesTest, OnlyTheFirstSaveAfterARejectionKeepsACopy) {
    store("broken");
    preferences.keepRejected(kKey);

    preferences.setData(kKey, "new");
    preferences.setData(kKey, "newer");

    EXPECT_EQ(names(), (Names{"settings.json", "settings.json.rejected"}));
    EXPECT_EQ(storedAs("settings.json.rejected"), "broken");
}

TEST_F(FilePreferencesTest, AnEarlierRejectedDocumentIsNotLost) {
    for (const char* bytes : {"first", "second", "third"}) {
        store(bytes);
        preferences.keepRejected(kKey);
        preferences.setData(kKey, "good");
    }

    EXPECT_EQ(storedAs("settings.json.rejected"), "first");
    EXPECT_EQ(storedAs("settings.json.rejected.2"), "second");
    EXPECT_EQ(storedAs("settings.json.rejected.3"), "third");
}

TEST_F(FilePreferencesTest, TheSameRejectedDocumentIsKeptOnce) {
    for (int round = 0; round < 3; ++round) {
        fs::remove(file);
        store("broken");
        preferences.keepRejected(kKey);
        preferences.setData(kKey, "good");
    }

    EXPECT_EQ(names(), (Names{"settings.json", "settings.json.rejected"}));
}

TEST_F(FilePreferencesTest, ARejectedDocumentIsNotReplacedWhenNoCopyCanBeKept) {
    store("broken");
    ScratchFolder::write(folder / "settings.json.rejected", "1");
    for (int number = 2; number <= 99; ++number)
        ScratchFolder::write(folder / ("settings.json.rejected." + std::to_string(number)), "1");

    preferences.keepRejected(kKey);
    preferences.setData(kKey, "new");

    EXPECT_EQ(stored(), "broken");
    EXPECT_EQ(names().size(), 100U);
}

TEST_F(FilePreferencesTest, ASaveSucceedsWhenTheRejectedDocumentIsGone) {
    store("broken");
    preferences.keepRejected(kKey);
    fs::remove(file);

    preferences.setData(kKey, "new");

    EXPECT_EQ(names(), Names{"settings.json"});
}

TEST_F(FilePreferencesTest, UndecodableSettingsAreKeptAtTheNextSave) {
    const fs::path document = folder / "tessarel.settings.v1.json";
    fs::create_directories(folder);
    ScratchFolder::write(document, R"({"gap": "8"})");

    Store store(preferences);
    EXPECT_EQ(store.settings, AppSettings());
    EXPECT_EQ(ScratchFolder::read(document), R"({"gap": "8"})");
    store.settings.gap = 8;
    store.save();

    EXPECT_EQ(Store(preferences).settings.gap, 8);
    EXPECT_EQ(storedAs("tessarel.settings.v1.json.rejected"), R"({"gap": "8"})");
}

TEST_F(FilePreferencesTest, AFileThatIsTooLargeIsNotReadAndNotLost) {
    store("large");
    fs::resize_file(file, DocumentFile::kLargest + 1);

    EXPECT_EQ(preferences.data(kKey), std::nullopt);
    preferences.setData(kKey, "new");

    EXPECT_EQ(stored(), "new");
    EXPECT_EQ(fs::file_size(folder / "settings.json.rejected"), DocumentFile::kLargest + 1);
}

TEST_F(FilePreferencesTest, TheLargestFileIsReadWhole) {
    store("large");
    fs::resize_file(file, DocumentFile::kLargest);

    const auto bytes = preferences.data(kKey);

    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->size(), DocumentFile::kLargest);
}

TEST_F(FilePreferencesTest, AFolderInPlaceOfTheFileIsLeftAlone) {
    fs::create_directories(file / "inside");

    EXPECT_EQ(preferences.data(kKey), std::nullopt);
    preferences.setData(kKey, "new");

    EXPECT_TRUE(fs::is_directory(file / "inside"));
    EXPECT_EQ(names(), Names{"settings.json"});
}

TEST_F(FilePreferencesTest, APipeInPlaceOfTheFileDoesNotBlockAndIsLeftAlone) {
    fs::create_directories(folder);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);

    EXPECT_EQ(preferences.data(kKey), std::nullopt);
    preferences.setData(kKey, "new");

    EXPECT_TRUE(fs::is_fifo(file));
}

TEST_F(FilePreferencesTest, AFileInPlaceOfTheFolderIsLeftAlone) {
    ScratchFolder::write(scratch.path() / "config", "mine");

    EXPECT_EQ(preferences.data(kKey), std::nullopt);
    preferences.setData(kKey, "new");

    EXPECT_EQ(ScratchFolder::read(scratch.path() / "config"), "mine");
}

TEST_F(FilePreferencesTest, AnEmptyPathStoresNothing) {
    FilePreferences nowhere{fs::path()};

    nowhere.setData("tessarel-test-nowhere", "new");

    EXPECT_EQ(nowhere.data("tessarel-test-nowhere"), std::nullopt);
    EXPECT_FALSE(fs::exists("tessarel-test-nowhere.json"));
}

pid_t endedProcess() {
    const pid_t process = ::fork();
    if (process == 0)
        ::_exit(0);
    ::waitpid(process, nullptr, 0);
    return process;
}

TEST_F(FilePreferencesTest, TemporaryFilesOfEndedProcessesAreRemovedByTheNextSave) {
    store("old");
    const auto temporary = [&](pid_t writer) {
        return folder / (".settings.json." + std::to_string(writer) + ".tmp");
    };
    ScratchFolder::write(temporary(endedProcess()), "stale");
    ScratchFolder::write(temporary(::getpid()), "stale"); // left by an earlier process with the same id

    preferences.setData(kKey, "new");

    EXPECT_EQ(names(), Names{"settings.json"});
    EXPECT_EQ(stored(), "new");
}

TEST_F(FilePreferencesTest, FilesThatOnlyLookLikeTemporaryOnesStay) {
    store("old");
    const std::string ended = std::to_string(endedProcess());
    const Names others{".other.json." + ended + ".tmp",
                       ".settings.json." + std::to_string(::getppid()) + ".tmp", // may be writing it now
                       ".settings.json." + ended + ".tmp.bak",
                       ".settings.json." + ended + "x.tmp",
                       ".settings.json.-5.tmp",
                       ".settings.json..tmp",
                       ".settings.json.99999999999999999999.tmp",
                       "settings.json." + ended + ".tmp"};
    for (const auto& name : others)
        ScratchFolder::write(folder / name, "mine");

    preferences.setData(kKey, "new");

    for (const auto& name : others)
        EXPECT_EQ(storedAs(name), "mine") << name;
}

// A real limit of the kernel: the first write is cut short and the second one fails.
TEST_F(FilePreferencesTest, AFileSizeLimitLeavesTheOldFile) {
    store("old");
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{1000, before.rlim_max};

    ::setrlimit(RLIMIT_FSIZE, &limit);
    preferences.setData(kKey, std::string(5000, 'n'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);

    EXPECT_EQ(stored(), "old");
    EXPECT_EQ(names(), Names{"settings.json"});
}

/// Runs `work` in a child process without root's privileges. Returns true if the child exits with 0.
bool asOrdinaryUser(const std::function<void()>& work) {
    constexpr uid_t kNobody = 65534;
    const pid_t process = ::fork();
    if (process == 0) {
        if (::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            ::_exit(1);
        work();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(FilePreferencesTest, AnUnwritableFolderKeepsTheOldFile) {
    store("old");
    fs::permissions(scratch.path(), fs::perms(0755));
    fs::permissions(folder, fs::perms(0555));

    EXPECT_TRUE(asOrdinaryUser([&] { preferences.setData(kKey, "new"); }));

    fs::permissions(folder, fs::perms(0755));
    EXPECT_EQ(stored(), "old");
    EXPECT_EQ(names(), Names{"settings.json"});
}

TEST_F(FilePreferencesTest, AnUnreadableFileIsKeptInASeparateFile) {
    fs::permissions(scratch.path(), fs::perms(0777));

    EXPECT_TRUE(asOrdinaryUser([&] {
        store("secret");
        fs::permissions(file, fs::perms(0));
        if (preferences.data(kKey))
            ::_exit(2);
        preferences.setData(kKey, "new");
    }));

    EXPECT_EQ(stored(), "new");
    EXPECT_EQ(permissions(file), 0400U);
    EXPECT_EQ(storedAs("settings.json.rejected"), "secret");
}

class UserFolderTest : public testing::Test {
protected:
    void TearDown() override {
        restore("XDG_CONFIG_HOME", m_configuration);
        restore("HOME", m_home);
    }

    static void set(const char* configuration, const char* home) {
        restore("XDG_CONFIG_HOME", configuration ? std::optional<std::string>(configuration) : std::nullopt);
        restore("HOME", home ? std::optional<std::string>(home) : std::nullopt);
    }

private:
    static std::optional<std::string> present(const char* variable) {
        const char* const value = std::getenv(variable);
        return value ? std::optional<std::string>(value) : std::nullopt;
    }
    static void restore(const char* variable, const std::optional<std::string>& value) {
        if (value)
            ::setenv(variable, value->c_str(), 1);
        else
            ::unsetenv(variable);
    }

    std::optional<std::string> m_configuration = present("XDG_CONFIG_HOME");
    std::optional<std::string> m_home = present("HOME");
};

TEST_F(UserFolderTest, IsInTheConfigurationFolder) {
    set("/etc/xdg-home", "/home/someone");
    EXPECT_EQ(FilePreferences::userFolder(), "/etc/xdg-home/tessarel");
}

TEST_F(UserFolderTest, AnEmptyOrRelativeConfigurationFolderIsIgnored) {
    set(nullptr, "/home/someone");
    EXPECT_EQ(FilePreferences::userFolder(), "/home/someone/.config/tessarel");
    set("", "/home/someone");
    EXPECT_EQ(FilePreferences::userFolder(), "/home/someone/.config/tessarel");
    set("relative/folder", "/home/someone");
    EXPECT_EQ(FilePreferences::userFolder(), "/home/someone/.config/tessarel");
}

TEST_F(UserFolderTest, WithoutAHomeVariableTheHomeOfTheAccountIsUsed) {
    const passwd* const account = ::getpwuid(::getuid());
    ASSERT_NE(account, nullptr);
    const auto expected = fs::path(account->pw_dir) / ".config" / "tessarel";

    set(nullptr, nullptr);
    EXPECT_EQ(FilePreferences::userFolder(), expected);
    set(nullptr, "relative");
    EXPECT_EQ(FilePreferences::userFolder(), expected);
}

} // namespace
} // namespace tessarel::xdg
