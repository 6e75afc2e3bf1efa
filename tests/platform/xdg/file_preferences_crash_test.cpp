// SPDX-License-Identifier: MIT

// Interrupts a save, or makes it fail, at each of its system calls in turn, and checks what is left on the
// disk.

#include "platform/xdg/file_preferences.h"
#include "support/scratch_folder.h"
#include "system_call_tracer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <set>
#include <string>
#include <sys/syscall.h>
#include <vector>

namespace tessarel::xdg {
namespace {

constexpr std::string_view kSettingsKey = "settings";
const std::string kOld(20'000, 'o');
const std::string kNew(30'000, 'n');

/// The state of the disk before a save.
struct Before {
    std::string name;
    bool hasOld = true;
    bool isRejected = false;
    bool isLink = false;
};

class InterruptedSaveTest : public testing::TestWithParam<Before> {
protected:
    ScratchFolder scratch;

    std::filesystem::path folder() const { return scratch.path() / "config" / "tessarel"; }
    std::filesystem::path file() const { return folder() / "settings.json"; }
    std::filesystem::path realFolder() const {
        return GetParam().isLink ? scratch.path() / "dotfiles" : folder();
    }

    void prepare() {
        scratch.clear();
        if (!GetParam().hasOld)
            return;
        std::filesystem::create_directories(folder());
        std::filesystem::create_directories(realFolder());
        scratch.write(realFolder() / "settings.json", kOld);
        if (GetParam().isLink)
            std::filesystem::create_symlink(realFolder() / "settings.json", file());
    }

    void save(const std::string& bytes) const {
        FilePreferences preferences(folder());
        if (GetParam().isRejected && preferences.data(kSettingsKey) == kOld)
            preferences.keepRejected(kSettingsKey);
        preferences.setData(kSettingsKey, bytes);
    }

    std::vector<std::string> names() const { return ScratchFolder::names(realFolder()); }

    void expectTheOldOrTheNewWhole() const {
        const auto content = ScratchFolder::read(file());
        const auto old = GetParam().hasOld ? std::optional(kOld) : std::nullopt;
        EXPECT_TRUE(content == old || content == kNew);
        if (GetParam().isRejected && content == kNew) {
            EXPECT_EQ(ScratchFolder::read(realFolder() / "settings.json.rejected"), kOld);
        }
    }

    void expectThatTheNextSaveWorks() const {
        save("third");

        EXPECT_EQ(ScratchFolder::read(file()), "third");
        EXPECT_EQ(std::filesystem::is_symlink(file()), GetParam().isLink);
        std::vector<std::string> expected{"settings.json"};
        if (GetParam().isRejected) {
            expected.emplace_back("settings.json.rejected");
            EXPECT_EQ(ScratchFolder::read(realFolder() / "settings.json.rejected"), kOld);
        }
        EXPECT_EQ(names(), expected);
    }
};

TEST_P(InterruptedSaveTest, KilledAtAnySystemCallTheFileIsTheOldOrTheNewOne) {
    std::set<std::optional<std::string>> contents;
    bool isDone = false;
    for (int calls = 1; !isDone; ++calls) {
        SCOPED_TRACE(calls);
        prepare();
        TracedWork work([this] { save(kNew); });
        ASSERT_TRUE(work.isTraced());
        for (int call = 0; call < calls && !isDone; ++call)
            isDone = !nextBeginning(work);
        work.kill();

        contents.insert(ScratchFolder::read(file()));
        expectTheOldOrTheNewWhole();
        expectThatTheNextSaveWorks();
        ASSERT_FALSE(HasFailure());
    }

    EXPECT_EQ(contents.size(), 2U); // some were killed before the replacement and some after it
}

#if defined(__x86_64__)

class FailingSaveTest : public InterruptedSaveTest {
protected:
    /// Returns the contents that are left by saves in each of which another system call fails.
    std::set<std::optional<std::string>> contentsAfterFailures(int error) {
        std::set<std::optional<std::string>> contents;
        bool hasFailed = true;
        prepare();
        save(kNew); // the sanitizer's first check of a type makes system calls of its own
        TracedWork work([this] { save(kNew); });
        EXPECT_TRUE(work.isTraced());
        for (int number = 1; hasFailed; ++number) {
            SCOPED_TRACE(number);
            prepare();
            hasFailed = failAt(number, error, work);
            EXPECT_TRUE(work.finish());

            contents.insert(ScratchFolder::read(file()));
            expectTheOldOrTheNewWhole();
            expectNoTemporaryFile();
            expectThatTheNextSaveWorks();
            if (HasFailure())
                break;
            work.again();
        }
        return contents;
    }

    void expectNoTemporaryFile() const {
        const auto present = names();
        EXPECT_TRUE(std::none_of(present.begin(), present.end(),
                                 [](const std::string& name) { return name.ends_with(".tmp"); }));
    }
};

TEST_P(FailingSaveTest, AFullDiskAtAnySystemCallLeavesTheOldOrTheNewFileAndNothingElse) {
    EXPECT_EQ(contentsAfterFailures(ENOSPC).size(), 2U);
}

TEST_P(FailingSaveTest, ABrokenDiskAtAnySystemCallLeavesTheOldOrTheNewFileAndNothingElse) {
    EXPECT_EQ(contentsAfterFailures(EIO).size(), 2U);
}

TEST_P(FailingSaveTest, ADiskThatBecomesReadOnlyAtAnySystemCallLeavesTheOldOrTheNewFileAndNothingElse) {
    EXPECT_EQ(contentsAfterFailures(EROFS).size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Before, FailingSaveTest,
                         testing::Values(Before{"NoFile", false}, Before{"AFile"},
                                         Before{"ARejectedFile", true, true},
                                         Before{"ALink", true, false, true}),
                         [](const auto& instance) { return instance.param.name; });

#endif

TEST_P(InterruptedSaveTest, TheNewFileIsFlushedBeforeItReplacesTheOldOne) {
    prepare();
    TracedWork work([this] { save(kNew); });
    ASSERT_TRUE(work.isTraced());

    std::vector<std::string> calls;
    while (const auto halt = work.next()) {
        if (halt->systemCall == SYS_fsync)
            calls.emplace_back("fsync");
        else if (halt->systemCall == SYS_rename)
            calls.emplace_back("rename");
    }

    const auto rename = std::find(calls.begin(), calls.end(), "rename");
    ASSERT_NE(rename, calls.end());
    ASSERT_NE(rename, calls.begin());
    EXPECT_EQ(*(rename - 1), "fsync"); // the file
    EXPECT_EQ(std::vector<std::string>(rename + 1, calls.end()),
              std::vector<std::string>{"fsync"}); // the folder
}

INSTANTIATE_TEST_SUITE_P(Before, InterruptedSaveTest,
                         testing::Values(Before{"NoFile", false}, Before{"AFile"},
                                         Before{"ARejectedFile", true, true},
                                         Before{"ALink", true, false, true}),
                         [](const auto& instance) { return instance.param.name; });

} // namespace
} // namespace tessarel::xdg
