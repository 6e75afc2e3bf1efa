// SPDX-License-Identifier: MIT

#include "platform/xdg/document_lock.h"

#include "platform/xdg/file_preferences.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

class DocumentLockTest : public testing::Test {
protected:
    ScratchFolder scratch;
    const fs::path path = scratch.path() / ".settings.json.lock";

    /// A process that holds the lock until it is killed.
    pid_t holder() const {
        int ends[2]{};
        EXPECT_EQ(::pipe(ends), 0);
        const pid_t process = ::fork();
        if (process == 0) {
            const auto lock = DocumentLock::take(path);
            [[maybe_unused]] const auto size = ::write(ends[1], "x", 1);
            for (;;)
                ::pause();
        }
        char held = 0;
        EXPECT_EQ(::read(ends[0], &held, 1), 1);
        ::close(ends[0]);
        ::close(ends[1]);
        return process;
    }
    static void kill(pid_t process) {
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    }
    std::vector<std::string> names() const { return ScratchFolder::names(scratch.path()); }
};

TEST_F(DocumentLockTest, OnlyOneHoldsTheLock) {
    auto lock = DocumentLock::take(path);
    ASSERT_TRUE(lock);
    EXPECT_FALSE(DocumentLock::take(path));

    lock.reset();
    EXPECT_TRUE(DocumentLock::take(path));
}

TEST_F(DocumentLockTest, TheFileExistsOnlyWhileTheLockIsHeld) {
    auto lock = DocumentLock::take(path);
    EXPECT_EQ(names(), std::vector<std::string>{".settings.json.lock"});

    lock.reset();

    EXPECT_EQ(names(), std::vector<std::string>());
}

TEST_F(DocumentLockTest, AWaitThatEndsInVainKeepsTheHoldersFile) {
    const auto lock = DocumentLock::take(path);

    EXPECT_FALSE(DocumentLock::take(path));

    EXPECT_TRUE(fs::exists(path));
}

TEST_F(DocumentLockTest, AStoppedHolderIsNotWaitedForLong) {
    const pid_t process = holder();
    ::kill(process, SIGSTOP);
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, WUNTRACED), process);

    const auto start = Clock::now();
    EXPECT_FALSE(DocumentLock::take(path));
    EXPECT_GE(Clock::now() - start, DocumentLock::kPatience);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5)) << "on a busy machine";
    kill(process);
}

TEST_F(DocumentLockTest, TheLockOfAKilledProcessIsFree) {
    kill(holder());
    ASSERT_TRUE(fs::exists(path));

    auto lock = DocumentLock::take(path);
    EXPECT_TRUE(lock);
    lock.reset();
    EXPECT_EQ(names(), std::vector<std::string>());
}

TEST_F(DocumentLockTest, WithoutAFolderOrAFileForTheLockTheWorkGoesOn) {
    EXPECT_TRUE(DocumentLock::take(scratch.path() / "missing" / "lock"));
    fs::create_directory(path);
    EXPECT_TRUE(DocumentLock::take(path));
    EXPECT_TRUE(fs::is_directory(path));
}

TEST_F(DocumentLockTest, TheLockIsBesideTheTargetOfALink) {
    fs::create_directory(scratch.path() / "dotfiles");
    fs::create_symlink("dotfiles/tessarel.json", scratch.path() / "settings.json");
    FilePreferences preferences(scratch.path());

    const auto lock = preferences.lock("settings");

    EXPECT_EQ(ScratchFolder::names(scratch.path() / "dotfiles"),
              std::vector<std::string>{".tessarel.json.lock"});
}

TEST_F(DocumentLockTest, TheFirstSaveLocksANewFolder) {
    FilePreferences preferences(scratch.path() / "new");

    const auto lock = preferences.lock("settings");

    EXPECT_EQ(ScratchFolder::names(scratch.path() / "new"), std::vector<std::string>{".settings.json.lock"});
    EXPECT_FALSE(preferences.lock("settings"));
}

// Four processes add one each, as copies of the program do when they save. Without the lock, and without the
// look whether the locked file is still in place, additions get lost.
TEST_F(DocumentLockTest, AdditionsOfSeveralProcessesAreNotLost) {
    constexpr int kProcesses = 4;
    constexpr int kRounds = 50;
    std::vector<pid_t> processes;
    for (int i = 0; i < kProcesses; ++i) {
        processes.push_back(::fork());
        if (processes.back() != 0)
            continue;
        FilePreferences preferences(scratch.path());
        for (int round = 0; round < kRounds; ++round) {
            SubscriptionPtr lock;
            while (!lock)
                lock = preferences.lock("settings");
            const int count = std::stoi(preferences.data("settings").value_or("0"));
            preferences.setData("settings", std::to_string(count + 1));
        }
        ::_exit(0);
    }
    for (const pid_t process : processes)
        ::waitpid(process, nullptr, 0);

    EXPECT_EQ(ScratchFolder::read(scratch.path() / "settings.json"), std::to_string(kProcesses * kRounds));
    EXPECT_EQ(names(), std::vector<std::string>{"settings.json"});
}

} // namespace
} // namespace tessarel::xdg
