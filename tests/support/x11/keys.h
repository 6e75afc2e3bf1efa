// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/x_connection.h"

#include <array>
#include <cstdint>
#include <span>
#include <utility>

namespace tessarel::x11test {

/// X keycodes of physical keys, independent of the keyboard layout.
namespace key {
inline constexpr xcb_keycode_t kEscape = 9;
inline constexpr xcb_keycode_t kDigit1 = 10; ///< the digits 2 to 9 follow
inline constexpr xcb_keycode_t kDigit2 = 11;
inline constexpr xcb_keycode_t kBackspace = 22;
inline constexpr xcb_keycode_t kQ = 24;
inline constexpr xcb_keycode_t kW = 25;
inline constexpr xcb_keycode_t kE = 26;
inline constexpr xcb_keycode_t kR = 27;
inline constexpr xcb_keycode_t kT = 28;
inline constexpr xcb_keycode_t kY = 29;
inline constexpr xcb_keycode_t kU = 30;
inline constexpr xcb_keycode_t kI = 31;
inline constexpr xcb_keycode_t kReturn = 36;
inline constexpr xcb_keycode_t kControl = 37;
inline constexpr xcb_keycode_t kA = 38;
inline constexpr xcb_keycode_t kShift = 50;
inline constexpr xcb_keycode_t kC = 54;
inline constexpr xcb_keycode_t kAlt = 64;
inline constexpr xcb_keycode_t kCapsLock = 66;
inline constexpr xcb_keycode_t kNumLock = 77;
inline constexpr xcb_keycode_t kUp = 111;
inline constexpr xcb_keycode_t kLeft = 113;
inline constexpr xcb_keycode_t kRight = 114;
inline constexpr xcb_keycode_t kDown = 116;
inline constexpr xcb_keycode_t kSuper = 133;
} // namespace key

/// The modifiers of the core protocol with a key for each.
inline constexpr std::array<std::pair<std::uint16_t, xcb_keycode_t>, 4> kModifierKeys = {{
    {XCB_MOD_MASK_CONTROL, key::kControl},
    {XCB_MOD_MASK_1, key::kAlt},
    {XCB_MOD_MASK_SHIFT, key::kShift},
    {XCB_MOD_MASK_4, key::kSuper},
}};

/// A key with held modifiers: any of XCB_MOD_MASK_CONTROL, _1 (Alt), _4 (Super), _SHIFT.
struct Combination {
    xcb_keycode_t key = 0;
    std::uint16_t modifiers = 0;

    bool operator==(const Combination&) const = default;
};

inline constexpr std::uint16_t kControlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
inline constexpr std::uint16_t kControlAltSuper = kControlAlt | XCB_MOD_MASK_4;

/// Returns true if other clients have grabbed all of `combinations`. Tries to grab them and undoes that while
/// the server is grabbed, so that no other client is affected.
[[nodiscard]] bool allHeld(const XConnection& connection, std::span<const Combination> combinations);

} // namespace tessarel::x11test
