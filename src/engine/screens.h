// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/displays_port.h"
#include "ports/desktop/rect.h"

#include <vector>

namespace tessarel {

/// A snapshot of all displays. Converts between screen coordinates (origin at the bottom-left corner of the
/// primary display, y up) and accessibility coordinates (origin at its top-left corner, y down).
class Screens {
public:
    /// `all` lists the primary display first. It may be empty.
    explicit Screens(std::vector<Screen> all);

    /// Returns the height of the primary display; 0 without displays.
    [[nodiscard]] double primaryHeight() const;

    /// Converts a rectangle from either coordinate system to the other.
    [[nodiscard]] Rect flip(const Rect& rect) const;

    /// Returns the whole area of `screen` in accessibility coordinates.
    [[nodiscard]] Rect axFrame(const Screen& screen) const { return flip(screen.frame); }
    /// Returns the usable area of `screen` in accessibility coordinates.
    [[nodiscard]] Rect axVisible(const Screen& screen) const { return flip(screen.visibleFrame); }
    /// Converts a point from screen to accessibility coordinates.
    [[nodiscard]] Point axPoint(const Point& screenPoint) const;

    /// Returns the screen that shows the largest part of `axFrame`; of several equal ones, or if none shows
    /// it, the first. Null without displays. The pointer is valid as long as this object.
    [[nodiscard]] const Screen* containing(const Rect& axFrame) const;

    /// Returns the first screen that contains `screenPoint`; null if none does. With y up, the top edge
    /// belongs to a screen and the bottom edge does not. The pointer is valid as long as this object.
    [[nodiscard]] const Screen* showing(const Point& screenPoint) const;

private:
    std::vector<Screen> m_all;
};

} // namespace tessarel
