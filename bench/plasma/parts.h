// SPDX-License-Identifier: MIT

#pragma once

#include "support/plasma/plasma_session.h"

#include <chrono>
#include <filesystem>
#include <string>

namespace tessarel::bench {

/// Time for the compositor and the programs to come to rest after a window has moved.
inline constexpr std::chrono::milliseconds kQuiet{50};

/// Writes the settings and starts the program. Throws std::runtime_error if it does not start.
void start(plasmatest::PlasmaSession& session, const std::string& settings);

/// Prints the time from a key press to the settled window, beside that of the same move made by a shortcut of
/// the compositor.
void measureKeys(const std::filesystem::path& programs, int presses);

/// Prints the time from a key press until all windows of a display are arranged, beside that of one window.
void measureArranging(const std::filesystem::path& programs, int presses);

/// Prints the time from a step of the pointer to the repainted zones.
void measureHighlights(int steps);

/// Prints the times of starting, the memory and the wake-ups at rest, beside those on X11. Needs an X display
/// with a window manager.
void measureAtRest(const std::filesystem::path& programs, int starts, std::chrono::seconds rest);

} // namespace tessarel::bench
