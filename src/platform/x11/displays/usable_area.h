#pragma once

#include "ports/rect.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tessarel::x11 {

/// Rectangles here are in pixels of the root window, y down.

/// Space that a panel keeps along an edge of the root window.
struct Strut {
    enum class Edge { Left, Right, Top, Bottom };

    Edge edge = Edge::Top;
    double depth = 0; ///< from that edge of the root window
    double start = 0; ///< the part of the edge it stands at
    double end = 0;   ///< its last pixel

    bool operator==(const Strut&) const = default;
};

/// What keeps windows from using the whole of a monitor.
struct ReservedSpace {
    std::vector<Strut> struts;
    std::vector<Rect> areaPerMonitor; ///< usable areas the manager tells for each monitor, in any order
    std::optional<Rect> commonArea;   ///< usable area the manager tells for all monitors together

    bool operator==(const ReservedSpace&) const = default;
};

/// The struts in the twelve values of _NET_WM_STRUT_PARTIAL, or in the four of _NET_WM_STRUT; none in
/// anything else. Sides without space, with more than any root window has, or with a reversed part are left
/// out.
[[nodiscard]] std::vector<Strut> strutsFrom(std::span<const std::uint32_t> values);

inline constexpr std::uint32_t kValuesPerRectangle = 4;

/// The rectangles in consecutive groups of x, y, width and height; none when a group is incomplete.
[[nodiscard]] std::vector<Rect> rectanglesFrom(std::span<const std::uint32_t> values);

/// The part of each of `monitors` that `reserved` leaves to windows.
///
/// The manager's word for each monitor counts if it has one for every one of them; else struts are taken away
/// and, where there is a single monitor, what lies outside the common area. Whatever would leave less than a
/// quarter of a monitor's width or height is taken for an error and ignored, so the areas are never empty.
[[nodiscard]] std::vector<Rect> usableAreas(std::span<const Rect> monitors, const Size& root,
                                            const ReservedSpace& reserved);

} // namespace tessarel::x11
