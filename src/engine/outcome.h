// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace tessarel {

/// What became of an action.
enum class Outcome : std::uint8_t {
    Done,
    Paused,
    NotTrusted,   ///< the user has not permitted the program to move windows
    ZoneDisabled, ///< or there is no such zone
    NoWindow,     ///< no focused window, or none that may be moved
    Refused,      ///< the desktop has refused to move the window
    NothingToRestore,
    NoOtherDisplay,
};

/// Returns the outcome of an attempt to place a window.
constexpr Outcome outcomeOf(bool isPlaced) {
    return isPlaced ? Outcome::Done : Outcome::Refused;
}

} // namespace tessarel
