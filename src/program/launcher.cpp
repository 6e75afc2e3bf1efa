// SPDX-License-Identifier: MIT

// What is installed as `tessarel` on Linux. Sends a command itself, because loading the program with its
// toolkit takes several times as long as the command; runs the program for everything else.

#include "app/command.h"
#include "platform/plasma/session.h"
#include "platform/x11/instance/command_sender.h"
#include "program/report.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

namespace tessarel {

namespace {

/// Where the program is, installed and in a build, relative to the folder of this executable.
constexpr std::array kPlaces = {"../libexec/tessarel/tessarel", "../tessarel"};

/// Returns whether every parser of command lines reads the word in the same way: ASCII, in whatever encoding
/// the user's locale has, and not an option other than the one of a list.
bool isPlain(const std::string& word) {
    return word == "--json" || (!word.starts_with('-') && std::ranges::all_of(word, [](char letter) {
               return static_cast<unsigned char>(letter) < 0x80;
           }));
}

/// Returns the folder of this executable, with a slash at the end; empty if it cannot be found out.
std::string folderOfThis() {
    std::string path(PATH_MAX, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return path.substr(0, path.rfind('/') + 1);
}

/// Replaces this process with the program. Returns an exit code if there is none.
int run(char** arguments) {
    const std::string folder = folderOfThis();
    if (folder.empty())
        return report(CommandExit::Failed, "the folder of the program cannot be found out");
    for (const char* const place : kPlaces)
        execv((folder + place).c_str(), arguments);
    return report(CommandExit::Failed, "the program is missing: " + folder + kPlaces.front());
}

} // namespace

} // namespace tessarel

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> words(arguments + std::min(argumentCount, 1), arguments + argumentCount);
    // Whatever is not a command for the running copy, such as a mistake, is left to the program; so are
    // commands in a Wayland session, where it may take a session bus to send them, and those for a display
    // that only the program can reach (see no_name_lookup.cpp).
    const bool isWayland =
        tessarel::plasma::mayBeWayland(std::getenv("WAYLAND_DISPLAY"), std::getenv("XDG_SESSION_TYPE"));
    if (!isWayland && std::ranges::all_of(words, tessarel::isPlain) &&
        tessarel::parseCommand(words).command) {
        const tessarel::SentCommand sent = tessarel::x11::sendCommand(nullptr, words);
        if (sent.outcome != tessarel::SentCommand::Outcome::NoDesktop)
            return tessarel::report(sent);
    }
    return tessarel::run(arguments);
}
