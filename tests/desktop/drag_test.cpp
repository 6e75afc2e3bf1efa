#include "desktop/snap_fixture.h"
#include "desktop/window_drag.h"

#include <array>
#include <fstream>
#include <iterator>

namespace tessarel::x11test {
namespace {

/// Windows dragged by their title bars, under each window manager, with Shift as the trigger.
class DragTest : public SnapFixture {
protected:
    DragTest() : SnapFixture(kUsualSettings) {}

    /// Drags `window` into a zone and expects it to stay there.
    void dragInto(xcb_window_t window, int number) {
        const Frame zone = zoneFrame(number);
        ASSERT_TRUE(drag.begin(window));
        drag.hold(XCB_MOD_MASK_SHIFT);
        drag.moveInto(zone);
        ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea())) << "zone " << number;
        drag.release();
        EXPECT_TRUE(drag.waitUntilNoOverlay());
        EXPECT_EQ(desktop.settledFrame(window, zone), zone) << "zone " << number;
        drag.hold(0);
    }

    void expectNextDragWorks() {
        TestClient otherClient{desktop.server()};
        dragInto(desktop.open(otherClient), 5);
        EXPECT_TRUE(desktop.program().running());
    }

    [[nodiscard]] bool remembered(const std::string& entry) {
        return desktop.observer().waitUntil([&] {
            std::ifstream file(settingsFile(desktop.server()));
            const std::string settings{std::istreambuf_iterator<char>(file), {}};
            return settings.find(entry) != std::string::npos;
        });
    }

    WindowDrag drag{desktop};
};

TEST_P(DragTest, ADraggedWindowGoesToTheZoneUnderThePointer) {
    const xcb_window_t window = desktop.open(client, {.className = "Dragged"});

    dragInto(window, 2);
    EXPECT_TRUE(remembered(R"("Dragged":1)"));

    dragInto(window, 4);
    EXPECT_TRUE(remembered(R"("Dragged":3)"));
}

TEST_P(DragTest, AWindowStaysWhereItIsDroppedWhenTheTriggerIsReleasedFirst) {
    const xcb_window_t window = desktop.open(client, {.className = "Dropped"});
    const Frame before = desktop.frame(window);
    ASSERT_TRUE(drag.begin(window));
    drag.hold(XCB_MOD_MASK_SHIFT);
    drag.moveInto(zoneFrame(5));
    ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));

    drag.hold(0);
    EXPECT_TRUE(drag.waitUntilNoOverlay());
    drag.release();

    const Frame dropped = desktop.frame(window);
    expectNextPressWorks();
    EXPECT_EQ(desktop.frame(window), dropped);
    EXPECT_EQ(dropped.width, before.width);
    EXPECT_NE(dropped.x, before.x);
}

TEST_P(DragTest, RestoreGoesBackToTheFrameBeforeTheDrag) {
    const xcb_window_t window = desktop.open(client, {.className = "Restored"});
    const Frame before = desktop.frame(window);
    dragInto(window, 4);

    ASSERT_TRUE(desktop.activate(window));
    desktop.press(hotkey::kRestore);

    EXPECT_EQ(desktop.settledFrame(window, before), before);
}

TEST_P(DragTest, APressInTheContentNeverSnaps) {
    const xcb_window_t window = desktop.open(client, {.className = "Content"});
    const Frame before = desktop.frame(window);
    drag.press(before.x + before.width / 2, before.y + before.height / 2);
    drag.hold(XCB_MOD_MASK_SHIFT);
    drag.moveInto(zoneFrame(5));

    EXPECT_FALSE(drag.overlay());
    drag.release();
    drag.hold(0);

    expectNextPressWorks();
    EXPECT_EQ(desktop.frame(window), before);
}

TEST_P(DragTest, AWindowThatGoesWhileItIsDraggedLeavesNoOverlayBehind) {
    const xcb_window_t window = desktop.open(client, {.className = "Doomed"});
    ASSERT_TRUE(drag.begin(window));
    drag.hold(XCB_MOD_MASK_SHIFT);
    drag.moveInto(zoneFrame(2));
    ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));

    client.destroy(window);
    drag.release();

    EXPECT_TRUE(drag.waitUntilNoOverlay());
    drag.hold(0);
    expectNextDragWorks();
}

/// Those under which title bars have been dragged with the same outcome every time.
constexpr std::array kProven = {WindowManagerKind::Openbox,  WindowManagerKind::Xfwm4,
                                WindowManagerKind::Metacity, WindowManagerKind::Marco,
                                WindowManagerKind::Icewm,    WindowManagerKind::Kwin};

INSTANTIATE_TEST_SUITE_P(Most, DragTest, testing::ValuesIn(kProven), managerName);

} // namespace
} // namespace tessarel::x11test
