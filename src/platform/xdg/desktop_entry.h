#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::xdg::desktop_entry {

/// `argument` as one word of an Exec line, read back as it stands whatever characters it has.
[[nodiscard]] std::string execWord(std::string_view argument);

/// An entry that starts the program at `path` at login.
[[nodiscard]] std::string autostart(std::string_view name, std::string_view path);

/// An entry that hides every less important one of its file name.
[[nodiscard]] std::string hidden(std::string_view name);

/// What the entry's program is called in the first of `languages` that the entry speaks, else as it is called
/// everywhere; none when it says neither.
[[nodiscard]] std::optional<std::string> name(std::string_view content,
                                              const std::vector<std::string>& languages);

/// The class that the windows of the entry's program carry, as far as it says.
[[nodiscard]] std::string windowClass(std::string_view content);

/// Whether the entry stands for a program at all: one may be there only to hide less important ones.
[[nodiscard]] bool isShown(std::string_view content);

/// Whether a session starts what the entry with this content stands for.
[[nodiscard]] bool isEnabled(std::string_view content);

} // namespace tessarel::xdg::desktop_entry
