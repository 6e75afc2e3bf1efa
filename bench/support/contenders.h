// SPDX-License-Identifier: MIT

#pragma once

#include "support/connection.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::bench {

/// A program that places the active window when its key is pressed.
struct Contender {
    std::string name;
    std::array<std::uint8_t, 2> keys; ///< one key per frame; both frames are the same for all contenders
    pid_t pid = 0; ///< process id of the one process that does the work; 0 if several processes share it
};

/// Returns the command of the raw xcb client with the keys and frames of all contenders. Its program is in
/// `directory`.
[[nodiscard]] std::vector<std::string> rawClientCommand(const std::filesystem::path& directory);

/// All contenders, running at the same time, each with its own keys.
class Contenders {
public:
    /// Starts the contenders and returns once all keys are grabbed. `directory` contains the programs of the
    /// benchmark and of Tessarel; `windowManager` is the process id of openbox.
    Contenders(const std::filesystem::path& directory, pid_t windowManager);

    [[nodiscard]] const std::vector<Contender>& all() const { return m_all; }

    /// Indices into `all()`: the window manager itself, and the minimal client.
    static constexpr std::size_t kFloor = 0;
    static constexpr std::size_t kRawClient = 1;

private:
    std::vector<std::unique_ptr<ChildProcess>> m_programs;
    std::vector<Contender> m_all;
};

} // namespace tessarel::bench
