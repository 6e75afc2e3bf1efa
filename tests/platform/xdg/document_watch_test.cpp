// SPDX-License-Identifier: MIT

#include "platform/xdg/document_watch.h"

#include "platform/xdg/document_file.h"
#include "readable_loop.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

class DocumentWatchTest : public testing::Test {
protected:
    ScratchFolder scratch;
    const fs::path folder = scratch.path() / "config" / "tessarel";
    const fs::path file = folder / "settings.json";
    ReadableLoop loop;
    int changes = 0;
    std::unique_ptr<DocumentWatch> watch;

    void watchFile() {
        watch = std::make_unique<DocumentWatch>(file, loop.onReadable(), [this] { ++changes; });
    }
    void store(const fs::path& path, std::string_view bytes = "old") {
        fs::create_directories(path.parent_path());
        ScratchFolder::write(path, bytes);
    }
    /// Returns whether anything has been reported since the last call.
    bool hasChanged() {
        loop.deliver();
        return std::exchange(changes, 0) > 0;
    }
    /// Replaces a file as most editors do.
    void replace(const fs::path& path, std::string_view bytes) {
        const fs::path other = path.parent_path() / "new~";
        ScratchFolder::write(other, bytes);
        fs::rename(other, path);
    }
};

TEST_F(DocumentWatchTest, NothingIsReportedUntilSomethingChanges) {
    store(file);
    watchFile();

    EXPECT_FALSE(hasChanged());
    EXPECT_EQ(loop.wakeUps(), 0);
}

TEST_F(DocumentWatchTest, AFileThatIsReplacedIsReportedEachTime) {
    store(file);
    watchFile();

    for (const char* bytes : {"one", "two", "three"}) {
        replace(file, bytes);
        EXPECT_TRUE(hasChanged()) << bytes;
    }
}

TEST_F(DocumentWatchTest, EachWriteInPlaceIsReported) {
    store(file);
    watchFile();

    const FileDescriptor open(file, O_WRONLY | O_TRUNC);
    EXPECT_TRUE(hasChanged()) << "truncated";
    ASSERT_EQ(::write(open.get(), "ne", 2), 2);
    EXPECT_TRUE(hasChanged()) << "first part";
    ASSERT_EQ(::write(open.get(), "w", 1), 1);
    EXPECT_TRUE(hasChanged()) << "second part";
}

TEST_F(DocumentWatchTest, ASaveByTheProgramItselfIsReported) {
    store(file);
    watchFile();

    ASSERT_TRUE(DocumentFile(file).replace("new"));

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, AFileThatIsDeletedAndCreatedAgainIsReported) {
    store(file);
    watchFile();

    fs::remove(file);
    EXPECT_TRUE(hasChanged());
    store(file);
    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, AFileThatBecomesReadableIsReported) {
    store(file);
    fs::permissions(file, fs::perms(0));
    watchFile();

    fs::permissions(file, fs::perms(0600));

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, OtherFilesInTheFolderAreNotReported) {
    store(file);
    watchFile();

    store(folder / "other.json");
    replace(folder / "other.json", "new");
    fs::remove(folder / "other.json");

    EXPECT_FALSE(hasChanged());
}

TEST_F(DocumentWatchTest, TheReleaseOfTheLockIsReportedAndAnAttemptIsNot) {
    store(file);
    watchFile();

    auto lock = DocumentFile(file).lock();
    EXPECT_FALSE(DocumentFile(file).lock());
    EXPECT_FALSE(hasChanged());
    lock.reset();

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, TheReleaseOfTheLockBesideTheTargetOfALinkIsReported) {
    const fs::path target = scratch.path() / "dotfiles" / "tessarel.json";
    store(target);
    fs::create_directories(folder);
    fs::create_symlink("../../dotfiles/tessarel.json", file);
    watchFile();

    auto lock = DocumentFile(file).lock();
    EXPECT_FALSE(hasChanged());
    lock.reset();

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, AChangeAmongMoreThanTheSystemRemembersIsReported) {
    store(file);
    watchFile();

    const int most = std::stoi(ScratchFolder::read("/proc/sys/fs/inotify/max_queued_events").value_or("0"));
    ASSERT_GT(most, 0);
    for (int i = 0; i < most; ++i) // at least one event each
        ScratchFolder::write(folder / (i % 2 == 0 ? "one.json" : "other.json"), "new");
    replace(file, "new");

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, OtherFilesInTheFolderAboveDoNotWakeTheProgram) {
    store(file);
    watchFile();

    store(scratch.path() / "config" / "other.json");
    store(scratch.path() / "other.json");

    EXPECT_FALSE(hasChanged());
    EXPECT_EQ(loop.wakeUps(), 0);
}

