// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/mouse.h"
#include "support/x11/observer.h"

#include <cstdint>
#include <string>

namespace tessarel::x11test {

/// A second pair of master devices, a pointer and a keyboard, as on a desktop for two users at one screen.
/// Exists until the object is destroyed.
class SecondPointer {
public:
    /// Throws std::runtime_error if the server does not create the devices.
    explicit SecondPointer(const std::string& display);
    SecondPointer(const SecondPointer&) = delete;
    SecondPointer& operator=(const SecondPointer&) = delete;
    ~SecondPointer();

    /// Removes the devices.
    void remove();

    /// Returns the pointer and its keyboard.
    [[nodiscard]] Mouse& hand() { return m_hand; }
    /// Presses and releases a key of its keyboard.
    void type(xcb_keycode_t key);

private:
    [[nodiscard]] std::uint16_t find();

    Observer m_observer; ///< its synthetic input comes from these devices
    Mouse m_hand{m_observer};
    std::uint16_t m_pointer = 0;
};

} // namespace tessarel::x11test
