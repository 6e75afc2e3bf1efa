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
/// Returns the document as it is on the disk; empty without one.
[[nodiscard]] std::string storedSettings(const XServer& server);
/// Waits until the document on the disk contains `text`. False when it does not get there.
[[nodiscard]] bool waitUntilStored(Observer& observer, const XServer& server, std::string_view text);

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

    /// Waits until it has handled everything that was sent to it before, has fallen asleep more often than
    /// `timesAsleep`, and has nothing left to do. Needs a window manager that answers. This is the barrier
    /// before a test says that something has not happened. False when it does not come to rest.
    [[nodiscard]] bool waitUntilAtRest(Observer& observer, long timesAsleep = 0);

    /// Keeps it from doing anything until the returned hold is destroyed: what a test reads meanwhile, the
    /// program has not changed.
    class Hold;
    [[nodiscard]] Hold hold() const;

    /// Asks it to end, as a session does that is closed: its exit code, or none when it does not end.
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

/// Starts the program once more, upon which the running copy opens its settings window, and waits until that
/// window is the active one and stays so. Returns XCB_WINDOW_NONE when it does not come up.
[[nodiscard]] xcb_window_t openSettingsWindow(Observer& observer, const Environment& environment);

} // namespace tessarel::x11test
