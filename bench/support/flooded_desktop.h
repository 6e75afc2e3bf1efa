// SPDX-License-Identifier: MIT

#pragma once

#include "support/keyboard.h"
#include "support/table.h"
#include "support/target.h"
#include "support/x11/flood.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::bench {

/// Measures all floods of a program, with this number of presses of each contender.
using MeasureFloods = std::function<void(const std::string& directory, int presses, int perSecond)>;

/// Runs a program with the arguments DIRECTORY [PRESSES] [MESSAGES_PER_SECOND]. Writes what fails to stderr.
/// Returns the exit code.
[[nodiscard]] int runFloodProgram(int count, char** arguments, const MeasureFloods& measureAll);

/// Returns the table for FloodedDesktop::measure, without rows.
[[nodiscard]] Table floodTable();

/// The desktop with openbox, the raw xcb client and Tessarel, and the window that their keys move.
class FloodedDesktop {
public:
    using StartFlood = std::function<std::unique_ptr<x11test::Flood>()>;

    /// Starts the programs, which are in `directory`, and returns once they have settled.
    explicit FloodedDesktop(const std::string& directory);

    [[nodiscard]] xcb_window_t window() const { return m_target.window(); }

    /// Presses the keys in turns, `count` times each, during a flood, and Tessarel's once more after it. Then
    /// ends Tessarel during a second flood. Adds the results to `table` as the row `name`.
    void measure(const std::string& name, int count, const StartFlood& startFlood, Table& table);

private:
    /// The presses of one contender during a flood.
    struct Presses {
        std::vector<double> milliseconds;
        int lost = 0;
    };

    std::optional<double> press(std::size_t contender, Milliseconds patience);
    bool press(std::size_t contender, Presses& presses);
    std::optional<double> end();

    ChildProcess m_rawClient;
    ChildProcess m_tessarel;
    Target m_target;
    Keyboard m_keyboard;
    std::array<ClientSize, 2> m_sizes{};
    std::size_t m_place = 1;
};

} // namespace tessarel::bench
