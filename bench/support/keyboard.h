// SPDX-License-Identifier: MIT

#pragma once

#include "support/clock.h"
#include "support/connection.h"

#include <cstdint>
#include <span>

namespace tessarel::bench {

/// X key codes of the keys in use. They name physical keys and do not depend on the keyboard layout.
namespace key {
inline constexpr std::uint8_t k1 = 10;
inline constexpr std::uint8_t k2 = 11;
inline constexpr std::uint8_t kQ = 24;
inline constexpr std::uint8_t kW = 25;
inline constexpr std::uint8_t kE = 26;
inline constexpr std::uint8_t kR = 27;
inline constexpr std::uint8_t kT = 28;
inline constexpr std::uint8_t kY = 29;
inline constexpr std::uint8_t kU = 30;
inline constexpr std::uint8_t kI = 31;
inline constexpr std::uint8_t kControl = 37;
inline constexpr std::uint8_t kAlt = 64;
inline constexpr std::uint8_t kLeft = 113;
inline constexpr std::uint8_t kDown = 116;
} // namespace key

/// A key combination as a client grabs it.
struct Combination {
    std::uint8_t keyCode = 0;
    std::uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
};

/// Presses keys with XTEST, always with Ctrl and Alt held.
class Keyboard {
public:
    /// Turns auto-repeat off, so that a key held down while a program works counts as one press.
    Keyboard();

    /// Presses Ctrl and Alt, then gives other clients 5 ms to process the events.
    void holdModifiers();
    /// Presses `keys` in order and releases all but the last, in one flush. Returns the time of the flush.
    Clock::time_point press(std::span<const std::uint8_t> keys);
    /// Presses and releases one key, in one flush.
    void tap(std::uint8_t key);
    void releaseModifiers();
    /// Releases `key` and the modifiers, then gives other clients 5 ms to process the events.
    void release(std::uint8_t key);

private:
    void fake(std::uint8_t type, std::uint8_t keyCode);

    Connection m_connection;
};

/// Returns true if other clients have grabbed all of `combinations`. Tries to grab them and undoes that while
/// the server is grabbed, so that no other client is affected.
[[nodiscard]] bool allHeld(const Connection& connection, std::span<const Combination> combinations);

/// Waits until all of `combinations` are grabbed. Throws std::runtime_error after ten seconds.
void waitUntilHeld(const Connection& connection, std::span<const Combination> combinations);

} // namespace tessarel::bench
