#include "platform/xdg/desktop_entry.h"

#include "platform/xdg/utf8.h"

#include <utility>

namespace tessarel::xdg::desktop_entry {

namespace {

constexpr std::string_view kGroup = "[Desktop Entry]";
constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Removes the first line from `text` and returns it without surrounding blanks.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return trimmed(line);
}

/// Returns the value of `key` in the main group, `std::nullopt` if it is missing.
std::optional<std::string_view> value(std::string_view content, std::string_view key) {
    // Most entries lack most keys, and a plain search is faster than a look at every line.
    if (content.find(key) == std::string_view::npos)
        return std::nullopt;
    bool inGroup = false;
    while (!content.empty()) {
        const std::string_view line = takeLine(content);
        if (line.starts_with('['))
            inGroup = line == kGroup;
        const std::size_t equals = line.find('=');
        if (inGroup && equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key)
            return trimmed(line.substr(equals + 1));
    }
    return std::nullopt;
}

/// Escapes `text` as the value of a string key: backslashes, line breaks and tabs.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '\\':
            result += "\\\\";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\r':
            result += "\\r";
            break;
        case '\t':
            result += "\\t";
            break;
        default:
            result += character;
        }
    }
    return result;
}

/// Decodes the escapes of a string value. Escaped line breaks and tabs become spaces, so that the result is a
/// single line. A backslash before any other character is dropped; one at the end stays.
std::string oneLine(std::string_view value) {
    constexpr std::string_view kEscapedBlanks = "sntr";
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool isEscape = value[i] == '\\' && i + 1 < value.size();
        if (!isEscape)
            result += value[i];
        else if (const char escaped = value[++i]; kEscapedBlanks.find(escaped) != std::string_view::npos)
            result += ' ';
        else
            result += escaped;
    }
    return result;
}

/// Returns an entry with the given name, followed by the lines in `rest`.
std::string entry(std::string_view name, std::string_view rest) {
    std::string content(kGroup);
    content += "\nType=Application\nName=";
    content += escaped(name);
    content += '\n';
    content += rest;
    return content;
}

} // namespace

std::string execWord(std::string_view argument) {
    constexpr std::string_view kReserved = " \t\n\r\"'\\><~|&;$*?#()`";
    constexpr std::string_view kEscapedInQuotes = "\"`$\\";
    const bool quoted = argument.empty() || argument.find_first_of(kReserved) != std::string_view::npos;
    std::string word;
    for (const char character : argument) {
        if (kEscapedInQuotes.find(character) != std::string_view::npos)
            word += '\\';
        word += character;
        if (character == '%') // a single one would start a field code
            word += character;
    }
    // The quotes are part of the string value, whose own escapes come on top.
    return escaped(quoted ? '"' + word + '"' : word);
}

std::string autostart(std::string_view name, std::string_view path) {
    return entry(name, "Exec=" + execWord(path) + "\nTerminal=false\nX-GNOME-Autostart-enabled=true\n");
}

std::string hidden(std::string_view name) {
    return entry(name, "Hidden=true\n");
}

std::optional<std::string> name(std::string_view content, const std::vector<std::string>& languages) {
    std::optional<std::string_view> name;
    for (auto language = languages.begin(); language != languages.end() && !name; ++language)
        name = value(content, "Name[" + *language + "]");
    if (!name)
        name = value(content, "Name");
    const std::string text = toUtf8(oneLine(name.value_or("")));
    return text.empty() ? std::nullopt : std::optional(text);
}

std::string windowClass(std::string_view content) {
    return std::string(value(content, "StartupWMClass").value_or(""));
}

bool isShown(std::string_view content) {
    return value(content, "Hidden") != "true";
}

bool isEnabled(std::string_view content) {
    return isShown(content) && value(content, "X-GNOME-Autostart-enabled") != "false";
}

} // namespace tessarel::xdg::desktop_entry
