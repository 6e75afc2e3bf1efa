#pragma once

#include "desktop/snap_fixture.h"
#include "desktop/window_drag.h"

#include <string>

namespace tessarel::x11test {

/// Windows dragged by their title bars, with Shift as the trigger.
class DragFixture : public SnapFixture {
protected:
    using SnapFixture::SnapFixture;

    /// Drags `window` into `zone` and expects it to stay there.
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

    /// Takes `window` into the middle of `zone`, where the overlay is.
    void dragOver(xcb_window_t window, const Frame& zone) {
        ASSERT_TRUE(drag.begin(window));
        drag.hold(XCB_MOD_MASK_SHIFT);
        drag.moveInto(zone);
        ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));
    }

    /// What holds after everything that goes wrong in a drag.
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
