// SPDX-License-Identifier: MIT

#pragma once

#include "model/action_id.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessarel {

/// What a command of the command line asks the running copy to do.
namespace command {

struct RunAction {
    ActionID action;
};
struct ApplyLayout {
    std::string name;
};
struct SetPause {
    std::optional<bool> paused; ///< empty: the other of the two
};
struct Quit {};
struct List {
    enum class What : std::uint8_t { Actions, Layouts, Zones, Displays };
    What what = What::Actions;
    bool asJson = false;
};

} // namespace command

using Command =
    std::variant<command::RunAction, command::ApplyLayout, command::SetPause, command::Quit, command::List>;

/// One form of the command line.
struct CommandForm {
    std::string words;                ///< as typed, such as "pause"
    std::vector<std::string> choices; ///< of the next word; empty if there is none or any text
    std::string placeholder;          ///< of the next word, such as "NAME"; empty if there is none
    std::string description;          ///< as the user reads it, without a full stop
};

/// Returns all forms, in the order in which they are explained. Help, completion and the manual page are made
/// from them.
[[nodiscard]] std::vector<CommandForm> commandForms();

/// Returns the name of an action on the command line: `rawValue` in kebab case, such as "left-half".
[[nodiscard]] std::string commandName(ActionID action);

/// The result of `parseCommand`: exactly one of the two is set.
struct ParsedCommand {
    std::optional<Command> command;
    std::string problem; ///< for the user: one sentence without a capital letter and a full stop
};

/// Parses the words of a command line without the program's name. Nothing but the forms of `commandForms` is
/// accepted.
[[nodiscard]] ParsedCommand parseCommand(const std::vector<std::string>& words);

/// The exit codes of the command line.
enum class CommandExit : std::uint8_t {
    Done = 0,
    Failed = 1,      ///< the running copy does not answer, or the output cannot be written
    Wrong = 2,       ///< unknown words
    NotRunning = 3,  ///< no copy runs on this display
    NothingDone = 4, ///< the command could not be carried out; the text says why
};

/// What the running copy answers.
struct CommandReply {
    CommandExit exit = CommandExit::Done;
    std::string text = {}; ///< for standard output if done, else for standard error; may have several lines

    bool operator==(const CommandReply&) const = default;
};

} // namespace tessarel
