// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace tessarel::x11 {

/// Returns the event type without the SendEvent bit, so that synthetic events, which another client has sent,
/// count as well. Compare `response_type` itself where only the server's own events may count.
[[nodiscard]] inline std::uint8_t eventType(const xcb_generic_event_t& event) {
    constexpr std::uint8_t kSentByClient = 0x80;
    return event.response_type & static_cast<std::uint8_t>(~kSentByClient);
}

/// Returns `event` as the structure for its type. The caller must have checked the type.
template <class Specific>
[[nodiscard]] const Specific& eventAs(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Specific&>(event);
}

} // namespace tessarel::x11
