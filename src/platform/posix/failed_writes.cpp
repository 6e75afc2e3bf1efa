// SPDX-License-Identifier: MIT

#include "platform/posix/failed_writes.h"

#include <csignal>
#include <initializer_list>

namespace tessarel::posix {

namespace {

void doNothing(int) {}

} // namespace

void surviveFailedWrites() {
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        struct sigaction action {};
        // Started programs would inherit SIG_IGN, but no handler.
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action.sa_handler = doNothing;
        action.sa_flags = SA_RESTART;
        ::sigaction(signal, &action, nullptr);
    }
}

} // namespace tessarel::posix
