// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace tessarel::x11 {

/// The server's optional extensions, as far as it supports the version that the back end needs.
struct Extensions {
    bool randrMonitors = false;       ///< RandR 1.5: GetMonitors
    std::uint8_t randrFirstEvent = 0; ///< event type of RandR's first event
    bool resourceProcessIds = false;  ///< XRes 1.2: the process id of a client
    bool isXwayland = false;          ///< the server is Xwayland, within a Wayland session

    /// Requests the presence of all extensions without waiting. The replies arrive along with the next reply
    /// that is waited for, so a later `query` does not need a round trip for them.
    static void prefetch(xcb_connection_t* xcb);

    /// Negotiates the versions in one round trip. If the connection is lost, no extension is reported.
    [[nodiscard]] static Extensions query(xcb_connection_t* xcb);
};

} // namespace tessarel::x11
