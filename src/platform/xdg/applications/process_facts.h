// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::xdg {

/// The package that confines a process and comes with desktop entries of its own.
struct Sandbox {
    std::string entry;  ///< identifier of the entry that the package is named after
    std::string prefix; ///< identifiers of its further entries begin with this

    bool operator==(const Sandbox&) const = default;
};

/// Which program a process runs, as far as /proc shows it. Everything is empty for a process that is not
/// visible from here.
struct ProcessFacts {
    std::string program;        ///< executable, or what an interpreter runs: a path, module or class
    std::filesystem::path file; ///< `program` without symbolic links; empty if that is not a file
    /// File names by which a desktop entry may start the program, in lower case.
    std::vector<std::string> names;
    std::optional<Sandbox> sandbox;
};

/// Returns the facts about process `pid`. Reads a limited number of bytes and sends nothing to the process.
/// `proc` is the folder of the proc file system.
[[nodiscard]] ProcessFacts processFacts(std::int32_t pid, const std::filesystem::path& proc = "/proc");

/// Returns the Flatpak or snap package that the content of a cgroup file names.
[[nodiscard]] std::optional<Sandbox> sandboxIn(std::string_view cgroups);

} // namespace tessarel::xdg
