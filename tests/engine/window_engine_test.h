// SPDX-License-Identifier: MIT

#pragma once

#include "engine/engine_test.h"

#include <optional>

namespace tessarel {

/// Fixture: the placement routine and its restore memory, with one window.
class WindowEngineTest : public EngineTest {
protected:
    WindowEngineTest() { addScreens(); }

    void place(const Rect& axFrame, const std::optional<Rect>& previous = {}) {
        engine.place(desktop.element(window), desktop.window(window).pid, axFrame, std::nullopt, previous);
    }
    /// Restores the window and returns its frame, or `std::nullopt` when the alert sounds instead.
    std::optional<Rect> restored() {
        const int beeps = desktop.beeps();
        engine.restoreFocused();
        return desktop.beeps() == beeps ? std::optional(desktop.frame(window)) : std::nullopt;
    }

    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
};

} // namespace tessarel
