// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/process_facts.h"

#include "platform/xdg/applications/command_line.h"
#include "platform/xdg/ascii.h"
#include "platform/xdg/small_file.h"
#include "platform/xdg/utf8.h"

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>

namespace tessarel::xdg {

namespace fs = std::filesystem;

namespace {

// In bytes. Class paths of Java programs are long; what follows a longer one is not found.
constexpr std::size_t kLongestCommandLine = std::size_t{64} * 1024;
constexpr std::size_t kLongestCgroups = std::size_t{16} * 1024;

/// Returns the words of a command line, each of which ends with a NUL.
std::vector<std::string> wordsIn(std::string_view commandLine) {
    std::vector<std::string> words;
    while (!commandLine.empty()) {
        const std::size_t end = std::min(commandLine.find('\0'), commandLine.size());
        words.emplace_back(commandLine.substr(0, end));
        commandLine.remove_prefix(std::min(end + 1, commandLine.size()));
    }
    return words;
}

/// Returns the executable of a process, without the note that the file has been replaced.
std::string executableOf(const fs::path& process) {
    std::error_code failure;
    std::string path = fs::read_symlink(process / "exe", failure).native();
    constexpr std::string_view kReplaced = " (deleted)";
    if (path.ends_with(kReplaced))
        path.resize(path.size() - kReplaced.size());
    return path;
}

/// Returns the file without symbolic links; empty if it does not exist.
fs::path resolved(const fs::path& file) {
    std::error_code failure;
    fs::path path = fs::canonical(file, failure);
    return failure ? fs::path() : path;
}

/// Returns the file that the program is. A relative path counts from the working folder of the process.
fs::path fileOf(const std::string& program, const fs::path& process) {
    if (program.empty())
        return {};
    if (program.front() == '/')
        return resolved(program);
    std::error_code failure;
    const fs::path folder = fs::read_symlink(process / "cwd", failure);
    const fs::path file = failure ? fs::path() : resolved(folder / program);
    return fs::is_regular_file(file, failure) ? file : fs::path();
}

void addName(const std::string& name, std::vector<std::string>& names) {
    if (!name.empty() && !isInterpreter(name) && std::ranges::find(names, name) == names.end())
        names.push_back(name);
}

/// Adds the name of a file, with and without its suffix.
void addNamesOfFile(std::string_view file, std::vector<std::string>& names) {
    const std::string name = lowered(fileName(file));
    addName(name, names);
    addName(name.substr(0, name.find_last_of('.')), names);
}

/// Returns the names of a program that is not a file: a Java class counts without its package.
std::vector<std::string> namesOfClass(std::string_view program) {
    std::vector<std::string> names;
    addName(lowered(program.substr(program.find_last_of('.') + 1)), names);
    addName(lowered(program), names);
    return names;
}

std::vector<std::string> namesOf(const std::string& program, const fs::path& file) {
    if (file.empty() && program.find('/') == std::string::npos)
        return namesOfClass(program);
    std::vector<std::string> names;
    addNamesOfFile(program, names);
    addNamesOfFile(file.native(), names);
    return names;
}

/// Returns `name` with the escapes of systemd's unit names, such as "\x2d" for a hyphen, replaced.
std::string unescaped(std::string_view name) {
    constexpr std::string_view kHyphen = "\\x2d";
    std::string result(name);
    for (auto at = result.find(kHyphen); at != std::string::npos; at = result.find(kHyphen, at)) {
        result.erase(at, kHyphen.size() - 1);
        result[at] = '-';
    }
    return result;
}

/// Removes `prefix` and `suffix`. Returns false if `unit` does not have both.
bool strip(std::string_view& unit, std::string_view prefix, std::string_view suffix) {
    if (unit.size() < prefix.size() + suffix.size() || !unit.starts_with(prefix) || !unit.ends_with(suffix))
        return false;
    unit.remove_prefix(prefix.size());
    unit.remove_suffix(suffix.size());
    return true;
}

/// Returns the Flatpak that a scope such as "app-flatpak-org.example.App-1234.scope" belongs to.
std::optional<Sandbox> flatpakOf(std::string_view unit) {
    if (!strip(unit, "app-flatpak-", ".scope") && !strip(unit, "flatpak-", ".scope"))
        return {};
    const auto end = unit.find_last_of('-');
    if (end == std::string_view::npos || end == 0)
        return {};
    const std::string identifier = unescaped(unit.substr(0, end));
    return Sandbox{identifier, identifier + "."};
}

/// Returns the snap that a unit such as "snap.name.app-UUID.scope" or "snap.name.app.service" belongs to.
std::optional<Sandbox> snapOf(std::string_view unit) {
    constexpr std::size_t kUuid = 36;
    const bool isScope = strip(unit, "snap.", ".scope");
    if (!isScope && !strip(unit, "snap.", ".service"))
        return {};
    if (isScope && unit.size() > kUuid + 1)
        unit.remove_suffix(kUuid + 1); // with the hyphen or full stop before it
    const auto dot = unit.find('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == unit.size())
        return {};
    const std::string name = unescaped(unit.substr(0, dot));
    return Sandbox{name + "_" + unescaped(unit.substr(dot + 1)), name + "_"};
}

/// Returns whether the executable is one of a snap. A program that is started in the terminal of a snap
/// without confinement stays in the cgroup of that snap.
bool mayBeSnap(std::string_view executable) {
    return executable.empty() || executable.starts_with("/snap/") ||
           executable.starts_with("/var/lib/snapd/snap/");
}

} // namespace

std::optional<Sandbox> sandboxIn(std::string_view cgroups) {
    while (!cgroups.empty()) {
        const std::size_t end = std::min(cgroups.find_first_of("/\n"), cgroups.size());
        const std::string_view unit = cgroups.substr(0, end);
        cgroups.remove_prefix(std::min(end + 1, cgroups.size()));
        if (auto flatpak = flatpakOf(unit))
            return flatpak;
        if (auto snap = snapOf(unit))
            return snap;
    }
    return {};
}

ProcessFacts processFacts(std::int32_t pid, const fs::path& proc) {
    const fs::path process = proc / std::to_string(pid);
    const std::string executable = executableOf(process);
    std::vector<std::string> words =
        wordsIn(readStart(process / "cmdline", kLongestCommandLine).value_or(""));
    ProcessFacts facts;
    // The process may have changed its command line; the executable comes from the kernel.
    const std::string started = words.empty() ? std::string() : words.front();
    if (!executable.empty()) {
        words.resize(std::max<std::size_t>(words.size(), 1));
        words.front() = executable;
    }
    const std::string program = programOf(words);
    facts.file = fileOf(program.empty() ? executable : program, process);
    facts.program = toUtf8(program.empty() ? executable : program);
    facts.names = namesOf(facts.program, facts.file);
    addNamesOfFile(started, facts.names);
    facts.sandbox = sandboxIn(readStart(process / "cgroup", kLongestCgroups).value_or(""));
    if (facts.sandbox && facts.sandbox->prefix.ends_with('_') && !mayBeSnap(executable))
        facts.sandbox.reset();
    return facts;
}

} // namespace tessarel::xdg
