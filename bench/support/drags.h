// SPDX-License-Identifier: MIT

#pragma once

#include "support/clock.h"
#include "support/connection.h"
#include "support/target.h"

#include <cstdint>
#include <vector>

namespace tessarel::bench {

/// A point on the screen, in pixels.
struct Place {
    int x = 0;
    int y = 0;
};

/// Sends pointer motion, button 1 and Shift with XTEST.
class Hand {
public:
    void moveTo(const Place& place);
    /// Moves the pointer by a few pixels, in alternating directions.
    void tremble() { moveTo({m_place.x + (m_place.x % 2 == 0 ? 5 : -5), m_place.y}); }
    void press() { fake(XCB_BUTTON_PRESS, 1); }
    void release() { fake(XCB_BUTTON_RELEASE, 1); }
    void holdShift() { fake(XCB_KEY_PRESS, kShift); }
    void releaseShift() { fake(XCB_KEY_RELEASE, kShift); }

private:
    static constexpr std::uint8_t kShift = 50;

    void fake(std::uint8_t type, std::uint8_t detail, const Place& place = {});

    Connection m_connection;
    Place m_place;
};

/// Finds the overlay window on the screen and watches its shape.
class OverlayWatch {
public:
    /// Returns the mapped override-redirect window that is as wide as the screen, or `XCB_NONE` if there is
    /// none.
    [[nodiscard]] xcb_window_t find() const;

    /// Selects ShapeNotify events of the overlay; drops those that have arrived so far.
    void watch(xcb_window_t overlay) const;
    void discard() const;
    /// Blocks until the next shape change and returns its time. Nothing else runs meanwhile that could delay
    /// it.
    [[nodiscard]] Clock::time_point nextChange() const;

private:
    [[nodiscard]] bool isOverlay(xcb_window_t window) const;

    Connection m_connection;
};

/// Drags a window by its title bar with synthetic pointer events, with the zones of bench/config.
class Drags {
public:
    /// Presses the title bar, with Shift held, and drags until the overlay shows. Retries if the press was
    /// noticed too late, which happens on a busy machine.
    void begin();
    /// Drops the window in the zone of the left half and waits until it is there.
    void end();

    /// Returns the milliseconds from moving the pointer into the other zone until the highlight changes
    /// there.
    [[nodiscard]] std::vector<double> highlights(int count);

    /// Moves the pointer every millisecond, within one zone, for `length`. Returns the number of motions.
    int moveFast(Clock::duration length);

private:
    void take();

    Hand m_hand;
    OverlayWatch m_overlay;
    Target m_target;
    int m_aside = 0;
};

} // namespace tessarel::bench
