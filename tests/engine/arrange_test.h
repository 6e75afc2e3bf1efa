// SPDX-License-Identifier: MIT

#pragma once

#include "engine_test.h"

namespace tessarel {

using sim::WindowId;

/// Fixture: the enabled zones are three columns, the middle one twice as wide as each of the others.
class ArrangeAllTest : public EngineTest {
protected:
    static constexpr Zone kOff{false, 25, 25, 50, 50};

    ArrangeAllTest() {
        addScreens();
        settings.zones = Presets::pad(Presets::all().at(8).zones);
    }

    WindowId open(const Rect& axFrame) { return desktop.openWindow("org.example.editor", axFrame); }

    /// Returns whether the window still has the frame `axFrame`.
    bool isUntouched(WindowId window, const Rect& axFrame) { return desktop.frame(window) == axFrame; }

    static constexpr Rect kColumn1{-1400, -575, 325, 820};
    static constexpr Rect kColumn2{-1075, -575, 650, 820};
    static constexpr Rect kColumn3{-425, -575, 325, 820};
    /// The first column of the primary display.
    static constexpr Rect kPrimaryColumn1{12, 31, 310, 725};
};

} // namespace tessarel
