// SPDX-License-Identifier: MIT

#include "support/x11/program.h"

#include <csignal>
#include <fstream>
#include <ios>
#include <iterator>
#include <string>
#include <sys/syscall.h>
#include <utility>

namespace tessarel::x11test {

namespace {

/// Disables the session bus unless one is given, because Qt would otherwise look for one by itself.
Environment withoutForeignBus(Environment environment) {
    environment.try_emplace("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    return environment;
}

/// Returns true if the file names a system call that waits for several descriptors, as an event loop does.
bool waitsInLoop(const std::string& syscallFile) {
    std::ifstream file(syscallFile);
    long call = 0;
    std::string files;
    unsigned long count = 0;
    if (!(file >> call >> files >> std::hex >> count)) // the file says "running"
        return false;
#ifdef SYS_poll // newer architectures have only ppoll
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

std::string storedSettings(const XServer& server) {
    std::ifstream file(settingsFile(server));
    return {std::istreambuf_iterator<char>(file), {}};
}

bool waitUntilStored(Observer& observer, const XServer& server, std::string_view text) {
    return observer.waitUntil([&] { return storedSettings(server).find(text) != std::string::npos; });
}

Program::Program(const XServer& server) : Program(server.environment()) {}

Program::Program(Environment environment) : Program(std::move(environment), TESSAREL_PROGRAM) {}

Program::Program(Environment environment, const std::string& path)
    : m_process({path}, withoutForeignBus(std::move(environment)), Alarm::Blocked) {}

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

bool Program::waitUntilAtRest(Observer& observer, long timesAsleep) {
    constexpr int kLooks = 5; // how often to check, because a timer may be due in a moment
    int looks = 0;
    long last = timesAsleep;
    const auto isAtRest = [&] {
        const bool isSettled = observer.settle();
        const std::optional<long> now = this->timesAsleep();
        looks = isSettled && now > timesAsleep && now == last ? looks + 1 : 0;
        last = now.value_or(last);
        return looks >= kLooks;
    };
    return observer.waitUntil([&] { return !running() || isAtRest(); }) && running();
}

Program::Hold::Hold(const ChildProcess& process) : m_process(process) {
    m_process.signal(SIGSTOP);
}

Program::Hold::~Hold() {
    m_process.signal(SIGCONT);
}

Program::Hold Program::hold() const {
    return Hold(m_process);
}

std::optional<int> Program::terminate() {
    m_process.signal(SIGTERM);
    return m_process.waitForExit();
}

xcb_window_t openSettingsWindow(Observer& observer, const Environment& environment) {
    Program second(environment);
    if (second.process().waitForExit() != 0)
        return XCB_WINDOW_NONE;
    xcb_window_t window = XCB_WINDOW_NONE;
    const auto isActive = [&] {
        window = observer.activeWindow();
        return window != XCB_WINDOW_NONE && observer.text(window, "_NET_WM_NAME") == "Tessarel Settings";
    };
    // The window manager activates the new window, and Qt requests activation again when the window is
    // mapped.
    if (!observer.waitUntil(isActive) || !observer.settleProgram(window))
        return XCB_WINDOW_NONE;
    return window;
}

} // namespace tessarel::x11test
