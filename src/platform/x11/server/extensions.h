#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace tessarel::x11 {

/// Extensions of the server, as far as they are there in the version we need.
struct Extensions {
    bool randrMonitors = false;       ///< RandR 1.5
    std::uint8_t randrFirstEvent = 0; ///< number of its first event
    bool resourceProcessIds = false;  ///< XRes 1.2

    /// Asks for the presence of all of them without waiting, so that the answers come along with the next
    /// reply.
    static void prefetch(xcb_connection_t* xcb);

    /// Without a server none is there.
    [[nodiscard]] static Extensions query(xcb_connection_t* xcb);
};

} // namespace tessarel::x11
