// SPDX-License-Identifier: MIT

#include "platform/x11/displays/usable_area.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tessarel::x11 {

namespace {

using Edge = Strut::Edge;

constexpr std::array kEdges = {Edge::Left, Edge::Right, Edge::Top, Edge::Bottom};
constexpr std::uint32_t kFarthest = 65535; // pixels; the protocol's limit for the size of a window
constexpr double kLeastShare = 0.25;       // of the monitor's width and height

/// Returns whether `area` leaves enough of `monitor` to be plausible.
bool isPlausible(const Rect& area, const Rect& monitor) {
    return !area.isNull() && area.width >= monitor.width * kLeastShare &&
           area.height >= monitor.height * kLeastShare;
}

/// Returns the whole rectangle that a strut reserves in a root window of size `root`.
Rect spaceOf(const Strut& strut, const Size& root) {
    const double length = strut.end - strut.start + 1;
    switch (strut.edge) {
    case Edge::Left:
        return {0, strut.start, strut.depth, length};
    case Edge::Right:
        return {root.width - strut.depth, strut.start, strut.depth, length};
    case Edge::Top:
        return {strut.start, 0, length, strut.depth};
    case Edge::Bottom:
        return {strut.start, root.height - strut.depth, length, strut.depth};
    }
    return Rect::null();
}

/// Returns `area` without the part of it between its `edge` and the inner side of `space`. The width or
/// height is negative when nothing is left.
Rect without(const Rect& area, const Rect& space, Edge edge) {
    double left = area.x;
    double right = area.maxX();
    double top = area.y;
    double bottom = area.maxY();
    switch (edge) {
    case Edge::Left:
        left = std::max(left, space.maxX());
        break;
    case Edge::Right:
        right = std::min(right, space.x);
        break;
    case Edge::Top:
        top = std::max(top, space.maxY());
        break;
    case Edge::Bottom:
        bottom = std::min(bottom, space.y);
        break;
    }
    return {left, top, right - left, bottom - top};
}

/// Returns whether the rectangles share at least part of a pixel; touching edges do not count.
bool overlap(const Rect& a, const Rect& b) {
    const Rect common = a.intersection(b);
    return !common.isNull() && common.width > 0 && common.height > 0;
}

/// Returns `monitor` without the struts that reach into it.
///
/// A strut is measured from the edge of the root window, not of its monitor. A panel at an inner edge between
/// two monitors therefore covers the whole monitor on the other side; such a strut would leave an implausible
/// area of that monitor and is ignored for it.
Rect withoutStruts(const Rect& monitor, const Size& root, std::span<const Strut> struts) {
    Rect area = monitor;
    for (const Strut& strut : struts) {
        const Rect space = spaceOf(strut, root);
        const Rect rest = without(area, space, strut.edge);
        if (overlap(space, monitor) && isPlausible(rest, monitor))
            area = rest;
    }
    return area;
}

/// Returns the window manager's areas in the order of `monitors`, or an empty list unless exactly one area
/// lies in each monitor. Areas carry no monitor id, so they are matched by their position.
std::vector<Rect> areasPerMonitor(std::span<const Rect> monitors, std::span<const Rect> told) {
    if (told.size() != monitors.size())
        return {};
    std::vector<Rect> areas;
    for (const Rect& monitor : monitors) {
        const auto isInside = [&](const Rect& area) {
            return monitor.intersection(area) == area && isPlausible(area, monitor);
        };
        if (std::count_if(told.begin(), told.end(), isInside) != 1)
            return {};
        areas.push_back(*std::find_if(told.begin(), told.end(), isInside));
    }
    return areas;
}

} // namespace

std::vector<Strut> strutsFrom(std::span<const std::uint32_t> values) {
    constexpr std::size_t kPartial = 12;
    const bool isPartial = values.size() == kPartial;
    if (!isPartial && values.size() != kEdges.size())
        return {};
    std::vector<Strut> struts;
    for (std::size_t i = 0; i < kEdges.size(); ++i) {
        const std::uint32_t depth = values[i];
        const std::uint32_t start = isPartial ? values[kEdges.size() + 2 * i] : 0;
        const std::uint32_t end = isPartial ? values[kEdges.size() + 2 * i + 1] : kFarthest;
        if (depth > 0 && depth <= kFarthest && start <= end)
            struts.push_back({kEdges[i], static_cast<double>(depth), static_cast<double>(start),
                              static_cast<double>(end)});
    }
    return struts;
}

std::vector<Rect> rectanglesFrom(std::span<const std::uint32_t> values) {
    if (values.size() % kValuesPerRectangle != 0)
        return {};
    const auto number = [](std::uint32_t value) {
        // Signed: an area may lie left of or above the root window's origin.
        return static_cast<double>(static_cast<std::int32_t>(value));
    };
    std::vector<Rect> rectangles;
    for (std::size_t i = 0; i < values.size(); i += kValuesPerRectangle)
        rectangles.push_back(
            {number(values[i]), number(values[i + 1]), number(values[i + 2]), number(values[i + 3])});
    return rectangles;
}

std::vector<Rect> usableAreas(std::span<const Rect> monitors, const Size& root,
                              const ReservedSpace& reserved) {
    std::vector<Rect> areas = areasPerMonitor(monitors, reserved.areaPerMonitor);
    if (!areas.empty())
        return areas;
    for (const Rect& monitor : monitors)
        areas.push_back(withoutStruts(monitor, root, reserved.struts));
    // Needed for the built-in bars of icewm and fluxbox, which are no clients and set no struts. With several
    // monitors the common area is of no use: it is one rectangle around all of them.
    if (areas.size() == 1 && reserved.commonArea && isPlausible(*reserved.commonArea, monitors.front())) {
        const Rect common = areas.front().intersection(*reserved.commonArea);
        if (isPlausible(common, monitors.front()))
            areas.front() = common;
    }
    return areas;
}

} // namespace tessarel::x11
