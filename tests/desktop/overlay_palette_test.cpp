// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/x11_overlay.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "support/overlay_figures.h"
#include "support/x11/observer.h"
#include "support/x11/qt_barrier.h"
#include "support/x11/x_server.h"

#include <QApplication>
#include <QColor>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <memory>
#include <optional>

namespace tessarel::qt {
namespace {

const QColor kHighlightColor(0x0a, 0x72, 0xe3);
const QColor kDarkColor(0x2b, 0x34, 0x45);

/// The overlay on a screen with 8 bits per pixel and a palette.
class OverlayPaletteTest : public testing::Test {
protected:
    OverlayPaletteTest() {
        for (const auto& [name, value] : server.environment())
            qputenv(name.c_str(), value.c_str());
        qputenv("QT_QPA_PLATFORM", "xcb");
        qunsetenv("QT_SCALE_FACTOR");
        application.emplace(argumentCount, arguments.data());
        barrier.emplace(observer);
        window->setFrame({0, 0, 800, 600});
    }

    void turn() {
        EXPECT_TRUE(barrier->pass());
        clock.advance(std::chrono::seconds(1));
        EXPECT_TRUE(barrier->pass());
    }

    /// Returns the colour of a pixel of the screen, as the palette has it.
    [[nodiscard]] QColor pixel(std::int16_t x, std::int16_t y) {
        xcb_connection_t* const xcb = observer.x().get();
        const auto image = x11test::own(xcb_get_image_reply(
            xcb, xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, observer.root(), x, y, 1, 1, ~0U), nullptr));
        const std::uint32_t index = *xcb_get_image_data(image.get());
        const auto colors = x11test::own(xcb_query_colors_reply(
            xcb, xcb_query_colors(xcb, observer.x().screen().default_colormap, 1, &index), nullptr));
        const xcb_rgb_t& color = *xcb_query_colors_colors(colors.get());
        return {color.red >> 8, color.green >> 8, color.blue >> 8};
    }

    x11test::XServer server{{.width = 800, .height = 600, .depth = 8}};
    x11test::Observer observer{server.display()};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    std::optional<QApplication> application;
    std::optional<x11test::QtBarrier> barrier;
    X11Overlay overlay{queue, [](const Rect& rootFrame) { return rootFrame; }};
    std::unique_ptr<OverlayWindow> window = overlay.createWindow();
};

TEST_F(OverlayPaletteTest, ZonesAreOutlinedWithTheirNumbers) {
    window->setFigures({zoneFigure({0, 0, 400, 600}, "1", true), zoneFigure({400, 0, 400, 600}, "8")}, {});
    window->orderFront();
    turn();

    EXPECT_EQ(pixel(2, 100), QColor(Qt::white));
    EXPECT_EQ(pixel(5, 100), kHighlightColor);
    EXPECT_EQ(pixel(402, 100), QColor(Qt::white));
    EXPECT_EQ(pixel(403, 100), kHighlightColor);
    EXPECT_EQ(pixel(500, 100), QColor(Qt::black)); // the desktop
    EXPECT_EQ(pixel(180, 280), kHighlightColor);
    EXPECT_EQ(pixel(580, 280), kDarkColor);
    int letters = 0;
    for (std::int16_t x = 582; x < 618; ++x)
        letters += pixel(x, 300) == QColor(Qt::white) ? 1 : 0;
    EXPECT_GT(letters, 2);
    EXPECT_LT(letters, 20);
}

TEST_F(OverlayPaletteTest, AMovedHighlightIsPaintedAgain) {
    const Rect left{0, 0, 400, 600};
    const Rect right{400, 0, 400, 600};
    window->setFigures({zoneFigure(left, "1", true), zoneFigure(right, "2")}, {});
    window->orderFront();
    turn();

    window->setFigures({zoneFigure(left, "1"), zoneFigure(right, "2", true)}, {left, right});
    turn();

    EXPECT_EQ(pixel(5, 100), QColor(Qt::black));
    EXPECT_EQ(pixel(180, 280), kDarkColor);
    EXPECT_EQ(pixel(405, 100), kHighlightColor);
    EXPECT_EQ(pixel(580, 280), kHighlightColor);
}

} // namespace
} // namespace tessarel::qt
