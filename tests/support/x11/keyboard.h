// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace tessarel::x11test {

/// X keycodes of physical keys, independent of the keyboard layout.
namespace key {
inline constexpr xcb_keycode_t kEscape = 9;
inline constexpr xcb_keycode_t kDigit1 = 10; ///< the digits 2 to 9 follow
inline constexpr xcb_keycode_t kBackspace = 22;
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

/// The keyboard of an X server, used through XTEST.
class Keyboard {
public:
    /// Throws std::runtime_error without the XTEST extension.
    Keyboard(const XServer& server, Observer& observer);

    /// Presses the modifiers and the key and releases them in the reverse order. The server has processed all
    /// events when it returns.
    void press(const Combination& combination);

    /// Presses Num Lock or Caps Lock if its state differs. Returns false if the state does not change.
    [[nodiscard]] bool setNumLock(bool on) { return setLock(key::kNumLock, XCB_MOD_MASK_2, on); }
    [[nodiscard]] bool setCapsLock(bool on) { return setLock(key::kCapsLock, XCB_MOD_MASK_LOCK, on); }

    /// Sets the keyboard layout, for example "us", "de" or "fr".
    void setLayout(const std::string& layout);

    /// Returns true if a client has grabbed the combination with every lock state. Checks under a server
    /// grab, so that it cannot interfere with grabs of other clients.
    [[nodiscard]] bool held(const Combination& combination);

    /// Waits until the combination is not grabbed. The server releases the grabs of a program some time after
    /// the program has exited. Returns false if it stays grabbed.
    [[nodiscard]] bool waitUntilNotHeld(const Combination& combination) {
        return m_observer.waitUntil([&] { return !held(combination); });
    }

    /// Returns true if no client has grabbed the keyboard. Checks under a server grab, so that it cannot
    /// interfere with other clients.
    [[nodiscard]] bool isFree();

private:
    void fake(std::uint8_t type, xcb_keycode_t key);
    [[nodiscard]] bool setLock(xcb_keycode_t key, std::uint16_t mask, bool on);
    [[nodiscard]] std::uint16_t state();

    const XServer& m_server;
    Observer& m_observer;
};

} // namespace tessarel::x11test
