// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/frame.h"
#include "support/x11/observer.h"

#include <cstdint>

namespace tessarel::x11test {

/// The pointer of an X server, used through XTEST. The server has processed all events when a call returns.
class Mouse {
public:
    static constexpr std::uint8_t kLeft = 1;
    static constexpr std::uint8_t kMiddle = 2;
    static constexpr std::uint8_t kRight = 3;
    static constexpr std::uint8_t kWheelUp = 4;

    /// Throws std::runtime_error without the XTEST extension.
    explicit Mouse(Observer& observer);

    /// Moves to a point of the root window.
    void moveTo(int x, int y);
    void press(std::uint8_t button = kLeft);
    void release(std::uint8_t button = kLeft);
    /// Presses and releases a button at the pointer.
    void click(std::uint8_t button = kLeft);
    /// Clicks the centre of `frame`, after moving there from its left edge.
    void clickCentre(const Frame& frame, std::uint8_t button = kLeft);

    /// Holds exactly the modifiers of `mask` from now on: any of XCB_MOD_MASK_CONTROL, _1 (Alt), _4 (Super),
    /// _SHIFT.
    void hold(std::uint16_t mask);

    /// Returns the server's state of the buttons and modifiers.
    [[nodiscard]] std::uint16_t state();

private:
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);

    Observer& m_observer;
    std::uint16_t m_heldModifiers = 0;
};

} // namespace tessarel::x11test
