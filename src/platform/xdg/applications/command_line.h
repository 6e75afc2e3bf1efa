// SPDX-License-Identifier: MIT

#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::xdg {

/// Returns the words of an Exec value. Field codes such as "%F" are words of their own.
[[nodiscard]] std::vector<std::string> execWords(std::string_view exec);

/// Returns the program that a command starts: its first word or, if that is an interpreter, the script,
/// module, archive or main class that it runs. Skips "env" and its assignments. Empty if there is none, as
/// for code on the command line.
[[nodiscard]] std::string programOf(const std::vector<std::string>& words);

/// Returns the file of `program`, which is a path or a name to be looked up in PATH, without symbolic links.
/// Returns an empty path if there is none. Empty and relative folders in PATH are ignored.
[[nodiscard]] std::filesystem::path fileStartedBy(const std::string& program);

/// Returns whether `name` is that of an interpreter, such as "python3.11", "wish" or "java". Ignores case.
[[nodiscard]] bool isInterpreter(std::string_view name);

/// Returns the part of `path` after the last slash.
[[nodiscard]] std::string_view fileName(std::string_view path);

} // namespace tessarel::xdg
