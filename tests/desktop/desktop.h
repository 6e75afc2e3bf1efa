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

/// Settings of somebody who has started the program before.
inline constexpr std::string_view kUsualSettings = R"({"hasOnboarded":true})";

/// Those of somebody who lets windows open where they want to.
inline constexpr std::string_view kNoHomes = R"({"hasOnboarded":true,"rememberApps":false})";

/// The hot keys that the program comes with.
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

/// A desktop as somebody works on it: a window manager, a panel at the bottom of the right-most display, a
/// keyboard, and the program under test once it has been started.
class Desktop {
public:
    explicit Desktop(const DesktopOptions& options);

    /// Starts the program and waits for its hot keys. False when it does not come up.
    [[nodiscard]] bool start();
    /// Ends the program in good order. False, with the reason on the standard error, when it does not end so.
    [[nodiscard]] bool stop();
    /// Starts the program and waits until it answers a key: hot keys are held before the mouse is watched.
    [[nodiscard]] bool startForDrags();
    /// Starts the program again for drags, with other settings. False when it does not end or come up well.
    [[nodiscard]] bool restart(std::string_view settings);
    /// Waits until the program has fallen asleep more often than `timesAsleep` and has nothing to do any
    /// more: what a test sees of its work is not the end of it. False when it finds no rest.
    [[nodiscard]] bool waitUntilProgramRests(long timesAsleep = 0);
    /// Waits until the window manager ends by itself. False when it does not.
    [[nodiscard]] bool waitUntilManagerEnds() { return m_manager->process().waitForExit().has_value(); }
    /// Ends the window manager and starts another one in its place.
    void replaceManager(WindowManagerKind kind);

    [[nodiscard]] XServer& server() { return m_server; }
    [[nodiscard]] Observer& observer() { return m_observer; }
    [[nodiscard]] Keyboard& keyboard() { return m_keyboard; }
    [[nodiscard]] Program& program() { return *m_program; }
    [[nodiscard]] TestClient& panel() { return m_panel; }
    [[nodiscard]] WindowManagerKind manager() const { return m_manager->kind(); }

    /// The part of a monitor that the panel leaves free; of the only one also what the window manager's own
    /// bars leave.
    [[nodiscard]] Frame usableArea(std::size_t monitor = 0);

    /// Opens a window, waits until it is managed and the active one.
    [[nodiscard]] xcb_window_t open(TestClient& client, const WindowOptions& options = {});
    /// The same while the program is held still, and where the window has opened.
    struct Opened {
        xcb_window_t window = XCB_WINDOW_NONE;
        Frame frame;
    };
    [[nodiscard]] Opened openUnseen(TestClient& client, const WindowOptions& options = {});
    /// Makes a window the active one. False when the window manager does not do it.
    [[nodiscard]] bool activate(xcb_window_t window);
    /// Gives a window one or two states at once and waits until it has them. False when they do not come.
    [[nodiscard]] bool addStates(xcb_window_t window, const std::vector<std::string>& states);
    /// Waits until a window has none of these states. False when it keeps one.
    [[nodiscard]] bool waitUntilWithout(xcb_window_t window, const std::vector<std::string>& states);
    void press(const Combination& combination) { m_keyboard.press(combination); }

    [[nodiscard]] Frame frame(xcb_window_t window) { return m_observer.outerFrame(window).value_or(Frame{}); }
    /// The frame that a window has once it has settled at `expected` and the program rests, or the one it has
    /// at the deadline.
    [[nodiscard]] Frame settledFrame(xcb_window_t window, const Frame& expected);
    /// Waits until the windows of the test before have gone.
    [[nodiscard]] bool waitUntilOnlyPanel();

private:
    [[nodiscard]] bool waitForPanel();
    /// Returns whether a window reaches as far as it has to where it is maximised or fills a monitor, and is
    /// low where it is rolled up.
    [[nodiscard]] bool isAsLargeAsItsStates(xcb_window_t window);

    XServer m_server;
    std::vector<Monitor> m_monitors;
    std::unique_ptr<WindowManager> m_manager;
    Observer m_observer;
    Keyboard m_keyboard;
    TestClient m_panel;
    xcb_window_t m_panelWindow = XCB_WINDOW_NONE;
    std::unique_ptr<Program> m_program;
};

/// The desktop of a window manager with one display, on which the program runs with `settings`; started at
/// first use, kept for the tests that follow, and ended in good order after the last one. Without homes, no
/// test finds its windows moved by what another has done.
[[nodiscard]] Desktop& sharedDesktop(WindowManagerKind kind, std::string_view settings = kNoHomes);

} // namespace tessarel::x11test
