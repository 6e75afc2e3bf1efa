// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/app_settings.h"
#include "model/zone.h"
#include "ports/desktop/rect.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tessarel {

/// The edges of a zone that follow the pointer: one, or two that meet in a corner.
struct ZoneEdges {
    bool left = false;
    bool right = false;
    bool top = false;
    bool bottom = false;

    [[nodiscard]] bool any() const { return left || right || top || bottom; }
    bool operator==(const ZoneEdges&) const = default;
};

/// Edits zones with the pointer on a picture of the screen, without any user interface of its own.
///
/// Points are in the units of the picture, from its top-left corner, y down. `bounds` is the size of the
/// picture in these units; the percentages of zones refer to it. The pointer ignores disabled zones. Zones
/// are edited in place, and nothing is saved.
///
/// Stored zones may contain any numbers. An edit whose result would not be finite is not made.
class ZoneEditing {
public:
    /// What a drag does with the selected zone.
    enum class Mode : std::uint8_t { None, Move, Resize };
    /// Whether edges snap to the guides, to other zones and to the grid.
    enum class Snapping : std::uint8_t { On, Off };

    /// What a press of the button at some point does.
    struct Grip {
        Mode mode = Mode::None;
        ZoneEdges edges;      ///< edges of the selected zone; empty unless the mode is `Resize`
        std::size_t zone = 0; ///< position in the list; meaningless if the mode is `None`

        bool operator==(const Grip&) const = default;
    };

    /// `settings`, whose zones and grid step are read at each use, must outlive this object.
    explicit ZoneEditing(AppSettings& settings) : m_settings(settings) {}

    /// Position of the selected zone in the list. The zone may be disabled, and the position may lie outside
    /// of the list: then no zone is shown as selected, and none can be resized.
    int selected = 0;

    /// Returns the rectangle of `zone` on a picture of the size `bounds`.
    [[nodiscard]] static Rect rect(const Zone& zone, const Size& bounds);

    /// Returns the selected zone, null if it is disabled or not in the list.
    [[nodiscard]] const Zone* selectedZone() const;

    /// Returns what a press at `point` does. Edges of the selected zone near the point take precedence over
    /// the smallest zone that contains it.
    [[nodiscard]] Grip gripAt(const Point& point, const Size& bounds) const;

    /// Returns the grip of the current drag; its mode is `None` while the button is up.
    [[nodiscard]] const Grip& grip() const { return m_grip; }

    /// Starts a drag at `point` and selects the zone there. Returns true if that is another zone than before.
    /// A press on empty space keeps the selection.
    bool press(const Point& point, const Size& bounds);

    /// Moves or resizes the selected zone by the distance of `point` from the press. The result is rounded to
    /// two decimals and limited to 0 to 100 percent, as far as the size of the zone allows. Returns false,
    /// and changes nothing, if no drag is in progress or the result would not be finite.
    bool drag(const Point& point, const Size& bounds, Snapping snapping);

    /// Ends the drag. Returns true if there was one, even if nothing has moved.
    bool release();

    /// Disables the selected zone, which keeps its position and numbers. Returns false if the selection is
    /// not in the list.
    bool disableSelected();

private:
    [[nodiscard]] std::optional<std::size_t> selectedIndex() const;
    /// Returns the edges of the selected zone that are near `point`, at most one per axis.
    [[nodiscard]] ZoneEdges edgesAt(const Point& point, const Size& bounds) const;
    /// Returns the smallest enabled zone at `point`; the first one of equally small zones.
    [[nodiscard]] std::optional<std::size_t> zoneAt(const Point& point, const Size& bounds) const;
    // Return the zone of the press, moved or resized by a distance in percent. The result is not rounded.
    [[nodiscard]] Zone moved(double dx, double dy, Snapping snapping) const;
    [[nodiscard]] Zone resized(double dx, double dy, Snapping snapping) const;

    AppSettings& m_settings;
    Grip m_grip;
    // The zone and the pointer when the button was pressed.
    Zone m_startZone{true, 0, 0, 10, 10};
    Point m_startPoint;
};

} // namespace tessarel
