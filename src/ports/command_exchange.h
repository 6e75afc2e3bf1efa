// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <string>

// The values that travel between the running copy and a process that sends it a command. There is no port:
// the core neither sends nor receives commands.

namespace tessarel {

/// The longest command, in bytes, with one byte after each word. Longer commands are not carried out.
inline constexpr std::uint32_t kLongestCommand = 4096;

/// How long a sender waits for the answer.
inline constexpr std::chrono::milliseconds kCommandPatience{5000};

/// The answer to a command.
struct CommandAnswer {
    std::uint8_t exitCode = 0;
    std::string text = {};

    bool operator==(const CommandAnswer&) const = default;
};

/// What became of a command that was sent.
struct SentCommand {
    enum class Outcome : std::uint8_t {
        Answered,
        NoDesktop,  ///< the desktop cannot be reached; the text of the answer says why
        NoReceiver, ///< no copy of the program runs on this desktop
        NoAnswer,   ///< it has not answered in time, or has ended meanwhile
    };
    Outcome outcome = Outcome::Answered;
    CommandAnswer answer = {};
};

} // namespace tessarel
