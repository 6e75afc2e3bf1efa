// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/snap_fixture.h"
#include "desktop/window_drag.h"

#include <string>

namespace tessarel::x11test {

/// Drags windows by their title bars, with Shift as the trigger.
class DragFixture : public SnapFixture {
protected:
    using SnapFixture::SnapFixture;

    /// Drags `window` into `zone` and expects it to take that frame.
    void dragInto(xcb_window_t window, const Frame& zone, std::uint16_t modifiers = XCB_MOD_MASK_SHIFT) {
        ASSERT_TRUE(drag.begin(window));
        drag.hold(modifiers);
        drag.moveInto(zone);
        ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));
        drag.release();
        EXPECT_TRUE(drag.waitUntilNoOverlay());
        EXPECT_EQ(desktop.settledFrame(window, zone), zone);
        drag.hold(0);
    }

    /// Drags `window` to the middle of `zone` and waits for the overlay.
    void dragOver(xcb_window_t window, const Frame& zone) {
        ASSERT_TRUE(drag.begin(window));
        drag.hold(XCB_MOD_MASK_SHIFT);
        drag.moveInto(zone);
        ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));
    }

    /// Expects that the drag is over and that the next one works.
    void expectNextDragWorks() {
        EXPECT_TRUE(drag.waitUntilNoOverlay());
        drag.hold(0);
        EXPECT_TRUE(drag.waitUntilNothingIsGrabbed());
        TestClient otherClient{desktop.server()};
        dragInto(desktop.open(otherClient), zoneFrame(5));
        EXPECT_TRUE(desktop.program().running());
    }

    [[nodiscard]] bool remembered(const std::string& entry) {
        return waitUntilStored(desktop.observer(), desktop.server(), entry);
    }

    WindowDrag drag{desktop};
};

} // namespace tessarel::x11test
