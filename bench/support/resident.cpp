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

/// The combinations that Tessarel grabs by default with all zones enabled.
std::vector<Combination> defaultBindings() {
    std::vector<Combination> bindings;
    for (xcb_keycode_t zone = 0; zone < 9; ++zone)
        bindings.push_back({static_cast<xcb_keycode_t>(key::kDigit1 + zone), kControlAlt});
    for (const xcb_keycode_t key :
         {key::kUp, key::kDown, key::kLeft, key::kRight, key::kReturn, key::kC, key::kBackspace, key::kA})
        bindings.push_back({key, kControlAlt});
    for (const xcb_keycode_t key : {key::kLeft, key::kRight})
        bindings.push_back({key, kControlAltSuper});
    return bindings;
}

} // namespace

std::vector<Resident> residents(const std::filesystem::path& directory) {
    return {{"empty Qt tray program", directory / "empty_qt_tray", true},
            {"tessarel", directory / "tessarel"}};
}

std::unique_ptr<ChildProcess> startAndAwait(const Resident& resident, const Connection& connection) {
    const std::vector<Combination> bindings = defaultBindings();
    std::vector<std::string> command = resident.environment;
    if (!command.empty())
        command.insert(command.begin(), "env");
    command.push_back(resident.path);
    auto program = std::make_unique<ChildProcess>(command);
    const auto end = Clock::now() + kStartTimeout;
    for (;;) {
        const bool held = allHeld(connection, bindings);
        if (resident.saysSo ? program->hasOutput() : held)
            return program;
        if (Clock::now() > end || !program->running())
            throw std::runtime_error(resident.name + " did not get ready");
        std::this_thread::sleep_for(1ms);
    }
}

} // namespace tessarel::bench
