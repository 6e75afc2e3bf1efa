// SPDX-License-Identifier: MIT

// Creates the folder of a document at each of the system calls with which its watch begins.

#include "platform/xdg/document_watch.h"
#include "readable_loop.h"
#include "support/scratch_folder.h"
#include "system_call_tracer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

class DocumentWatchRaceTest : public testing::Test {
protected:
    ScratchFolder scratch;
    const fs::path folder = scratch.path() / "config" / "tessarel";

    /// Watches the document and then stores it. Ends the process if that is not reported.
    void watchAndStore() const {
        ReadableLoop loop;
        bool isReported = false;
        const DocumentWatch watch(folder / "settings.json", loop.onReadable(), [&] { isReported = true; });
        fs::create_directories(folder);
        loop.deliver();
        isReported = false;
        ScratchFolder::write(folder / "settings.json", "new");
        loop.deliver();
        if (!isReported)
            ::_exit(1);
    }
};

TEST_F(DocumentWatchRaceTest, AFolderThatAppearsWhileTheWatchBeginsIsFollowed) {
    TracedWork work([this] { watchAndStore(); });
    ASSERT_TRUE(work.isTraced());
    int number = 1;
    for (bool isDone = false; !isDone; ++number) {
        scratch.clear();
        fs::create_directory(folder.parent_path());
        for (int i = 0; i < number && !isDone; ++i)
            isDone = !nextBeginning(work);
        fs::create_directory(folder);
        ASSERT_TRUE(work.finish()) << "created before system call " << number;
        work.again();
    }
    EXPECT_GT(number, 10);
}

} // namespace
} // namespace tessarel::xdg
