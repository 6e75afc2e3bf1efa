// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tessarel::x11 {

// All rectangles in this header are in pixels of the root window, y down.

/// Space that a panel reserves along an edge of the root window (`_NET_WM_STRUT_PARTIAL`).
struct Strut {
    enum class Edge { Left, Right, Top, Bottom };

    Edge edge = Edge::Top;
    double depth = 0; ///< pixels, measured from that edge of the root window
    double start = 0; ///< first pixel along the edge
    double end = 0;   ///< last pixel along the edge, inclusive

    bool operator==(const Strut&) const = default;
};

/// The reserved space of a desktop, as panels and the window manager publish it.
struct ReservedSpace {
    std::vector<Strut> struts;
    /// `_GTK_WORKAREAS_D<n>`: the usable area of each monitor, in any order. Of the supported window managers
    /// metacity, mutter and marco publish it.
    std::vector<Rect> areaPerMonitor;
    /// `_NET_WORKAREA`: one usable area for all monitors together.
    std::optional<Rect> commonArea;

    bool operator==(const ReservedSpace&) const = default;
};

/// Decodes the twelve values of `_NET_WM_STRUT_PARTIAL` or the four of `_NET_WM_STRUT`; returns an empty list
/// for any other number of values. Sides with zero depth, with a depth beyond the protocol's limit or with a
/// reversed range are left out.
[[nodiscard]] std::vector<Strut> strutsFrom(std::span<const std::uint32_t> values);

/// The number of values that describe a rectangle in the work area properties.
inline constexpr std::uint32_t kValuesPerRectangle = 4;

/// Decodes consecutive groups of x, y, width and height, each a signed 32-bit value. Returns an empty list
/// when a group is incomplete.
[[nodiscard]] std::vector<Rect> rectanglesFrom(std::span<const std::uint32_t> values);

/// Returns the usable area of each monitor, in the order of `monitors`. `root` is the size of the root
/// window.
///
/// The areas that the window manager publishes per monitor are used if there is one for every monitor.
/// Otherwise the struts are subtracted, and a single monitor is also intersected with the common area. A
/// value that would leave less than a quarter of a monitor's width or height is treated as an error and
/// ignored, so no area is empty.
[[nodiscard]] std::vector<Rect> usableAreas(std::span<const Rect> monitors, const Size& root,
                                            const ReservedSpace& reserved);

} // namespace tessarel::x11
