#include "support/x11/program.h"

#include <csignal>
#include <fstream>
#include <ios>
#include <string>
#include <sys/syscall.h>
#include <utility>

namespace tessarel::x11test {

namespace {

/// Qt looks for a bus by itself where it is told of none.
Environment withoutForeignBus(Environment environment) {
    environment.try_emplace("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    return environment;
}

/// Whether the file names a call that waits for one of several files, as the loop of a program does.
bool waitsInLoop(const std::string& syscallFile) {
    std::ifstream file(syscallFile);
    long call = 0;
    std::string files;
    unsigned long count = 0;
    if (!(file >> call >> files >> std::hex >> count)) // "running", then
        return false;
#ifdef SYS_poll // newer kinds of machine have only the other one
    if (call == SYS_poll)
        return count > 1;
#endif
    return call == SYS_ppoll && count > 1;
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
    const std::string process = "/proc/" + std::to_string(m_process.pid());
    if (!waitsInLoop(process + "/syscall"))
        return std::nullopt;
    std::ifstream status(process + "/status");
    for (std::string word; status >> word;) {
        if (long count = 0; word == "voluntary_ctxt_switches:" && status >> count)
            return count;
    }
    return std::nullopt;
}

std::optional<int> Program::terminate() {
    m_process.signal(SIGTERM);
    return m_process.waitForExit();
}

} // namespace tessarel::x11test
