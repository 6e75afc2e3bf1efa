// SPDX-License-Identifier: MIT

#pragma once

#include "support/connection.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::bench {

/// A program that starts with the session and stays resident.
struct Resident {
    std::string name;
    std::string path;
    /// If true, the program is ready once it writes to its standard output, else once it has grabbed all its
    /// keys.
    bool saysSo = false;
    /// `NAME=value` entries that replace those of the benchmark's own environment.
    std::vector<std::string> environment = {};
};

/// Returns the empty Qt tray program and Tessarel, in this order. Both are in `directory`.
[[nodiscard]] std::vector<Resident> residents(const std::filesystem::path& directory);

/// Starts the program and returns once it is ready, polling every millisecond. The grabs are checked for
/// every program, so that the check costs the same for all. Throws std::runtime_error after ten seconds, or
/// if the program exits.
[[nodiscard]] std::unique_ptr<ChildProcess> startAndAwait(const Resident& resident,
                                                          const Connection& connection);

} // namespace tessarel::bench
