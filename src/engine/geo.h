// SPDX-License-Identifier: MIT

#pragma once

#include "engine/screens.h"
#include "model/settings/store.h"
#include "model/zone.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/rect.h"

#include <optional>

namespace tessarel {

/// Converts between screen coordinates (origin at the bottom-left corner of the primary display, y up), in
/// which displays are reported, and accessibility coordinates (origin at its top-left corner, y down), in
/// which windows are read and moved. Both share the left edge of the primary display. Also computes the
/// frames of zones.
///
/// Reads displays and settings at every call, so changes take effect at once.
class Geo {
public:
    /// Minimum width and height of a zone's frame.
    static constexpr double kMinimumExtent = 40;

    /// `displays` and `store` must outlive this object.
    Geo(DisplaysPort& displays, const Store& store);

    /// Returns a snapshot of the displays, for several conversions with the same displays.
    [[nodiscard]] Screens screens() const;

    /// Returns the height of the primary display; 0 without displays.
    [[nodiscard]] double primaryHeight() const;

    /// Converts a rectangle from either coordinate system to the other.
    [[nodiscard]] Rect flip(const Rect& rect) const;

    /// Returns the whole area of `screen` in accessibility coordinates.
    [[nodiscard]] Rect axFrame(const Screen& screen) const;
    /// Returns the usable area of `screen` in accessibility coordinates.
    [[nodiscard]] Rect axVisible(const Screen& screen) const;
    /// Converts a point from screen to accessibility coordinates.
    [[nodiscard]] Point axPoint(const Point& screenPoint) const;

    /// Returns the screen that shows the largest part of a frame in accessibility coordinates; of several
    /// equal ones, or if none shows it, the first in the list. Without displays, returns the main screen, if
    /// there is one.
    [[nodiscard]] std::optional<Screen> screen(const Rect& containing) const;

    /// Returns the frame for a window in `zone` of `axArea`, which is normally the usable area of a screen.
    ///
    /// Neighbouring zones are one gap apart, outer zones one margin away from the edge of the area. Values
    /// are rounded to whole points, halves away from zero. Width and height are at least `kMinimumExtent`;
    /// the origin does not change to make room for them. Whether the zone is enabled does not matter.
    ///
    /// If gap or margin leaves no room for the zone, the origin is infinite. `AX::setFrame` does not write
    /// such a frame.
    [[nodiscard]] Rect zoneFrame(const Zone& zone, const Rect& axArea) const;

private:
    DisplaysPort& m_displays;
    const Store& m_store;
};

} // namespace tessarel
