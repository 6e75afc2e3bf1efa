#pragma once

#include "support/clock.h"
#include "support/connection.h"

#include <cstdint>
#include <span>

namespace tessarel::bench {

/// Key codes of the keys in use: physical keys, the same in every layout.
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

/// A combination as a client claims it.
struct Combination {
    std::uint8_t keyCode = 0;
    std::uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
};

/// The user's hands: key presses by XTEST, always with Ctrl and Alt held.
class Keyboard {
public:
    /// Turns auto-repeat off, so that a key held down while a program works is one press.
    Keyboard();

    /// Presses Ctrl and Alt and gives everybody time to notice.
    void holdModifiers();
    /// Presses `keys` in order, each but the last released again, all in one flush; answers the moment of it.
    Clock::time_point press(std::span<const std::uint8_t> keys);
    /// Lets go of `key` and of the modifiers and gives everybody time to notice.
    void release(std::uint8_t key);

private:
    void fake(std::uint8_t type, std::uint8_t keyCode);

    Connection m_connection;
};

/// Whether other clients hold every one of `combinations`, found out without being in anybody's way: for the
/// length of the question no other client is served, and what could be had is given back at once.
[[nodiscard]] bool allHeld(const Connection& connection, std::span<const Combination> combinations);

/// Returns when every one of `combinations` is held; throws std::runtime_error after ten seconds.
void waitUntilHeld(const Connection& connection, std::span<const Combination> combinations);

} // namespace tessarel::bench
