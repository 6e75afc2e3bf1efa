// SPDX-License-Identifier: MIT

#pragma once

#include "ports/command_exchange.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tessarel::x11 {

/// Stands after each word of a command.
inline constexpr char kEndOfWord = '\0';

/// The longest answer in bytes, with the exit code. Longer ones are cut off.
inline constexpr std::uint32_t kLongestAnswer = 1U << 20U;

/// Returns the name of the selection whose owner receives the commands of a screen.
[[nodiscard]] std::string commandSelection(int screenNumber);

/// Sends a command to the copy of the program that runs on an X screen, and waits for the answer at most
/// `kCommandPatience`. A word ends at its first NUL byte. `displayName` may be null; then $DISPLAY names the
/// screen.
///
/// Opens a connection of its own, without what the back end reads from each server: that takes longer than
/// the command. See `CommandChannel` for the protocol.
[[nodiscard]] SentCommand sendCommand(const char* displayName, const std::vector<std::string>& words);

} // namespace tessarel::x11
