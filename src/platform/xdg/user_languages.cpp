#include "platform/xdg/user_languages.h"

#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <sstream>
#include <string_view>

namespace tessarel::xdg {

namespace {

/// Returns the value of the first of `variables` that is set and not empty; empty if there is none.
std::string firstValue(std::initializer_list<const char*> variables) {
    for (const char* const variable : variables) {
        if (const char* const value = std::getenv(variable); value && *value)
            return value;
    }
    return {};
}

/// Returns the part of `text` before the first of the characters in `marks`.
std::string_view before(std::string_view text, std::string_view marks) {
    return text.substr(0, text.find_first_of(marks));
}

/// Appends the names of languages that match `locale`, such as "de_AT.UTF-8@euro", the closest first.
void appendLanguages(std::string_view locale, std::vector<std::string>& languages) {
    const std::string_view place = before(locale, ".@");
    const std::string_view language = before(place, "_");
    const std::size_t at = locale.find('@');
    const std::string modifier(at == std::string_view::npos ? "" : locale.substr(at));
    for (const std::string_view name : {place, language}) {
        if (!modifier.empty())
            languages.push_back(std::string(name) + modifier);
        languages.emplace_back(name); // appended twice, without harm, for a locale without a country
    }
}

} // namespace

std::vector<std::string> userLanguages() {
    // As in gettext, $LANGUAGE takes precedence, but only if the locale asks for translations at all.
    const std::string locale = firstValue({"LC_ALL", "LC_MESSAGES", "LANG"});
    const std::string_view plain = before(locale, ".@");
    if (plain.empty() || plain == "C" || plain == "POSIX")
        return {};
    std::vector<std::string> languages;
    std::istringstream list(firstValue({"LANGUAGE"}) + ":" + locale);
    for (std::string one; std::getline(list, one, ':');) {
        if (!one.empty())
            appendLanguages(one, languages);
    }
    return languages;
}

} // namespace tessarel::xdg
