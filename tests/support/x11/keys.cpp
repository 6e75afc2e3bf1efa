// SPDX-License-Identifier: MIT

#include "support/x11/keys.h"

#include <algorithm>
#include <vector>

namespace tessarel::x11test {

bool allHeld(const XConnection& connection, std::span<const Combination> combinations) {
    xcb_connection_t* x = connection.get();
    std::vector<xcb_void_cookie_t> attempts;
    xcb_grab_server(x);
    for (const Combination& wanted : combinations)
        attempts.push_back(xcb_grab_key_checked(x, 0, connection.root(), wanted.modifiers, wanted.key,
                                                XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    for (const Combination& wanted : combinations)
        xcb_ungrab_key(x, wanted.key, connection.root(), wanted.modifiers);
    xcb_ungrab_server(x);
    connection.flush();
    const auto refused = [x](xcb_void_cookie_t attempt) {
        return own(xcb_request_check(x, attempt)) != nullptr;
    };
    return std::count_if(attempts.begin(), attempts.end(), refused) == std::ssize(attempts);
}

} // namespace tessarel::x11test
