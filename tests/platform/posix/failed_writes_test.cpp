// SPDX-License-Identifier: MIT

#include "platform/posix/failed_writes.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tessarel::posix {
namespace {

TEST(FailedWritesTest, AWriteToAPipeWithoutAReaderFails) {
    surviveFailedWrites();
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    ::close(ends[0]);

    EXPECT_EQ(::write(ends[1], "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
    ::close(ends[1]);
}

TEST(FailedWritesTest, AWriteBeyondThePermittedSizeFails) {
    surviveFailedWrites();
    const ScratchFolder scratch;
    const int file = ::open((scratch.path() / "file").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit nothing{0, before.rlim_max};

    ::setrlimit(RLIMIT_FSIZE, &nothing);
    const auto written = ::write(file, "x", 1);
    const int error = errno;
    ::setrlimit(RLIMIT_FSIZE, &before);

    EXPECT_EQ(written, -1);
    EXPECT_EQ(error, EFBIG);
    ::close(file);
}

TEST(FailedWritesTest, StartedProgramsGetTheDefaultEffect) {
    surviveFailedWrites();

    const pid_t shell = ::fork();
    if (shell == 0) {
        ::execl("/bin/sh", "sh", "-c", "kill -PIPE $$", nullptr);
        ::_exit(0);
    }

    int status = 0;
    ASSERT_EQ(::waitpid(shell, &status, 0), shell);
    EXPECT_TRUE(WIFSIGNALED(status));
}

TEST(FailedWritesTest, AnIgnoredSignalStaysIgnored) {
    const auto before = std::signal(SIGPIPE, SIG_IGN);

    surviveFailedWrites();

    EXPECT_EQ(std::signal(SIGPIPE, before), SIG_IGN);
}

} // namespace
} // namespace tessarel::posix
