// SPDX-License-Identifier: MIT

#include "platform/qt_x11/display_loss_guard.h"

#include <X11/Xlib.h>
#include <csignal>
#include <poll.h>

namespace tessarel::qt {

namespace {

constexpr int kPatienceInMilliseconds = 500;

// Global, because handlers receive no context.
int watchedDescriptor = -1;
void (*handleLoss)() = nullptr;
struct sigaction handlerBefore {};

/// Ends the program if the display is lost. Otherwise the crash has another cause: the instruction is
/// repeated with the handler that was there before.
void handleCrash(int signal) {
    if (isDisplayLost(watchedDescriptor))
        handleLoss();
    ::sigaction(signal, &handlerBefore, nullptr);
}

} // namespace

bool isDisplayLost(int descriptor) {
    // That the other end has been closed is reported whatever the events are.
    pollfd connection{.fd = descriptor, .events = 0, .revents = 0};
    return ::poll(&connection, 1, kPatienceInMilliseconds) > 0;
}

DisplayLossGuard::DisplayLossGuard(int descriptor, void (*displayLost)()) {
    watchedDescriptor = descriptor;
    handleLoss = displayLost;
    struct sigaction action {};
    action.sa_handler = handleCrash;
    ::sigaction(SIGSEGV, &action, &handlerBefore);
    XSetIOErrorHandler([](Display*) {
        handleLoss();
        return 0;
    });
}

DisplayLossGuard::~DisplayLossGuard() {
    ::sigaction(SIGSEGV, &handlerBefore, nullptr);
}

} // namespace tessarel::qt
