#pragma once

#include "desktop/desktop.h"
#include "support/x11/mouse.h"

#include <optional>

namespace tessarel::x11test {

/// A hand that drags windows on a desktop on which the program runs.
class WindowDrag {
public:
    explicit WindowDrag(Desktop& desktop) : m_desktop(desktop) {}
    WindowDrag(const WindowDrag&) = delete;
    WindowDrag& operator=(const WindowDrag&) = delete;
    /// Lets go of everything.
    ~WindowDrag();

    /// Presses the button on the middle of the title bar of `window` and pulls until the window follows.
    /// False when it does not.
    [[nodiscard]] bool begin(xcb_window_t window);
    /// Presses the button on a pixel of the root window.
    void press(int x, int y);
    /// To a pixel of the root window, in a few steps.
    void moveTo(int x, int y);
    /// Into the middle of `frame`.
    void moveInto(const Frame& frame) { moveTo(frame.x + frame.width / 2, frame.y + frame.height / 2); }
    /// Holds exactly these modifiers, and moves by a pixel: it is with the mouse that the program looks.
    void hold(std::uint16_t modifiers);
    void release();

    /// Where the overlay is; none when it is not on the screen.
    [[nodiscard]] std::optional<Frame> overlay();
    /// Waits until the overlay covers `area`.
    [[nodiscard]] bool waitForOverlay(const Frame& area);
    [[nodiscard]] bool waitUntilNoOverlay();

private:
    void step(int x, int y);
    /// Waits until the program has woken up more often than `wakeUps` times, and then sleeps.
    [[nodiscard]] bool waitUntilAsleep(long wakeUps);
    /// How often the program has woken up; empty while it is at work.
    [[nodiscard]] std::optional<long> wakeUpsOfSleeper();
    [[nodiscard]] std::optional<Frame> overlayFrame(xcb_window_t window);

    Desktop& m_desktop;
    Observer& m_observer = m_desktop.observer();
    Mouse m_mouse{m_observer};
    int m_x = 0;
    int m_y = 0;
};

} // namespace tessarel::x11test
