// SPDX-License-Identifier: MIT

#pragma once

#include "support/clock.h"
#include "support/connection.h"
#include "support/drags.h"

#include <cstdint>
#include <functional>

namespace tessarel::bench {

/// Clicks a tray icon with XTEST and watches for the menu below it.
class Clicker {
public:
    explicit Clicker(const Place& icon);

    /// Opens the menu with a button and closes it again. Returns the time until the menu was painted. Two
    /// clicks with one button within half a second would be a double click.
    Milliseconds click(std::uint8_t button = kRightButton);
    /// Moves the pointer to the icon, where it is at first.
    void point();

    static constexpr std::uint8_t kLeftButton = 1;
    static constexpr std::uint8_t kRightButton = 3;

private:
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);
    [[nodiscard]] bool isBare() const;
    void closeMenu();
    void await(const std::function<bool()>& holds) const;

    Connection m_connection;
    Place m_icon;
    Place m_inMenu;
};

} // namespace tessarel::bench
