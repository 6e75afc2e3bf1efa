// SPDX-License-Identifier: MIT

// Part of the launcher where it is linked statically. glibc looks up names by shared libraries, which may be
// of another version than the one that is linked in. libxcb then fails to connect to the display of another
// machine, and the launcher leaves the command to the program.

#include <netdb.h>

extern "C" {

int getaddrinfo(const char* /*node*/, const char* /*service*/, const addrinfo* /*hints*/,
                addrinfo** /*result*/) {
    return EAI_FAIL;
}

void freeaddrinfo(addrinfo* /*list*/) noexcept {}
}
