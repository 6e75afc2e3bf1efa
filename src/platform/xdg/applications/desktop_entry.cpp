// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/desktop_entry.h"

#include "platform/xdg/applications/command_line.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <glib.h>
#include <sstream>
#include <unistd.h>

namespace tessarel::xdg {

namespace {

constexpr const char* kGroup = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* kSwitchedOn = "X-GNOME-Autostart-enabled";

struct FreeText {
    void operator()(gchar* text) const { g_free(text); }
};

/// Copies a string of GLib's and frees the original; empty for null.
std::string owned(gchar* text) {
    const std::unique_ptr<gchar, FreeText> guard(text);
    return text ? text : "";
}

/// A command that starts the words after it and changes nothing. GLib, for one, looks for the first word of
/// an Exec value as it stands, so an escaped path is not found there.
constexpr std::array<std::string_view, 3> kWrapper = {"nice", "-n", "0"};

/// Returns the value of Exec that starts the program at the absolute `path`.
std::string execOf(std::string_view path) {
    std::string exec;
    if (path.find('%') != std::string_view::npos) {
        for (const std::string_view word : kWrapper)
            exec.append(word).append(" ");
    }
    return exec + DesktopEntry::execWord(path);
}

/// Returns whether a command has the form of `execOf` for a path with a percent sign.
bool isWrapped(const std::vector<std::string>& words) {
    return words.size() > kWrapper.size() && std::equal(kWrapper.begin(), kWrapper.end(), words.begin());
}

/// Replaces each "%%" by "%".
void undouble(std::string& word) {
    for (std::size_t at = word.find("%%"); at != std::string::npos; at = word.find("%%", at + 1))
        word.erase(at, 1);
}

/// Returns whether the path or name `program` stands for an executable file.
bool isExecutable(const std::string& program) {
    const std::filesystem::path file = fileStartedBy(program);
    return std::filesystem::is_regular_file(file) && ::access(file.c_str(), X_OK) == 0;
}

/// Writes the keys that every entry of an application needs.
void describe(GKeyFile* file, std::string_view name) {
    g_key_file_set_string(file, kGroup, G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
    g_key_file_set_string(file, kGroup, G_KEY_FILE_DESKTOP_KEY_NAME, std::string(name).c_str());
}

/// Returns the lines of the main group whose keys name no language.
std::string untranslated(std::string_view content) {
    std::string lines;
    bool isMain = false;
    while (!content.empty()) {
        const std::size_t end = std::min(content.find('\n'), content.size() - 1) + 1;
        const std::string_view line = content.substr(0, end);
        content.remove_prefix(end);
        const std::string_view text = line.substr(std::min(line.find_first_not_of(" \t\r\f"), line.size()));
        if (text.starts_with('['))
            isMain =
                text.substr(1).starts_with(kGroup) && text.substr(1 + std::strlen(kGroup)).starts_with(']');
        if (isMain && (text.starts_with('[') || line.find('[') > line.find('=')))
            lines += line;
    }
    return lines;
}

/// Returns the lines without a backslash that ends a line instead of starting an escape. GLib ignores it, but
/// prints a warning if the value has another unknown escape.
std::string withoutOpenEscapes(std::string_view content) {
    std::string lines;
    lines.reserve(content.size());
    bool isOpen = false; // the last character of `lines` starts an escape
    for (std::size_t at = 0; at < content.size(); ++at) {
        const std::string_view rest = content.substr(at);
        if (isOpen && (rest.starts_with('\n') || rest.starts_with('\0') || rest.starts_with("\r\n")))
            lines.pop_back();
        isOpen = !isOpen && content[at] == '\\';
        lines += content[at];
    }
    if (isOpen)
        lines.pop_back();
    return lines;
}

/// Returns the text and frees it, without the blanks at its end, which GLib keeps. `text` may be null.
std::string trimmed(gchar* text) {
    std::string value = owned(text);
    value.erase(value.find_last_not_of(" \t\r") + 1);
    return value;
}

} // namespace

void DesktopEntry::Free::operator()(_GKeyFile* file) const {
    g_key_file_free(file);
}

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view content) {
    const std::string lines = withoutOpenEscapes(content);
    KeyFile file(g_key_file_new());
    if (!g_key_file_load_from_data(file.get(), lines.data(), lines.size(), G_KEY_FILE_NONE, nullptr) ||
        !g_key_file_has_group(file.get(), kGroup))
        return std::nullopt;
    return DesktopEntry(std::move(file));
}

std::optional<DesktopEntry> DesktopEntry::parseUntranslated(std::string_view content) {
    return parse(untranslated(content));
}

std::string DesktopEntry::autostart(std::string_view name, std::string_view path) {
    const KeyFile file(g_key_file_new());
    describe(file.get(), name);
    g_key_file_set_string(file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_EXEC, execOf(path).c_str());
    g_key_file_set_boolean(file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_TERMINAL, FALSE);
    g_key_file_set_boolean(file.get(), kGroup, kSwitchedOn, TRUE);
    return owned(g_key_file_to_data(file.get(), nullptr, nullptr));
}

std::string DesktopEntry::hidden(std::string_view name) {
    const KeyFile file(g_key_file_new());
    describe(file.get(), name);
    g_key_file_set_boolean(file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_HIDDEN, TRUE);
    return owned(g_key_file_to_data(file.get(), nullptr, nullptr));
}

std::string DesktopEntry::execWord(std::string_view argument) {
    constexpr std::string_view kReserved = " \t\n\r\"'\\><~|&;$*?#()`";
    constexpr std::string_view kEscapedInQuotes = "\"`$\\";
    const bool quoted = argument.empty() || argument.find_first_of(kReserved) != std::string_view::npos;
    std::string word(quoted ? "\"" : "");
    for (const char character : argument) {
        if (kEscapedInQuotes.find(character) != std::string_view::npos)
            word += '\\';
        word += character;
        if (character == '%') // a single one would start a field code
            word += character;
    }
    if (quoted)
        word += '"';
    return word;
}

std::optional<std::string> DesktopEntry::name() const {
    std::string name = localValue(G_KEY_FILE_DESKTOP_KEY_NAME);
    return name.empty() ? std::nullopt : std::optional(std::move(name));
}

std::string DesktopEntry::genericName() const {
    return localValue(G_KEY_FILE_DESKTOP_KEY_GENERIC_NAME);
}

std::string DesktopEntry::icon() const {
    return value(G_KEY_FILE_DESKTOP_KEY_ICON);
}

std::string DesktopEntry::windowClass() const {
    return value(G_KEY_FILE_DESKTOP_KEY_STARTUP_WM_CLASS);
}

std::vector<std::string> DesktopEntry::programs() const {
    std::vector<std::string> programs = {programOf(execWords(value(G_KEY_FILE_DESKTOP_KEY_EXEC))),
                                         value(G_KEY_FILE_DESKTOP_KEY_TRY_EXEC)};
    std::erase(programs, "");
    return programs;
}

bool DesktopEntry::isOffered() const {
    return value(G_KEY_FILE_DESKTOP_KEY_NO_DISPLAY) != "true" &&
           value(G_KEY_FILE_DESKTOP_KEY_TERMINAL) != "true";
}

bool DesktopEntry::isOfferedIn(const std::vector<std::string>& desktops) const {
    return value(G_KEY_FILE_DESKTOP_KEY_TYPE) == G_KEY_FILE_DESKTOP_TYPE_APPLICATION && isShown() &&
           isOffered() && isMeantFor(desktops) && hasNeededProgram();
}

bool DesktopEntry::isShown() const {
    return value(G_KEY_FILE_DESKTOP_KEY_HIDDEN) != "true";
}

bool DesktopEntry::isStartedBy(const std::vector<std::string>& desktops) const {
    return isShown() && value(kSwitchedOn) != "false" && isMeantFor(desktops) && isInstalled();
}

/// The first desktop that one of the lists names decides.
bool DesktopEntry::isMeantFor(const std::vector<std::string>& desktops) const {
    const auto only = list(G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN);
    const auto notIn = list(G_KEY_FILE_DESKTOP_KEY_NOT_SHOW_IN);
    for (const std::string& desktop : desktops) {
        if (std::ranges::find(only, desktop) != only.end())
            return true;
        if (std::ranges::find(notIn, desktop) != notIn.end())
            return false;
    }
    return value(G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN).empty();
}

/// Returns the words of the command, read as `autostart` writes them.
std::vector<std::string> DesktopEntry::commandWords() const {
    std::vector<std::string> words = execWords(value(G_KEY_FILE_DESKTOP_KEY_EXEC));
    for (std::string& word : words)
        undouble(word);
    return words;
}

std::string DesktopEntry::startedProgram() const {
    std::vector<std::string> words = commandWords();
    if (isWrapped(words))
        words.erase(words.begin(), words.begin() + kWrapper.size());
    return programOf(words);
}

/// Returns whether the command and everything that it needs to be present exist.
bool DesktopEntry::isInstalled() const {
    const std::vector<std::string> words = commandWords();
    if (words.empty() || !isExecutable(words.front()))
        return false;
    if (isWrapped(words) && !isExecutable(words[kWrapper.size()]))
        return false;
    return hasNeededProgram();
}

/// Returns whether the program that must be present according to the entry exists.
bool DesktopEntry::hasNeededProgram() const {
    const std::string needed = value(G_KEY_FILE_DESKTOP_KEY_TRY_EXEC);
    return needed.empty() || isExecutable(needed);
}

/// Returns the values of `key`, which are separated by semicolons.
std::vector<std::string> DesktopEntry::list(const char* key) const {
    std::istringstream text(value(key));
    std::vector<std::string> values;
    for (std::string value; std::getline(text, value, ';');)
        values.push_back(value);
    return values;
}

/// Returns the value of `key` in the language of the environment, otherwise the untranslated value, on one
/// line; empty if it is missing or not valid UTF-8.
std::string DesktopEntry::localValue(const char* key) const {
    std::string text = trimmed(g_key_file_get_locale_string(m_file.get(), kGroup, key, nullptr, nullptr));
    // Escaped line breaks and tabs.
    std::ranges::replace_if(
        text, [](char character) { return character == '\n' || character == '\t' || character == '\r'; },
        ' ');
    return text;
}

/// Returns the value of `key` without surrounding blanks; empty if it is missing or not valid UTF-8.
std::string DesktopEntry::value(const char* key) const {
    return trimmed(g_key_file_get_string(m_file.get(), kGroup, key, nullptr));
}

} // namespace tessarel::xdg
