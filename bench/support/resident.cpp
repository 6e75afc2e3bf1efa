// SPDX-License-Identifier: MIT

#include "support/resident.h"

#include "support/keyboard.h"

#include <array>
#include <stdexcept>
#include <thread>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kStartTimeout = 10s;

constexpr std::uint16_t kWithSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

/// The keys that Tessarel grabs by default with all zones enabled: 1 to 9, the arrows, Return, C, Backspace
/// and A, and Left and Right with Super.
constexpr std::array<Combination, 19> kDefaultBindings{{{10},
                                                        {11},
                                                        {12},
                                                        {13},
                                                        {14},
                                                        {15},
                                                        {16},
                                                        {17},
                                                        {18},
                                                        {36},
                                                        {22},
                                                        {38},
                                                        {54},
                                                        {111},
                                                        {113},
                                                        {114},
                                                        {116},
                                                        {113, kWithSuper},
                                                        {114, kWithSuper}}};

} // namespace

std::vector<Resident> residents(const std::filesystem::path& directory) {
    return {{"empty Qt tray program", directory / "empty_qt_tray", true},
            {"tessarel", directory / "tessarel"}};
}

std::unique_ptr<ChildProcess> startAndAwait(const Resident& resident, const Connection& connection) {
    std::vector<std::string> command = resident.environment;
    if (!command.empty())
        command.insert(command.begin(), "env");
    command.push_back(resident.path);
    auto program = std::make_unique<ChildProcess>(command);
    const auto end = Clock::now() + kStartTimeout;
    for (;;) {
        const bool held = allHeld(connection, kDefaultBindings);
        if (resident.saysSo ? program->hasOutput() : held)
            return program;
        if (Clock::now() > end || !program->running())
            throw std::runtime_error(resident.name + " did not get ready");
        std::this_thread::sleep_for(1ms);
    }
}

} // namespace tessarel::bench
