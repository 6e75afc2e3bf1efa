#pragma once

#include "model/app_settings.h"
#include "model/zone.h"
#include "ports/rect.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tessarel {

/// Which edges of a zone follow the pointer: one, or two that meet in a corner.
struct ZoneEdges {
    bool left = false;
    bool right = false;
    bool top = false;
    bool bottom = false;

    [[nodiscard]] bool any() const { return left || right || top || bottom; }
    bool operator==(const ZoneEdges&) const = default;
};

/// How the zones answer to the pointer on a picture of the screen, and to Delete.
///
/// Points are in the picture's own units, from its top-left corner, y down; `bounds` is its size in the same
/// units, and the zones' percent are percent of it. Disabled zones are not there for the pointer. Zones are
/// edited in place and nothing is saved.
///
/// Stored zones may hold any numbers: an edit that would end at ones that are not finite is not made.
class ZoneEditing {
public:
    enum class Mode : std::uint8_t { None, Move, Resize };
    /// Whether edges are drawn to the guides, to other zones and to the grid.
    enum class Snapping : std::uint8_t { On, Off };

    /// What a press at some place would do. With `Resize` the edges belong to the selected zone.
    struct Grip {
        Mode mode = Mode::None;
        ZoneEdges edges;
        std::size_t zone = 0; ///< meaningless with `None`

        bool operator==(const Grip&) const = default;
    };

    /// The zones and the grid step are read at each use. `settings` must outlive the editing.
    explicit ZoneEditing(AppSettings& settings) : m_settings(settings) {}

    /// Position of the selected zone. It may be disabled or lie beyond the list: then none shows as selected
    /// and nothing can be resized.
    int selected = 0;

    /// Where `zone` stands on a picture of the size `bounds`.
    [[nodiscard]] static Rect rect(const Zone& zone, const Size& bounds);

    /// The selected zone, unless it is disabled or beyond the list.
    [[nodiscard]] const Zone* selectedZone() const;

    /// Edges of the selected zone near `point` come first, then the smallest zone that holds it.
    [[nodiscard]] Grip gripAt(const Point& point, const Size& bounds) const;

    /// What the pointer is doing since it was pressed.
    [[nodiscard]] const Grip& grip() const { return m_grip; }

    /// Takes hold of what is at `point`. True when that has selected another zone; empty space leaves the
    /// selection as it is.
    bool press(const Point& point, const Size& bounds);

    /// Moves or resizes the selected zone by what the pointer has moved since it was pressed, within 0 to 100
    /// and to two decimals. False when there was nothing to do.
    bool drag(const Point& point, const Size& bounds, Snapping snapping);

    /// Lets go. True when something was held, also if it has not been moved.
    bool release();

    /// Disables the selected zone, which keeps its place and numbers in the list. False if there is none.
    bool disableSelected();

private:
    [[nodiscard]] std::optional<std::size_t> selectedIndex() const;
    [[nodiscard]] ZoneEdges edgesAt(const Point& point, const Size& bounds) const;
    [[nodiscard]] std::optional<std::size_t> zoneAt(const Point& point, const Size& bounds) const;
    [[nodiscard]] Zone moved(double dx, double dy, Snapping snapping) const;
    [[nodiscard]] Zone resized(double dx, double dy, Snapping snapping) const;

    AppSettings& m_settings;
    Grip m_grip;
    Zone m_startZone{true, 0, 0, 10, 10};
    Point m_startPoint;
};

} // namespace tessarel
