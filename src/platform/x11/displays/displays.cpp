// SPDX-License-Identifier: MIT

#include "platform/x11/displays/displays.h"

#include "platform/x11/displays/conversions.h"
#include "platform/x11/displays/usable_area.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace tessarel::x11 {

namespace {

/// Returns the area that both rectangles share, in square pixels.
double commonArea(const Rect& a, const Rect& b) {
    const Rect common = a.intersection(b);
    return common.isNull() ? 0 : common.width * common.height;
}

} // namespace

X11Displays::X11Displays(Connection& connection, Monitors& monitors, FocusedFrame focusedFrame)
    : m_connection(connection), m_monitors(monitors), m_focusedFrame(std::move(focusedFrame)),
      m_reserved(connection) {}

std::vector<Screen> X11Displays::screens() {
    const ReservedSpace& reserved = m_reserved.current();
    const Size rootSize = m_monitors.rootSize();
    const std::vector<Monitor>& monitors = m_monitors.all();
    if (m_basis.monitors != monitors || m_basis.rootSize != rootSize || m_basis.reserved != reserved) {
        m_basis = {monitors, rootSize, reserved};
        m_screens = screensOn(m_basis);
    }
    return m_screens;
}

std::vector<Screen> X11Displays::screensOn(const Basis& basis) {
    std::vector<Rect> frames;
    std::transform(basis.monitors.begin(), basis.monitors.end(), std::back_inserter(frames),
                   [](const Monitor& monitor) { return monitor.rootFrame; });
    const std::vector<Rect> areas = usableAreas(frames, basis.rootSize, basis.reserved);
    std::vector<Screen> screens;
    for (std::size_t i = 0; i < frames.size(); ++i)
        screens.push_back({basis.monitors[i].id, screenFromRoot(frames[i], frames.front()),
                           screenFromRoot(areas[i], frames.front())});
    return screens;
}

std::optional<Screen> X11Displays::mainScreen() {
    // Of equal shares the first wins, so a window outside all monitors counts for the primary one.
    std::optional<Rect> attention = m_focusedFrame();
    if (!attention)
        attention = pointerFrame();
    const std::vector<Screen> all = screens();
    if (!attention || all.empty())
        return std::nullopt;
    const Rect frame = screenFromRoot(*attention, m_monitors.all().front().rootFrame);
    return *std::max_element(all.begin(), all.end(), [&](const Screen& a, const Screen& b) {
        return commonArea(a.frame, frame) < commonArea(b.frame, frame);
    });
}

/// Returns the pixel under the pointer, in root coordinates. Takes a round trip.
std::optional<Rect> X11Displays::pointerFrame() {
    const auto pointer = m_connection.reply<xcb_query_pointer_reply>(
        xcb_query_pointer(m_connection.xcb(), m_connection.root()));
    if (!pointer)
        return std::nullopt;
    return Rect{static_cast<double>(pointer->root_x), static_cast<double>(pointer->root_y), 1, 1};
}

} // namespace tessarel::x11
