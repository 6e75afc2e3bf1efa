#pragma once

#include "support/x11/frame.h"
#include "support/x11/observer.h"

#include <cstdint>

namespace tessarel::x11test {

/// The mouse of an X server, moved and clicked for real. The server has handled it all when a call returns.
class Mouse {
public:
    static constexpr std::uint8_t kLeft = 1;
    static constexpr std::uint8_t kMiddle = 2;
    static constexpr std::uint8_t kRight = 3;
    static constexpr std::uint8_t kWheelUp = 4;

    /// Throws std::runtime_error without the extension that moves the mouse.
    explicit Mouse(Observer& observer);

    /// To a pixel of the root window.
    void moveTo(int x, int y);
    void press(std::uint8_t button = kLeft);
    void release(std::uint8_t button = kLeft);
    /// Presses and releases a button where the pointer is.
    void click(std::uint8_t button = kLeft);
    /// Clicks in the middle of `frame`, having moved there within it.
    void clickCentre(const Frame& frame, std::uint8_t button = kLeft);

    /// Holds exactly the modifiers of `mask` from now on: any of XCB_MOD_MASK_CONTROL, _1 (Alt), _4 (Super),
    /// _SHIFT.
    void hold(std::uint16_t mask);

    /// The buttons that are down and the modifiers that are held, as the server sees it.
    [[nodiscard]] std::uint16_t state();

private:
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);

    Observer& m_observer;
    std::uint16_t m_heldModifiers = 0;
};

} // namespace tessarel::x11test
