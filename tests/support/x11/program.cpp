#include "support/x11/program.h"

#include <csignal>
#include <fstream>
#include <string>
#include <utility>

namespace tessarel::x11test {

namespace {

/// Qt looks for a bus by itself where it is told of none.
Environment withoutForeignBus(Environment environment) {
    environment.try_emplace("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    return environment;
}

} // namespace

std::filesystem::path settingsFile(const XServer& server) {
    return server.configHome() / "tessarel" / "tessarel.settings.v1.json";
}

void writeSettings(const XServer& server, std::string_view document) {
    std::filesystem::create_directories(settingsFile(server).parent_path());
    std::ofstream(settingsFile(server)) << document;
}

Program::Program(const XServer& server) : Program(server.environment()) {}

Program::Program(Environment environment)
    : m_process({TESSAREL_PROGRAM}, withoutForeignBus(std::move(environment))) {}

bool Program::waitUntilReady(Observer& observer, Keyboard& keyboard, const Combination& last) {
    const bool ready = observer.waitUntil([&] { return !running() || keyboard.held(last); });
    return ready && running();
}

std::optional<long> Program::timesAsleep() const {
    std::ifstream status("/proc/" + std::to_string(m_process.pid()) + "/status");
    bool isAwake = false;
    for (std::string word; status >> word;) {
        if (std::string state; word == "State:" && status >> state)
            isAwake = state == "R" || state == "D";
        if (long count = 0; word == "voluntary_ctxt_switches:" && status >> count)
            return isAwake ? std::nullopt : std::optional(count);
    }
    return std::nullopt;
}

std::optional<int> Program::terminate() {
    m_process.signal(SIGTERM);
    return m_process.waitForExit();
}

} // namespace tessarel::x11test
