#pragma once

#include "desktop/desktop.h"
#include "support/x11/deadline.h"
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
    /// The same while the program does not run.
    [[nodiscard]] bool beginUnseen(xcb_window_t window);
    /// Presses the button on a pixel of the root window.
    void press(int x, int y);
    /// To a pixel of the root window, in a few steps.
    void moveTo(int x, int y);
    /// Into the middle of `frame`.
    void moveInto(const Frame& frame) { moveTo(frame.x + frame.width / 2, frame.y + frame.height / 2); }
    /// Holds exactly these modifiers, and moves by a pixel: it is with the mouse that the program looks.
    void hold(std::uint16_t modifiers);
    void release();
    /// Presses the button where the pointer is and lets go of it at once.
    void click();

    /// Where the overlay is; none when it is not on the screen.
    [[nodiscard]] std::optional<Frame> overlay();
    /// Waits until the overlay covers `area`.
    [[nodiscard]] bool waitForOverlay(const Frame& area);
    [[nodiscard]] bool waitUntilNoOverlay();
    /// Whether there is no overlay although the program has seen all that the hand has done.
    [[nodiscard]] bool staysWithoutOverlay();
    /// Whether what is behind the overlay shines through it, and not only past its lines.
    [[nodiscard]] bool isOverlayTranslucent();
    /// Waits until no program holds the mouse or the keyboard.
    [[nodiscard]] bool waitUntilNothingIsGrabbed();

private:
    struct Place {
        int x = 0;
        int y = 0;
    };
    struct Overlay {
        Frame frame;
        int depth = 0;
    };

    [[nodiscard]] Place gripOf(xcb_window_t window);
    [[nodiscard]] bool pull(xcb_window_t window, const Deadline& deadline = Deadline());
    void step(int x, int y);
    [[nodiscard]] std::optional<Overlay> find();
    [[nodiscard]] std::optional<Overlay> asOverlay(xcb_window_t window);
    [[nodiscard]] bool grabsAndLetsGo();

    Desktop& m_desktop;
    Observer& m_observer = m_desktop.observer();
    Mouse m_mouse{m_observer};
    int m_x = 0;
    int m_y = 0;
};

} // namespace tessarel::x11test
