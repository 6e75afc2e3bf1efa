// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/desktop.h"
#include "support/x11/deadline.h"
#include "support/x11/mouse.h"

#include <optional>

namespace tessarel::x11test {

/// Drags windows with a synthetic pointer, on a desktop on which the program is running.
class WindowDrag {
public:
    explicit WindowDrag(Desktop& desktop) : m_desktop(desktop) {}
    WindowDrag(const WindowDrag&) = delete;
    WindowDrag& operator=(const WindowDrag&) = delete;
    /// Releases the button and the modifiers.
    ~WindowDrag();

    /// Presses the button on the title bar of `window` and moves until the window follows. Returns false if
    /// it does not.
    [[nodiscard]] bool begin(xcb_window_t window);
    /// Like begin(), while the program is not running yet.
    [[nodiscard]] bool beginUnseen(xcb_window_t window);
    /// Presses the button on the title bar of `window`, without moving.
    void grip(xcb_window_t window);
    /// Presses the button at a point of the root window.
    void press(int x, int y);
    /// Moves to a point of the root window, in a few steps.
    void moveTo(int x, int y);
    /// Moves to the middle of `frame`.
    void moveInto(const Frame& frame) { moveTo(frame.x + frame.width / 2, frame.y + frame.height / 2); }
    /// Holds exactly these modifiers, and moves by a pixel.
    void hold(std::uint16_t modifiers);
    /// Holds exactly these modifiers, without a movement of the pointer.
    void holdAtRest(std::uint16_t modifiers) { m_mouse.hold(modifiers); }
    void release();
    /// Presses and releases the button at the pointer.
    void click();

    /// Returns the frame of the overlay; empty if it is not on the screen.
    [[nodiscard]] std::optional<Frame> overlay();
    /// Waits until the overlay covers `area`.
    [[nodiscard]] bool waitForOverlay(const Frame& area);
    [[nodiscard]] bool waitUntilNoOverlay();
    /// Waits until the program has processed all input. Returns true if there is no overlay then.
    [[nodiscard]] bool staysWithoutOverlay();
    /// Returns true if the overlay is translucent, and false if it is shaped like its outlines.
    [[nodiscard]] bool isOverlayTranslucent();
    /// Waits until no other client has grabbed the pointer or the keyboard.
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
    void settle();
    [[nodiscard]] bool isWithheld() const;
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
