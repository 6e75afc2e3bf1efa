#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace tessarel::x11 {

/// What kind of event it is, whether the server or another client has sent it.
[[nodiscard]] inline std::uint8_t eventType(const xcb_generic_event_t& event) {
    constexpr std::uint8_t kSentByClient = 0x80;
    return event.response_type & static_cast<std::uint8_t>(~kSentByClient);
}

/// `event` as the structure that belongs to its type.
template <class Specific>
[[nodiscard]] const Specific& eventAs(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Specific&>(event);
}

} // namespace tessarel::x11
