#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Reading and writing the content of desktop entries, the `.desktop` files that describe applications.
namespace tessarel::xdg::desktop_entry {

/// Returns `argument` as one word of an Exec value, quoted and escaped where necessary: a session that reads
/// the entry passes exactly `argument` to the program.
[[nodiscard]] std::string execWord(std::string_view argument);

/// Returns an autostart entry that starts the program at the absolute `path`. `name` is shown to the user.
[[nodiscard]] std::string autostart(std::string_view name, std::string_view path);

/// Returns an entry that describes no application but hides entries of its file name in less important
/// folders.
[[nodiscard]] std::string hidden(std::string_view name);

/// Returns the application's name in the first of `languages` that the entry has a name in, otherwise the
/// untranslated name, on one line and as valid UTF-8. Returns `std::nullopt` if the entry has neither or the
/// name is empty.
[[nodiscard]] std::optional<std::string> name(std::string_view content,
                                              const std::vector<std::string>& languages);

/// Returns the class (WM_CLASS) of the application's windows; empty if the entry does not name it.
[[nodiscard]] std::string windowClass(std::string_view content);

/// Returns whether the entry describes an application. An entry with "Hidden=true" only hides others.
[[nodiscard]] bool isShown(std::string_view content);

/// Returns whether a session starts the application of this autostart entry. A desktop's settings may have
/// disabled it.
[[nodiscard]] bool isEnabled(std::string_view content);

} // namespace tessarel::xdg::desktop_entry
