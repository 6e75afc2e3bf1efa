// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/native_window.h"

#include "platform/qt/overlay/overlay_pixels.h"
#include "platform/qt_x11/qt_connection.h"

#include <QWidget>
#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace tessarel::qt {

namespace {

/// Returns the window id of the widget. Creates its window if there is none yet.
xcb_window_t windowOf(const QWidget& widget) {
    return static_cast<xcb_window_t>(widget.winId());
}

/// Clamps a length to what the protocol allows for a window.
std::uint32_t extent(int length) {
    constexpr int kLongest = std::numeric_limits<std::uint16_t>::max();
    return static_cast<std::uint32_t>(std::clamp(length, 1, kLongest));
}

/// Returns the shortest length of at least `length` pixels that Qt paints completely. Qt rounds the size of a
/// window to whole device-independent units, which can lose pixels at a fractional scale factor.
int paintedLength(int length, double scale) {
    int longer = length;
    while (qRound(qRound(longer / scale) * scale) < length)
        ++longer;
    return longer;
}

std::vector<xcb_rectangle_t> rectangles(const QRegion& region) {
    std::vector<xcb_rectangle_t> all;
    for (const QRect& rect : region)
        all.push_back({static_cast<std::int16_t>(rect.x()), static_cast<std::int16_t>(rect.y()),
                       static_cast<std::uint16_t>(rect.width()), static_cast<std::uint16_t>(rect.height())});
    return all;
}

} // namespace

void coverPixels(QWidget& widget, const QRect& frame) {
    const double scale = widget.devicePixelRatioF();
    const QSize size(paintedLength(frame.width(), scale), paintedLength(frame.height(), scale));
    xcb_connection_t* const xcb = qtConnection();
    if (xcb == nullptr) {
        widget.setGeometry(QRect(frame.topLeft(), size / scale));
        return;
    }
    widget.resize(size / scale); // in advance: Qt would learn the size only from a later ConfigureNotify
    const std::array values = {static_cast<std::uint32_t>(frame.x()), static_cast<std::uint32_t>(frame.y()),
                               extent(size.width()), extent(size.height())};
    xcb_configure_window(xcb, windowOf(widget),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
}

void cutOut(QWidget& widget, const QRegion& region) {
    xcb_connection_t* const xcb = qtConnection();
    if (xcb == nullptr) {
        QRegion mask;
        for (const QRect& part : region)
            mask += units(part, widget.devicePixelRatioF());
        widget.setMask(mask);
        return;
    }
    // QRegion keeps its rectangles in the order that YX_BANDED promises.
    const auto parts = rectangles(region);
    xcb_shape_rectangles(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_BANDED,
                         windowOf(widget), 0, 0, static_cast<std::uint32_t>(parts.size()), parts.data());
}

void clearWhenShown(QWidget& widget) {
    xcb_connection_t* const xcb = qtConnection();
    if (xcb == nullptr)
        return;
    const std::uint32_t transparent = 0; // ARGB; the server fills newly exposed areas with it
    xcb_change_window_attributes(xcb, windowOf(widget), XCB_CW_BACK_PIXEL, &transparent);
}

} // namespace tessarel::qt
