#pragma once

#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel::x11test {

/// Where the program under test keeps its settings on `server`.
[[nodiscard]] std::filesystem::path settingsFile(const XServer& server);
/// Puts `document` there, as an earlier run would have left it.
void writeSettings(const XServer& server, std::string_view document);

/// The program under test, as a user starts it.
class Program {
public:
    /// Starts it and does not wait for anything.
    explicit Program(const XServer& server);
    /// With the session bus that `environment` names, or with none.
    explicit Program(Environment environment);

    /// Waits until it holds all of its hot keys, of which `last` is the one that it claims last. False when
    /// it ends instead.
    [[nodiscard]] bool waitUntilReady(Observer& observer, Keyboard& keyboard,
                                      const Combination& last = {key::kA, kControlAlt});

    [[nodiscard]] ChildProcess& process() { return m_process; }
    [[nodiscard]] bool running() { return m_process.running(); }
    [[nodiscard]] std::string errors() const { return m_process.errors(); }
    /// How often it has fallen asleep since it was started; empty unless it waits for whatever comes: one
    /// that waits for a single answer, or for the disk, is at work.
    [[nodiscard]] std::optional<long> timesAsleep() const;

    /// Asks it to end, as a session does that is closed: its exit code, or none when it does not end.
    [[nodiscard]] std::optional<int> terminate();

private:
    ChildProcess m_process;
};

} // namespace tessarel::x11test
