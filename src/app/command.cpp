// SPDX-License-Identifier: MIT

#include "app/command.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace tessarel {

namespace {

constexpr std::string_view kLayout = "layout";
constexpr std::string_view kPause = "pause";
constexpr std::string_view kQuit = "quit";
constexpr std::string_view kList = "list";
constexpr std::string_view kJson = "--json";

constexpr std::array<std::pair<std::string_view, std::optional<bool>>, 3> kPauses = {
    {{"on", true}, {"off", false}, {"toggle", std::nullopt}}};

using What = command::List::What;
constexpr std::array<std::pair<std::string_view, What>, 4> kLists = {{{"actions", What::Actions},
                                                                      {"layouts", What::Layouts},
                                                                      {"zones", What::Zones},
                                                                      {"displays", What::Displays}}};

constexpr bool isUpper(char letter) {
    return letter >= 'A' && letter <= 'Z';
}

constexpr bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

template <class Table>
std::vector<std::string> namesOf(const Table& table) {
    std::vector<std::string> names;
    names.reserve(table.size());
    for (const auto& [name, meaning] : table)
        names.emplace_back(name);
    return names;
}

/// Returns the meaning of `name`; null if the table has none.
template <class Table>
auto* find(const Table& table, std::string_view name) {
    const auto found =
        std::find_if(table.begin(), table.end(), [name](const auto& entry) { return entry.first == name; });
    return found == table.end() ? nullptr : &found->second;
}

ParsedCommand problem(std::string text) {
    return {std::nullopt, std::move(text)};
}

std::string inQuotes(std::string_view word) {
    return std::string("\"").append(word).append("\"");
}

ParsedCommand parseList(const std::vector<std::string>& words) {
    const bool asJson = words.size() == 3 && words[2] == kJson;
    const What* const what = words.size() == 2 || asJson ? find(kLists, words[1]) : nullptr;
    if (!what)
        return problem("list takes one of actions, layouts, zones and displays, and --json if wanted");
    return {command::List{*what, asJson}, {}};
}

std::optional<ActionID> actionNamed(std::string_view name) {
    const auto found = std::find_if(ActionID::allCases.begin(), ActionID::allCases.end(),
                                    [name](ActionID action) { return commandName(action) == name; });
    return found == ActionID::allCases.end() ? std::nullopt : std::optional(*found);
}

} // namespace

std::string commandName(ActionID action) {
    std::string name;
    for (const char letter : action.rawValue()) {
        if (isUpper(letter) || isDigit(letter))
            name += '-';
        name += isUpper(letter) ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return name;
}

std::vector<CommandForm> commandForms() {
    std::vector<CommandForm> forms;
    std::transform(ActionID::allCases.begin(), ActionID::allCases.end(), std::back_inserter(forms),
                   [](const ActionID action) {
                       return CommandForm{commandName(action), {}, {}, std::string(action.title())};
                   });
    forms.push_back({std::string(kLayout), {}, "NAME", "Use the layout of this name"});
    forms.push_back({std::string(kPause), namesOf(kPauses), "STATE", "Pause hot keys and drags, or go on"});
    forms.push_back({std::string(kQuit), {}, {}, "Quit the running copy"});
    forms.push_back({std::string(kList), namesOf(kLists), "WHAT",
                     "Print the actions, layouts, zones or displays; with --json as JSON"});
    return forms;
}

ParsedCommand parseCommand(const std::vector<std::string>& words) {
    if (words.empty())
        return problem("a command is missing");
    const std::string& first = words.front();
    if (first == kList)
        return parseList(words);
    if (first == kLayout)
        return words.size() == 2 ? ParsedCommand{command::ApplyLayout{words[1]}, {}}
                                 : problem("layout takes one name");
    if (first == kPause) {
        const std::optional<bool>* const paused = words.size() == 2 ? find(kPauses, words[1]) : nullptr;
        return paused ? ParsedCommand{command::SetPause{*paused}, {}}
                      : problem("pause takes one of on, off and toggle");
    }
    const auto action = actionNamed(first);
    if (!action && first != kQuit)
        return problem("there is no command " + inQuotes(first));
    if (words.size() > 1)
        return problem(first + " takes no further words");
    return action ? ParsedCommand{command::RunAction{*action}, {}} : ParsedCommand{command::Quit{}, {}};
}

} // namespace tessarel
