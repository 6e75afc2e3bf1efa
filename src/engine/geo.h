#pragma once

#include "model/store.h"
#include "model/zone.h"
#include "ports/displays_port.h"
#include "ports/rect.h"

#include <optional>

namespace tessarel {

/// Where two coordinate systems meet: screen coordinates (origin at the bottom-left corner of the primary
/// display, y up), in which displays are reported, and accessibility coordinates (origin at its top-left
/// corner, y down), in which windows are read and moved. Both share the left edge of the primary display.
///
/// Displays and settings are looked up afresh at every call, so a change of either is seen at once.
class Geo {
public:
    /// Width and height that a zone's frame has at least.
    static constexpr double kMinimumExtent = 40;

    Geo(DisplaysPort& displays, const Store& store);

    /// Height of the primary display; 0 without displays.
    [[nodiscard]] double primaryHeight() const;

    /// The same rectangle in the other coordinate system, whichever it is in.
    [[nodiscard]] Rect flip(const Rect& rect) const;

    /// The whole area of `screen`.
    [[nodiscard]] Rect axFrame(const Screen& screen) const;
    /// The area of `screen` that bars and docks leave to windows.
    [[nodiscard]] Rect axVisible(const Screen& screen) const;
    /// A place in screen coordinates, such as that of the pointer, in accessibility coordinates.
    [[nodiscard]] Point axPoint(const Point& screenPoint) const;

    /// The screen that shows most of the window frame `axFrame`. Of screens that show equal shares, none at
    /// all included, the one listed first. Without displays the main screen, if there is one.
    [[nodiscard]] std::optional<Screen> screen(const Rect& containing) const;

    /// The frame that a window gets in `zone` of `axArea`, which is normally the visible area of a screen.
    ///
    /// Neighbouring zones end up one gap apart, outer zones one margin from the edge of the area. Values are
    /// rounded to whole points, halves away from zero. Width and height are at least `kMinimumExtent`; the
    /// origin does not move to make room for them. Whether the zone is enabled plays no part.
    ///
    /// When the gap eats the whole share, the origin is infinite; callers pass it on unchanged.
    [[nodiscard]] Rect zoneFrame(const Zone& zone, const Rect& axArea) const;

private:
    DisplaysPort& m_displays;
    const Store& m_store;
};

} // namespace tessarel
