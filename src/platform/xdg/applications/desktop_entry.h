// SPDX-License-Identifier: MIT

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct _GKeyFile; // NOLINT(bugprone-reserved-identifier): GLib names it so

namespace tessarel::xdg {

/// The content of a desktop entry, a `.desktop` file that describes an application or starts one at login.
class DesktopEntry {
public:
    /// Parses the content of a file. Returns `std::nullopt` if it is not a valid key file or has no group
    /// "Desktop Entry".
    [[nodiscard]] static std::optional<DesktopEntry> parse(std::string_view content);

    /// Like `parse`, but without translations, which make up most of an entry. For reading many entries.
    [[nodiscard]] static std::optional<DesktopEntry> parseUntranslated(std::string_view content);

    /// Returns the content of an autostart entry that starts the program at the absolute `path`, also in
    /// sessions that do not unescape the path before they look for it. `name` is shown to the user.
    [[nodiscard]] static std::string autostart(std::string_view name, std::string_view path);

    /// Returns the content of an entry that describes no application but hides entries of its file name in
    /// less important folders.
    [[nodiscard]] static std::string hidden(std::string_view name);

    /// Returns `argument` as one word of an Exec value, quoted and escaped where necessary: a session that
    /// runs the command passes exactly `argument` to the program. The escapes of the file format are not
    /// included.
    [[nodiscard]] static std::string execWord(std::string_view argument);

    /// Returns the application's name in the language of the environment, otherwise the untranslated name, on
    /// one line. Returns `std::nullopt` if the name is missing, empty or not valid UTF-8.
    [[nodiscard]] std::optional<std::string> name() const;

    /// Returns what kind of application it is, in the language of the environment; empty if the entry does
    /// not say it.
    [[nodiscard]] std::string genericName() const;

    /// Returns the icon: the absolute path of a file, or a name in the icon theme. Empty if the entry names
    /// none.
    [[nodiscard]] std::string icon() const;

    /// Returns the class (WM_CLASS) of the application's windows; empty if the entry does not name it.
    [[nodiscard]] std::string windowClass() const;

    /// Returns the programs that the entry starts or that must be installed for it: paths, or names to be
    /// looked up in PATH. Of an interpreter, returns what it runs.
    [[nodiscard]] std::vector<std::string> programs() const;

    /// Returns the program that an autostart entry starts: a path, or a name to be looked up in PATH. Of an
    /// interpreter, returns what it runs. Empty if there is none.
    [[nodiscard]] std::string startedProgram() const;

    /// Returns whether menus offer the application with windows of its own: the entry has neither
    /// "NoDisplay=true" nor "Terminal=true".
    [[nodiscard]] bool isOffered() const;

    /// Returns whether the menus of `desktops`, the names in $XDG_CURRENT_DESKTOP, offer the application with
    /// windows of its own: the entry is shown, meant for one of the desktops, and the program that it needs
    /// is installed.
    [[nodiscard]] bool isOfferedIn(const std::vector<std::string>& desktops) const;

    /// Returns whether the entry describes an application. An entry with "Hidden=true" only hides others.
    [[nodiscard]] bool isShown() const;

    /// Returns whether the session of `desktops`, the names in $XDG_CURRENT_DESKTOP, starts the application
    /// of this autostart entry: nothing has disabled the entry, it is meant for one of the desktops, and all
    /// programs that it needs are installed.
    [[nodiscard]] bool isStartedBy(const std::vector<std::string>& desktops) const;

private:
    struct Free {
        void operator()(_GKeyFile* file) const;
    };
    using KeyFile = std::unique_ptr<_GKeyFile, Free>;

    explicit DesktopEntry(KeyFile file) : m_file(std::move(file)) {}

    [[nodiscard]] std::string value(const char* key) const;
    [[nodiscard]] std::string localValue(const char* key) const;
    [[nodiscard]] std::vector<std::string> list(const char* key) const;
    [[nodiscard]] bool isMeantFor(const std::vector<std::string>& desktops) const;
    [[nodiscard]] std::vector<std::string> commandWords() const;
    [[nodiscard]] bool isInstalled() const;
    [[nodiscard]] bool hasNeededProgram() const;

    KeyFile m_file;
};

} // namespace tessarel::xdg
