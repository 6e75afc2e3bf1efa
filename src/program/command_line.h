#pragma once

#include "app/command.h"
#include "ports/command_exchange.h"

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

/// Prints a text for the user, to the standard output if the command was carried out, else to the standard
/// error. Returns the exit code.
[[nodiscard]] int report(CommandExit exit, const std::string& text);

/// Prints what the running copy has answered, or why there is no answer, and returns the exit code.
[[nodiscard]] int report(const SentCommand& sent);

} // namespace tessarel
