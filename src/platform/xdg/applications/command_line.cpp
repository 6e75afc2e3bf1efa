// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/command_line.h"

#include "platform/xdg/ascii.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <system_error>
#include <utility>

namespace tessarel::xdg {

namespace {

using Words = std::vector<std::string>;

/// The options of an interpreter that matter for finding what it runs, each list separated by blanks.
struct Interpreter {
    std::string_view name;          ///< without a version
    std::string_view code = {};     ///< options that are followed by code instead of a script
    std::string_view program = {};  ///< options that are followed by the module or archive to run
    std::string_view argument = {}; ///< other options that are followed by a word
};

constexpr std::array kInterpreters = {
    Interpreter{"python", "-c", "-m", "-W -X"},
    Interpreter{"pypy", "-c", "-m", "-W -X"},
    Interpreter{
        "java",
        {},
        "-jar -m --module",
        "-cp -classpath --class-path -p --module-path --upgrade-module-path --add-modules --add-opens "
        "--add-exports --add-reads"},
    Interpreter{"wish"},
    Interpreter{"tclsh"},
    Interpreter{"perl", "-e -E"},
    Interpreter{"ruby", "-e", {}, "-r -I"},
    Interpreter{"sh", "-c"},
    Interpreter{"bash", "-c"},
    Interpreter{"dash", "-c"},
    Interpreter{"zsh", "-c"},
    Interpreter{"ksh", "-c"},
    Interpreter{"gjs", "-c"},
    Interpreter{"gjs-console", "-c"},
    Interpreter{"node", "-e --eval -p", {}, "-r --require"},
    Interpreter{"nodejs", "-e --eval -p", {}, "-r --require"},
    Interpreter{"electron", {}, {}, "-r"},
    Interpreter{"mono"},
    Interpreter{"dotnet"},
    Interpreter{"lua", "-e", {}, "-l"},
    Interpreter{"guile", "-c", "-s"},
    Interpreter{"php", "-r", "-f"},
};

/// Returns the interpreter called `name`, whose version may follow, as in "wish8.6".
const Interpreter* interpreterCalled(std::string_view name) {
    const std::string wanted = lowered(name);
    const auto found = std::ranges::find_if(kInterpreters, [&](const Interpreter& interpreter) {
        return wanted.starts_with(interpreter.name) &&
               wanted.find_first_not_of("0123456789.-", interpreter.name.size()) == std::string::npos;
    });
    return found == kInterpreters.end() ? nullptr : &*found;
}

bool contains(std::string_view options, std::string_view option) {
    for (std::size_t start = 0; start < options.size();) {
        const std::size_t end = std::min(options.find(' ', start), options.size());
        if (options.substr(start, end - start) == option)
            return true;
        start = end + 1;
    }
    return false;
}

/// Returns what the interpreter runs, given the words after its name.
std::string runBy(const Interpreter& interpreter, Words::const_iterator word, Words::const_iterator end) {
    for (; word != end; ++word) {
        const bool isLast = std::next(word) == end;
        if (contains(interpreter.code, *word) || *word == "-")
            return {};
        if (contains(interpreter.program, *word))
            return isLast ? std::string() : *std::next(word);
        if (contains(interpreter.argument, *word) && !isLast)
            ++word;
        else if (!word->starts_with('-'))
            return word->starts_with('%') ? std::string() : *word;
    }
    return {};
}

} // namespace

Words execWords(std::string_view exec) {
    Words words;
    std::optional<std::string> word;
    bool isQuoted = false;
    for (std::size_t at = 0; at < exec.size(); ++at) {
        char character = exec[at];
        if (character == ' ' && !isQuoted) {
            if (word)
                words.push_back(*std::exchange(word, std::nullopt));
            continue;
        }
        if (!word)
            word.emplace();
        if (character == '"') {
            isQuoted = !isQuoted;
            continue;
        }
        if (character == '\\' && isQuoted && at + 1 < exec.size())
            character = exec[++at];
        *word += character;
    }
    if (word)
        words.push_back(*word);
    return words;
}

std::string programOf(const Words& words) {
    auto word = words.begin();
    if (word != words.end() && fileName(*word) == "env")
        word = std::find_if(std::next(word), words.end(), [](const std::string& argument) {
            return !argument.starts_with('-') && argument.find('=') == std::string::npos;
        });
    if (word == words.end())
        return {};
    const Interpreter* interpreter = interpreterCalled(fileName(*word));
    return interpreter ? runBy(*interpreter, std::next(word), words.end()) : *word;
}

std::filesystem::path fileStartedBy(const std::string& program) {
    namespace fs = std::filesystem;
    if (program.empty())
        return {};
    const char* const path = std::getenv("PATH");
    std::istringstream folders(program.find('/') == std::string::npos && path ? path : "/");
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (!fs::path(folder).is_absolute())
            continue;
        std::error_code failure;
        fs::path file = fs::canonical(fs::path(folder) / program, failure);
        if (!failure)
            return file;
    }
    return {};
}

bool isInterpreter(std::string_view name) {
    return interpreterCalled(name) != nullptr;
}

std::string_view fileName(std::string_view path) {
    return path.substr(path.find_last_of('/') + 1);
}

} // namespace tessarel::xdg
