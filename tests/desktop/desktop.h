// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/program.h"
#include "support/x11/test_client.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel::x11test {

/// Settings of a user who has started the program before, so that no welcome window opens.
inline constexpr std::string_view kUsualSettings = R"({"hasOnboarded":true})";

/// Settings with which new windows are not placed into the zone of their application.
inline constexpr std::string_view kNoHomes = R"({"hasOnboarded":true,"rememberApps":false})";

/// The default hot keys.
namespace hotkey {
[[nodiscard]] constexpr Combination zone(int number) {
    return {static_cast<xcb_keycode_t>(key::kDigit1 + number - 1), kControlAlt};
}
inline constexpr Combination kLeftHalf{key::kLeft, kControlAlt};
inline constexpr Combination kRightHalf{key::kRight, kControlAlt};
inline constexpr Combination kTopHalf{key::kUp, kControlAlt};
inline constexpr Combination kBottomHalf{key::kDown, kControlAlt};
inline constexpr Combination kMaximize{key::kReturn, kControlAlt};
inline constexpr Combination kCenter{key::kC, kControlAlt};
inline constexpr Combination kRestore{key::kBackspace, kControlAlt};
inline constexpr Combination kNextDisplay{key::kRight, kControlAltSuper};
inline constexpr Combination kPreviousDisplay{key::kLeft, kControlAltSuper};
} // namespace hotkey

struct DesktopOptions {
    WindowManagerKind manager = WindowManagerKind::Openbox;
    XServerOptions server = {};
    OwnKeys managersKeys = OwnKeys::Dropped;
    std::string_view settings = kUsualSettings;
    Compositing compositing = Compositing::Off;
};

/// A desktop for tests: a window manager, a panel at the bottom of the rightmost display, a keyboard, and the
/// program under test once it has been started.
class Desktop {
public:
    explicit Desktop(const DesktopOptions& options);

    /// Starts the program and waits until it has grabbed its hot keys. Returns false if it does not.
    [[nodiscard]] bool start();
    /// Starts the program and waits until it receives commands, which is a little later. Returns false if it
    /// does not.
    [[nodiscard]] bool startForCommands();
    /// Terminates the program. Returns false, with the reason on the standard error, unless it exits cleanly.
    [[nodiscard]] bool stop();
    /// Starts the program and waits until a hot key has moved a window: the program grabs its hot keys before
    /// it watches the mouse. Returns false on failure.
    [[nodiscard]] bool startForDrags();
    /// Restarts the program for drags, with other settings. Returns false if it does not exit cleanly or
    /// start.
    [[nodiscard]] bool restart(std::string_view settings);
    /// Waits until the program has gone to sleep more than `timesAsleep` times and is idle: what a test sees
    /// on the screen is not the end of the program's work. Returns false if it does not become idle.
    [[nodiscard]] bool waitUntilProgramRests(long timesAsleep = 0);
    /// Waits until the window manager exits by itself. Returns false if it does not.
    [[nodiscard]] bool waitUntilManagerEnds() { return m_manager->process().waitForExit().has_value(); }
    /// Terminates the window manager and starts another one in its place.
    void replaceManager(WindowManagerKind kind);

    [[nodiscard]] XServer& server() { return m_server; }
    [[nodiscard]] Observer& observer() { return m_observer; }
    [[nodiscard]] Keyboard& keyboard() { return m_keyboard; }
    [[nodiscard]] Program& program() { return *m_program; }
    [[nodiscard]] TestClient& panel() { return m_panel; }
    [[nodiscard]] WindowManagerKind manager() const { return m_manager->kind(); }
    [[nodiscard]] ChildProcess& managerProcess() { return m_manager->process(); }

    /// Returns the part of a monitor that the panel leaves free. With a single monitor this is the work area,
    /// which also excludes the window manager's own bars.
    [[nodiscard]] Frame usableArea(std::size_t monitor = 0);

    /// Opens a window and waits until it is managed and active.
    [[nodiscard]] xcb_window_t open(TestClient& client, const WindowOptions& options = {});
    /// A window and the frame that it opened with, before the program could move it.
    struct Opened {
        xcb_window_t window = XCB_WINDOW_NONE;
        Frame frame;
    };
    /// Like open(), while the program is stopped. The frame is read before the program continues.
    [[nodiscard]] Opened openUnseen(TestClient& client, const WindowOptions& options = {});
    /// Activates a window. Returns false if the window manager does not do it.
    [[nodiscard]] bool activate(xcb_window_t window);
    /// Adds one or two states to a window and waits until they have taken effect. Returns false if they do
    /// not.
    [[nodiscard]] bool addStates(xcb_window_t window, const std::vector<std::string>& states);
    /// Waits until a window has none of these states. Returns false if it keeps one.
    [[nodiscard]] bool waitUntilWithout(xcb_window_t window, const std::vector<std::string>& states);
    void press(const Combination& combination) { m_keyboard.press(combination); }

    [[nodiscard]] Frame frame(xcb_window_t window) { return m_observer.outerFrame(window).value_or(Frame{}); }
    /// Waits until a window has the frame `expected` and the program is idle. Returns `expected`, or the
    /// current frame at the deadline.
    [[nodiscard]] Frame settledFrame(xcb_window_t window, const Frame& expected);
    /// Waits until the windows of the previous test are gone. Windows of the window manager itself may stay.
    [[nodiscard]] bool waitUntilOnlyPanel();

private:
    [[nodiscard]] bool waitForPanel();
    /// Returns true if the size of a window matches its states: maximised, full screen or shaded.
    [[nodiscard]] bool isAsLargeAsItsStates(xcb_window_t window);

    XServer m_server;
    std::vector<Monitor> m_monitors;
    std::unique_ptr<WindowManager> m_manager;
    Observer m_observer;
    Keyboard m_keyboard;
    TestClient m_panel;
    xcb_window_t m_panelWindow = XCB_WINDOW_NONE;
    std::vector<xcb_window_t> m_ownWindows; // the panel and what the window manager lists of its own
    std::unique_ptr<Program> m_program;
};

/// Returns the desktop of a window manager, with one display, on which the program runs with `settings`. It
/// is started at first use, shared by the tests that follow, and stopped after the last one. The default
/// settings place no new windows, so that no test depends on the applications of another.
[[nodiscard]] Desktop& sharedDesktop(WindowManagerKind kind, std::string_view settings = kNoHomes);

} // namespace tessarel::x11test
