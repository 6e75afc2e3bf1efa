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

/// Cuts the first line off `text`.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return trimmed(line);
}

/// The value of `key` in the main group; empty when it is missing.
std::optional<std::string_view> value(std::string_view content, std::string_view key) {
    if (content.find(key) == std::string_view::npos) // most entries lack most keys
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

/// `text` as the value of a string key: what would end the line, or be taken for an escape, is escaped.
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

/// The text that an escaped value stands for, on one line: all that is blank in it is a space.
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
        if (character == '%') // else it would start a field code
            word += character;
    }
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
