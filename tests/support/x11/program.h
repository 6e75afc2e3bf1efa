// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel::x11test {

/// Returns the settings file of the program under test on `server`.
[[nodiscard]] std::filesystem::path settingsFile(const XServer& server);
/// Writes `document` to the settings file, as an earlier run would have.
void writeSettings(const XServer& server, std::string_view document);
/// Returns the content of the settings file; empty if there is none.
[[nodiscard]] std::string storedSettings(const XServer& server);
/// Waits until the settings file contains `text`. Returns false if it does not.
[[nodiscard]] bool waitUntilStored(Observer& observer, const XServer& server, std::string_view text);

/// A process of the program under test. The time limit for its end is blocked (`Alarm`), so that it ends in
/// order or not at all.
class Program {
public:
    /// Starts the program without waiting for anything.
    explicit Program(const XServer& server);
    /// Starts the program with the session bus of `environment`, or without one.
    explicit Program(Environment environment);
    /// Starts a copy of the program at `path`.
    Program(Environment environment, const std::string& path);

    /// Waits until the program has grabbed all its hot keys; `last` is the one that it grabs last. Returns
    /// false if the program exits instead.
    [[nodiscard]] bool waitUntilReady(Observer& observer, Keyboard& keyboard,
                                      const Combination& last = {key::kA, kControlAlt});

    [[nodiscard]] ChildProcess& process() { return m_process; }
    [[nodiscard]] bool running() { return m_process.running(); }
    [[nodiscard]] std::string errors() const { return m_process.errors(); }
    /// Returns how often the program has gone to sleep since its start; empty unless it is waiting in its
    /// event loop. A program that waits for a reply or for the disk counts as busy.
    [[nodiscard]] std::optional<long> timesAsleep() const;

    /// Waits until the program has processed everything sent to it so far, has gone to sleep more than
    /// `timesAsleep` times, and is idle. Needs a responsive window manager. Use it before a test asserts that
    /// something has not happened. Returns false if the program does not become idle.
    [[nodiscard]] bool waitUntilAtRest(Observer& observer, long timesAsleep = 0);

    /// Stops the program with SIGSTOP until the returned object is destroyed, so that a test can read a state
    /// that the program cannot have changed.
    class Hold;
    [[nodiscard]] Hold hold() const;

    /// Sends SIGTERM and waits until the program has exited. Returns the exit code; empty if it does not
    /// exit.
    [[nodiscard]] std::optional<int> terminate();

private:
    ChildProcess m_process;
};

class Program::Hold {
public:
    explicit Hold(const ChildProcess& process);
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold();

private:
    const ChildProcess& m_process;
};

/// Starts a second instance, which makes the running one open its settings window, and waits until that
/// window is active and idle. Returns XCB_WINDOW_NONE on failure.
[[nodiscard]] xcb_window_t openSettingsWindow(Observer& observer, const Environment& environment);

} // namespace tessarel::x11test
