#pragma once

#include "support/child_process.h"
#include "support/connection.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::bench {

/// Something that places the active window when its key is pressed.
struct Contender {
    std::string name;
    std::array<std::uint8_t, 2> keys; ///< one for each of the two places, the same places for everybody
    pid_t pid = 0;                    ///< of the one process that does the work; 0 when several share it
};

/// All contenders, running side by side, each with keys of its own.
class Contenders {
public:
    /// `directory` holds the bench's programs and Tessarel's; `windowManager` is openbox's process.
    /// Returns when every key is claimed.
    Contenders(const std::filesystem::path& directory, pid_t windowManager);

    [[nodiscard]] const std::vector<Contender>& all() const { return m_all; }

    /// The window manager itself is the first of `all()`, the client that does nothing else the second.
    static constexpr std::size_t kFloor = 0;
    static constexpr std::size_t kRawClient = 1;

private:
    std::vector<std::unique_ptr<ChildProcess>> m_programs;
    std::vector<Contender> m_all;
};

} // namespace tessarel::bench
