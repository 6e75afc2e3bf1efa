// SPDX-License-Identifier: MIT

#pragma once

#include "support/clock.h"
#include "support/connection.h"
#include "support/x11/keys.h"

#include <cstdint>
#include <span>

namespace tessarel::bench {

namespace key = x11test::key;
using x11test::allHeld;
using x11test::Combination;
using x11test::kControlAlt;
using x11test::kControlAltSuper;

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

/// Waits until all of `combinations` are grabbed. Throws std::runtime_error after ten seconds.
void waitUntilHeld(const Connection& connection, std::span<const Combination> combinations);

} // namespace tessarel::bench
