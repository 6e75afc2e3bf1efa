#pragma once

#include "support/child_process.h"
#include "support/connection.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::bench {

/// A program that starts with the session and stays.
struct Resident {
    std::string name;
    std::string path;
    /// Whether it is ready when it says so; otherwise when it holds all its keys.
    bool saysSo = false;
    /// `NAME=value` each, in place of what the bench has itself.
    std::vector<std::string> environment = {};
};

/// Tessarel, and a Qt program in the tray that does nothing; both lie in `directory`.
[[nodiscard]] std::vector<Resident> residents(const std::filesystem::path& directory);

/// Starts it and returns once it is ready, known to the millisecond. The desktop is asked in the same way
/// whatever the program, so that asking costs all the same. Throws std::runtime_error when it takes ten
/// seconds or ends.
[[nodiscard]] std::unique_ptr<ChildProcess> startAndAwait(const Resident& resident,
                                                          const Connection& connection);

} // namespace tessarel::bench
