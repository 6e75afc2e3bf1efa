// SPDX-License-Identifier: MIT

#pragma once

#include "app/command.h"
#include "ports/command_exchange.h"

#include <string>

namespace tessarel {

/// Writes a line to the standard error stream, prefixed with the program's name.
void say(const std::string& line);

/// Prints a text and the end of a line to the standard output. Returns the exit code; a text that cannot be
/// written is reported.
[[nodiscard]] int print(const std::string& text);

/// Prints a text for the user, to the standard output if the command was carried out, else to the standard
/// error. Returns the exit code.
[[nodiscard]] int report(CommandExit exit, const std::string& text);

/// Prints what the running copy has answered, or why there is no answer, and returns the exit code.
[[nodiscard]] int report(const SentCommand& sent);

} // namespace tessarel
