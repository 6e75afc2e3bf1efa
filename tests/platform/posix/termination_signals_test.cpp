// SPDX-License-Identifier: MIT

#include "platform/posix/termination_signals.h"

#include "support/main_queue.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/time.h>
#include <unistd.h>

namespace tessarel::qt {
namespace {

class TerminationSignalsTest : public testing::TestWithParam<int> {
protected:
    /// Runs the event loop until all pending work is done.
    void drain() {
        bool last = false;
        async(queue, [&last] { last = true; });
        while (!last)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
    }

    [[nodiscard]] static auto handlerOf(int signal) {
        struct sigaction present {};
        ::sigaction(signal, nullptr, &present);
        return present.sa_handler;
    }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    QCoreApplication application{argumentCount, arguments.data()};
    QtMainQueue queue;
    int received = 0;
};

TEST_P(TerminationSignalsTest, ASignalIsDeliveredOnTheMainThread) {
    TerminationSignals terminationSignals;
    const auto subscription = terminationSignals.onReceived(queue, [this] { ++received; });

    ::raise(GetParam());
    EXPECT_EQ(received, 0);
    drain();

    EXPECT_EQ(received, 1);
}

TEST_P(TerminationSignalsTest, ASignalRaisedBeforeTheSubscriptionIsDelivered) {
    TerminationSignals terminationSignals;
    ::raise(GetParam());

    const auto subscription = terminationSignals.onReceived(queue, [this] { ++received; });
    drain();

    EXPECT_EQ(received, 1);
}

TEST_P(TerminationSignalsTest, ManySignalsDoNotBlock) {
    TerminationSignals terminationSignals;
    for (int i = 0; i < 100'000; ++i)
        ::raise(GetParam());

    const auto subscription = terminationSignals.onReceived(queue, [this] { ++received; });
    drain();

    EXPECT_EQ(received, 1);
}

TEST_P(TerminationSignalsTest, ThePipeIsCloseOnExec) {
    const auto inheritable = [] {
        int count = 0;
        for (int descriptor = 0; descriptor < 256; ++descriptor) {
            const int flags = ::fcntl(descriptor, F_GETFD);
            count += flags >= 0 && (flags & FD_CLOEXEC) == 0 ? 1 : 0;
        }
        return count;
    };
    const int before = inheritable();

    const TerminationSignals terminationSignals;

    EXPECT_EQ(inheritable(), before);
}

TEST_P(TerminationSignalsTest, AnIgnoredSignalStaysIgnored) {
    std::signal(GetParam(), SIG_IGN);
    {
        TerminationSignals terminationSignals;
        const auto subscription = terminationSignals.onReceived(queue, [this] { ++received; });
        ::raise(GetParam());
        drain();
    }

    EXPECT_EQ(received, 0);
    EXPECT_EQ(handlerOf(GetParam()), SIG_IGN);
    std::signal(GetParam(), SIG_DFL);
}

/// Stands for a main thread that waits for something that never happens.
[[noreturn]] void block() {
    for (;;)
        ::pause();
}

TEST_P(TerminationSignalsTest, ASignalEndsTheProcessEvenWhileTheMainThreadIsBlocked) {
    EXPECT_EXIT(
        {
            const TerminationSignals terminationSignals;
            ::raise(GetParam());
            block();
        },
        testing::ExitedWithCode(0), "");
}

TEST_P(TerminationSignalsTest, FurtherSignalsDoNotExtendTheTimeLimit) {
    const auto left = [] {
        itimerval limit{};
        ::getitimer(ITIMER_REAL, &limit);
        return limit.it_value.tv_usec;
    };
    EXPECT_EXIT(
        {
            const TerminationSignals terminationSignals;
            ::raise(GetParam());
            const auto later = left() - 10'000; // microseconds
            while (left() > later) {
            }
            ::raise(GetParam());
            ::_exit(left() <= later ? EXIT_SUCCESS : EXIT_FAILURE);
        },
        testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_P(TerminationSignalsTest, TheInterruptedCodeKeepsItsErrorNumber) {
    const TerminationSignals terminationSignals;
    ::raise(GetParam());
    const itimerval none{};
    ::setitimer(ITIMER_REAL, &none, nullptr); // lest the test takes longer than the time limit
    errno = EINTR;
    for (int i = 0; i < 100'000 && errno == EINTR; ++i) // fills the pipe, so that writing to it fails
        ::raise(GetParam());

    EXPECT_EQ(errno, EINTR);
}

TEST_P(TerminationSignalsTest, DestructionRemovesTheTimeLimit) {
    {
        const TerminationSignals terminationSignals;
        ::raise(GetParam());
    }
    itimerval limit{};
    ::getitimer(ITIMER_REAL, &limit);

    EXPECT_EQ(limit.it_value.tv_sec, 0);
    EXPECT_EQ(limit.it_value.tv_usec, 0);
    EXPECT_EQ(handlerOf(SIGALRM), SIG_DFL);
}

TEST_P(TerminationSignalsTest, DestructionRestoresTheDefaultHandler) {
    { const TerminationSignals terminationSignals; }

    EXPECT_EQ(handlerOf(GetParam()), SIG_DFL);
}

INSTANTIATE_TEST_SUITE_P(All, TerminationSignalsTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

} // namespace
} // namespace tessarel::qt