TEST_F(DocumentWatchTest, AFileWhoseFoldersDoNotExistYetIsReported) {
    watchFile();

    fs::create_directories(folder.parent_path());
    hasChanged();
    fs::create_directories(folder);
    hasChanged();
    store(file);

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, AFileThatAppearsTogetherWithItsFoldersIsReported) {
    watchFile();

    store(file);
    EXPECT_TRUE(hasChanged());
    replace(file, "new");
    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, AFolderThatIsMovedAwayAndReplacedIsFollowed) {
    store(file);
    store(scratch.path() / "backup" / "settings.json");
    watchFile();

    fs::rename(folder, scratch.path() / "gone");
    EXPECT_TRUE(hasChanged());
    fs::rename(scratch.path() / "backup", folder);
    EXPECT_TRUE(hasChanged());
    replace(file, "new");
    EXPECT_TRUE(hasChanged());
    replace(scratch.path() / "gone" / "settings.json", "new");
    EXPECT_FALSE(hasChanged()) << "the folder that was moved away";
}

TEST_F(DocumentWatchTest, AFolderThatIsReplacedInOneStepIsFollowed) {
    store(file);
    store(scratch.path() / "backup" / "settings.json");
    watchFile();

    fs::remove_all(folder);
    fs::rename(scratch.path() / "backup", folder);
    EXPECT_TRUE(hasChanged());
    replace(file, "new");

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, AFolderAboveThatIsReplacedIsFollowed) {
    store(file);
    store(scratch.path() / "backup" / "tessarel" / "settings.json");
    watchFile();

    fs::rename(scratch.path() / "config", scratch.path() / "gone");
    fs::rename(scratch.path() / "backup", scratch.path() / "config");
    EXPECT_TRUE(hasChanged());
    replace(file, "new");

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, TheTargetOfASymbolicLinkIsWatched) {
    const fs::path target = scratch.path() / "dotfiles" / "tessarel.json";
    store(target);
    fs::create_directories(folder);
    fs::create_symlink("../../dotfiles/tessarel.json", file);
    watchFile();

    replace(target, "new");
    EXPECT_TRUE(hasChanged());
    ScratchFolder::write(target, "in place");
    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, ALinkThatIsReplacedIsFollowed) {
    store(scratch.path() / "first.json");
    store(scratch.path() / "second.json");
    fs::create_directories(folder);
    fs::create_symlink(scratch.path() / "first.json", file);
    watchFile();

    fs::create_symlink(scratch.path() / "second.json", folder / "link~");
    fs::rename(folder / "link~", file);
    EXPECT_TRUE(hasChanged());
    ScratchFolder::write(scratch.path() / "second.json", "new");
    EXPECT_TRUE(hasChanged());
    ScratchFolder::write(scratch.path() / "first.json", "new");
    EXPECT_FALSE(hasChanged()) << "the former target";
}

TEST_F(DocumentWatchTest, ALinkedFolderThatIsReplacedIsFollowed) {
    store(scratch.path() / "first" / "settings.json");
    store(scratch.path() / "second" / "settings.json");
    fs::create_directories(folder.parent_path());
    fs::create_directory_symlink("../first", folder);
    watchFile();

    replace(file, "new");
    EXPECT_TRUE(hasChanged()) << "in the first target";
    fs::create_directory_symlink("../second", folder.parent_path() / "link~");
    fs::rename(folder.parent_path() / "link~", folder);
    EXPECT_TRUE(hasChanged());
    replace(file, "new");
    EXPECT_TRUE(hasChanged()) << "in the second target";
}

TEST_F(DocumentWatchTest, ALinkThatLeadsToItselfIsOnlyWatched) {
    fs::create_directories(folder);
    fs::create_symlink("other", file);
    fs::create_symlink("settings.json", folder / "other");
    watchFile();

    fs::remove(file);
    store(file);

    EXPECT_TRUE(hasChanged());
}

TEST_F(DocumentWatchTest, TheWatchMayEndInItsOwnCallback) {
    store(file);
    watch = std::make_unique<DocumentWatch>(file, loop.onReadable(), [this] { watch.reset(); });

    replace(file, "new");
    loop.deliver();

    EXPECT_FALSE(watch);
}

} // namespace
} // namespace tessarel::xdg
