// SPDX-License-Identifier: MIT

#include "platform/posix/termination_signals.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>
#include <utility>

namespace tessarel::qt {

namespace {

/// Write end of the pipe. Global, because a signal handler receives no context.
volatile std::sig_atomic_t wakeUpPipe = -1;

/// How long the main thread may take to end the program before the process exits without it.
constexpr suseconds_t kPatienceInMicroseconds = 800'000;

/// Whether the time limit runs. Later signals do not extend it.
volatile std::sig_atomic_t isEnding = 0;

/// Limits the time until the process exits, or with zero removes the limit.
void setTimeLimit(suseconds_t microseconds) {
    itimerval limit{};
    limit.it_value.tv_usec = microseconds;
    ::setitimer(ITIMER_REAL, &limit, nullptr);
}

/// Exits at the time limit. Settings are saved as soon as they change, and a save is atomic, so that nothing
/// is lost.
[[noreturn]] void exitNow(int) {
    ::_exit(EXIT_SUCCESS);
}

/// The signal handler. Calls only functions that are safe in one, and preserves `errno` of the code that it
/// interrupts.
void wakeUp(int) {
    const int errorBefore = errno;
    // Writing to a full pipe fails, which is harmless: its bytes wake the main thread anyway.
    [[maybe_unused]] const auto written = ::write(wakeUpPipe, "", 1);
    if (isEnding == 0) {
        isEnding = 1;
        setTimeLimit(kPatienceInMicroseconds);
    }
    errno = errorBefore;
}

void setHandler(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

/// Opens a pipe whose ends do not block and are not inherited by other programs. pipe2() would do that in one
/// call, but macOS does not have it; no other thread can start a program in between.
bool openPipe(std::array<int, 2>& ends) {
    if (::pipe(ends.data()) != 0)
        return false;
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return true;
}

/// Returns whether `signal` is ignored, which the parent process decides: nohup does it with SIGHUP.
bool isIgnored(int signal) {
    struct sigaction present {};
    return ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

} // namespace

TerminationSignals::TerminationSignals() {
    if (!openPipe(m_pipe))
        return; // the signals keep their default effect
    wakeUpPipe = m_pipe[1];
    setHandler(SIGALRM, exitNow);
    for (const int signal : kSignals) {
        if (!isIgnored(signal))
            setHandler(signal, wakeUp);
    }
}

TerminationSignals::~TerminationSignals() {
    if (m_pipe[0] < 0)
        return;
    for (const int signal : kSignals) {
        if (!isIgnored(signal))
            setHandler(signal, SIG_DFL);
    }
    setTimeLimit(0);
    setHandler(SIGALRM, SIG_DFL);
    isEnding = 0;
    wakeUpPipe = -1;
    ::close(m_pipe[0]);
    ::close(m_pipe[1]);
}

SubscriptionPtr TerminationSignals::onReceived(QtMainQueue& queue, std::function<void()> received) {
    if (m_pipe[0] < 0)
        return nullptr;
    return queue.onReadable(m_pipe[0], [pipe = m_pipe[0], received = std::move(received)] {
        std::array<char, 64> bytes{};
        while (::read(pipe, bytes.data(), bytes.size()) > 0) {
        }
        received();
    });
}

} // namespace tessarel::qt
