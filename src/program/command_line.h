// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// What the arguments of the program ask for.
struct CommandLine {
    std::optional<int> exitCode;    ///< set if there is nothing left to do
    std::vector<std::string> words; ///< a command for the running copy; without words, start the program
};

/// Reads the arguments, the program's name first. Prints the help, the version, or what is wrong. Needs no
/// display.
[[nodiscard]] CommandLine readCommandLine(int argumentCount, char** arguments);

/// Returns the text of `--help`.
[[nodiscard]] std::string helpText();

} // namespace tessarel
