// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "desktop/window_drag.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

namespace tessarel::x11test {
namespace {

/// Drags with a resolution other than 96 dots per inch, by which Qt scales what it paints.
class DragScaleTest : public testing::TestWithParam<int> {
protected:
    DragScaleTest() {
        const std::string resources = "Xft.dpi:\t" + std::to_string(GetParam()) + "\n";
        XConnection& x = desktop.observer().x();
        xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, x.root(), XCB_ATOM_RESOURCE_MANAGER,
                            XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(resources.size()),
                            resources.data());
        x.roundTrip();
    }

    [[nodiscard]] std::uint32_t pixel(int x, int y) {
        XConnection& connection = desktop.observer().x();
        const auto image = own(xcb_get_image_reply(
            connection.get(),
            xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(),
                          static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 1, 1, 0xFFFFFF),
            nullptr));
        const std::uint8_t* const bytes = image ? xcb_get_image_data(image.get()) : nullptr;
        return bytes
                   ? std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[2]} << 16U
                   : 0;
    }

    /// Returns true if the outermost line of `zone`'s outline, which is white, is 2 pixels inside it on every
    /// side.
    [[nodiscard]] bool isOutlined(const Frame& zone) {
        constexpr std::uint32_t kWhite = 0xFFFFFF;
        constexpr int kInset = 2;
        const int x = zone.x + zone.width / 6; // not over the window, which is white
        const int y = zone.y + zone.height / 3;
        const auto isEdge = [&](int lineX, int lineY, int outwardsX, int outwardsY) {
            return pixel(lineX, lineY) == kWhite && pixel(lineX + outwardsX, lineY + outwardsY) != kWhite;
        };
        return isEdge(zone.x + kInset, y, -1, 0) && isEdge(zone.right() - 1 - kInset, y, 1, 0) &&
               isEdge(x, zone.y + kInset, 0, -1) && isEdge(x, zone.bottom() - 1 - kInset, 0, 1);
    }

    Desktop desktop{{.settings = kNoHomes}};
    TestClient client{desktop.server()};
    WindowDrag drag{desktop};
};

TEST_P(DragScaleTest, AZoneIsOutlinedExactlyWhereTheWindowWillBe) {
    ASSERT_TRUE(desktop.startForDrags());
    const xcb_window_t window = desktop.open(client);
    const Frame zone = frameIn(desktop.usableArea(), kZones[4]);
    ASSERT_TRUE(drag.begin(window));
    drag.hold(XCB_MOD_MASK_SHIFT);
    drag.moveTo(zone.x + zone.width * 2 / 3, zone.y + zone.height * 2 / 3);
    ASSERT_TRUE(drag.waitForOverlay(desktop.usableArea()));

    EXPECT_TRUE(desktop.observer().waitUntil([&] { return isOutlined(zone); }));
    drag.release();

    EXPECT_EQ(desktop.settledFrame(window, zone), zone);
    drag.hold(0);
    EXPECT_TRUE(desktop.stop());
}

INSTANTIATE_TEST_SUITE_P(, DragScaleTest, testing::Values(120, 192), [](const auto& resolution) {
    return std::to_string(resolution.param) + "DotsPerInch";
});

} // namespace
} // namespace tessarel::x11test
