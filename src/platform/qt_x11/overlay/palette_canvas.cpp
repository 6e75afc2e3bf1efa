// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/palette_canvas.h"

#include "platform/qt_x11/overlay/outline_figures.h"
#include "platform/qt_x11/qt_connection.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tessarel::qt {

namespace {

constexpr int kDepth = 8;

/// Allocates `color`. The server counts the allocations of one client and frees them when it exits.
std::uint8_t allocate(xcb_connection_t* xcb, const xcb_screen_t& screen, const QColor& color) {
    const auto channel = [](int level) { return static_cast<std::uint16_t>(level * 257); };
    const auto cookie = xcb_alloc_color(xcb, screen.default_colormap, channel(color.red()),
                                        channel(color.green()), channel(color.blue()));
    const Reply<xcb_alloc_color_reply_t> reply(xcb_alloc_color_reply(xcb, cookie, nullptr));
    const std::uint32_t other = color.lightness() > 200 ? screen.white_pixel : screen.black_pixel;
    return static_cast<std::uint8_t>(reply ? reply->pixel : other);
}

int distance(QRgb one, const QColor& other) {
    const int red = qRed(one) - other.red();
    const int green = qGreen(one) - other.green();
    const int blue = qBlue(one) - other.blue();
    return red * red + green * green + blue * blue;
}

} // namespace

bool PaletteCanvas::isNeeded() {
    xcb_connection_t* const xcb = qtConnection();
    return xcb != nullptr && screenOf(xcb).root_depth == kDepth;
}

PaletteCanvas::PaletteCanvas(const QColor& accent) {
    xcb_connection_t* const xcb = qtConnection();
    std::ranges::transform(OutlineFigures::colors(accent), m_palette.begin(), [xcb](const QColor& color) {
        return Entry{color, allocate(xcb, screenOf(xcb), color)};
    });
}

void PaletteCanvas::put(const QWidget& widget, const QImage& image, const QPoint& corner) const {
    xcb_connection_t* const xcb = qtConnection();
    const auto window = static_cast<xcb_window_t>(widget.winId());
    const xcb_gcontext_t context = xcb_generate_id(xcb);
    xcb_create_gc(xcb, context, window, 0, nullptr);
    constexpr int kPadding = 4; // rows begin at multiples of 32 bits
    const int stride = (image.width() + kPadding - 1) / kPadding * kPadding;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(stride));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            row.at(static_cast<std::size_t>(x)) = closest(image.pixel(x, y));
        xcb_put_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, window, context,
                      static_cast<std::uint16_t>(image.width()), 1, static_cast<std::int16_t>(corner.x()),
                      static_cast<std::int16_t>(corner.y() + y), 0, kDepth,
                      static_cast<std::uint32_t>(row.size()), row.data());
    }
    xcb_free_gc(xcb, context);
    xcb_flush(xcb);
}

std::uint8_t PaletteCanvas::closest(QRgb color) const {
    return std::ranges::min_element(m_palette, {},
                                    [color](const Entry& entry) { return distance(color, entry.color); })
        ->pixel;
}

} // namespace tessarel::qt
