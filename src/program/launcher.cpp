// SPDX-License-Identifier: MIT

// What is installed as `tessarel` on Linux. Sends a command itself, because loading the program with its
// toolkit takes several times as long as the command; runs the program for everything else.

#include "app/command.h"
#include "platform/x11/server/command_channel.h"
#include "platform/x11/server/connection.h"
#include "ports/main_queue_port.h"
#include "program/report.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tessarel {

namespace {

/// Where the program is, installed and in a build, relative to the folder of this executable.
constexpr std::array kPlaces = {"../libexec/tessarel/tessarel", "../tessarel"};

/// The queue of a process without an event loop: no work is ever run.
class NoEventLoop : public MainQueuePort {
public:
    TimePoint now() override { return std::chrono::steady_clock::now(); }
    SubscriptionPtr asyncAfter(Duration /*delay*/, std::function<void()> /*work*/) override {
        return std::make_unique<Subscription>();
    }
};

/// Returns whether every parser of command lines reads the word in the same way: ASCII, in whatever encoding
/// the user's locale has, and not an option other than the one of a list.
bool isPlain(const std::string& word) {
    return word == "--json" || (!word.starts_with('-') && std::ranges::all_of(word, [](char letter) {
               return static_cast<unsigned char>(letter) < 0x80;
           }));
}

/// Sends a command to the copy that runs on this display. Returns the exit code.
int send(const std::vector<std::string>& words) {
    NoEventLoop queue;
    const auto [connection, failure] = x11::Connection::open(nullptr, queue);
    if (!connection)
        return report(CommandExit::Failed, "cannot open the X display: " + failure);
    return report(x11::sendCommand(*connection, words));
}

/// Replaces this process with the program. Returns an exit code if there is none.
int run(char** arguments) {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* const place : kPlaces)
        execv((folder / place).lexically_normal().c_str(), arguments);
    return report(CommandExit::Failed,
                  "the program is missing in " +
                      (folder / kPlaces.front()).lexically_normal().parent_path().string());
}

} // namespace

} // namespace tessarel

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> words(arguments + std::min(argumentCount, 1), arguments + argumentCount);
    // Whatever is not a command for the running copy, such as a mistake, is left to the program.
    if (std::ranges::all_of(words, tessarel::isPlain) && tessarel::parseCommand(words).command)
        return tessarel::send(words);
    return tessarel::run(arguments);
}
