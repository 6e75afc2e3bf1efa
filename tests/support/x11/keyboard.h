#pragma once

#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace tessarel::x11test {

/// Key codes of the X server: physical keys, whatever stands on them.
namespace key {
inline constexpr xcb_keycode_t kDigit1 = 10; ///< 2 to 9 follow
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

/// The modifiers of the core protocol and the key that holds each.
inline constexpr std::array<std::pair<std::uint16_t, xcb_keycode_t>, 4> kModifierKeys = {{
    {XCB_MOD_MASK_CONTROL, key::kControl},
    {XCB_MOD_MASK_1, key::kAlt},
    {XCB_MOD_MASK_SHIFT, key::kShift},
    {XCB_MOD_MASK_4, key::kSuper},
}};

/// A key with the modifiers held: any of XCB_MOD_MASK_CONTROL, _1 (Alt), _4 (Super), _SHIFT.
struct Combination {
    xcb_keycode_t key = 0;
    std::uint16_t modifiers = 0;

    bool operator==(const Combination&) const = default;
};

inline constexpr std::uint16_t kControlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
inline constexpr std::uint16_t kControlAltSuper = kControlAlt | XCB_MOD_MASK_4;

/// The keyboard of an X server, pressed for real.
class Keyboard {
public:
    /// Throws std::runtime_error without the extension that presses keys.
    Keyboard(const XServer& server, Observer& observer);

    /// Presses the modifiers and the key and lets go of them in the reverse order; the server has handled it
    /// all when this returns.
    void press(const Combination& combination);

    /// Presses Num Lock or Caps Lock if that is what it takes. False when the lock does not follow.
    [[nodiscard]] bool setNumLock(bool on) { return setLock(key::kNumLock, XCB_MOD_MASK_2, on); }
    [[nodiscard]] bool setCapsLock(bool on) { return setLock(key::kCapsLock, XCB_MOD_MASK_LOCK, on); }

    /// Changes what stands on the keys, such as to "us", "de" or "fr".
    void setLayout(const std::string& layout);

    /// Whether some client has claimed the combination for itself, with every state of the locks. Looks
    /// without coming in between another client's claims.
    [[nodiscard]] bool held(const Combination& combination);

    /// Waits until the combination is held no more: the server lets go of the claims of a program some time
    /// after that has ended. False when it stays held.
    [[nodiscard]] bool waitUntilNotHeld(const Combination& combination) {
        return m_observer.waitUntil([&] { return !held(combination); });
    }

    /// Whether no client has taken the whole keyboard. Looks without coming in between another one's attempt.
    [[nodiscard]] bool isFree();

private:
    void fake(std::uint8_t type, xcb_keycode_t key);
    [[nodiscard]] bool setLock(xcb_keycode_t key, std::uint16_t mask, bool on);
    [[nodiscard]] std::uint16_t state();

    const XServer& m_server;
    Observer& m_observer;
};

} // namespace tessarel::x11test
