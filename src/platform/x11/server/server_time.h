// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"

namespace tessarel::x11 {

/// Returns the present time of the server, for requests that no event has led to, or XCB_CURRENT_TIME when
/// the server does not reply within a second. Takes a round trip.
[[nodiscard]] xcb_timestamp_t serverTime(Connection& connection);

} // namespace tessarel::x11
