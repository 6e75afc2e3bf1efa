#pragma once

namespace tessarel {

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// A rectangle in any of the coordinate systems; names of variables say which.
///
/// Sizes may be negative: the edges and extents below are those of the standardised rectangle, whose size is
/// made positive. A rectangle contains its minimum edges and not its maximum edges. The null rectangle
/// (infinite origin, no size) stands for "no area at all": what is disjoint or inset away.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] static Rect null();

    [[nodiscard]] bool isNull() const;

    [[nodiscard]] double minX() const;
    [[nodiscard]] double minY() const;
    [[nodiscard]] double maxX() const;
    [[nodiscard]] double maxY() const;
    [[nodiscard]] double midX() const;
    [[nodiscard]] double midY() const;
    /// Extent along x, never negative.
    [[nodiscard]] double absWidth() const;
    /// Extent along y, never negative.
    [[nodiscard]] double absHeight() const;

    [[nodiscard]] bool contains(const Point& point) const;

    /// The common area; null when there is none. Rectangles that only touch share an area of no extent, which
    /// is not null.
    [[nodiscard]] Rect intersection(const Rect& other) const;

    /// Every edge moved inwards by `dx` or `dy` (outwards when negative); null when less than nothing is
    /// left.
    [[nodiscard]] Rect inset(double dx, double dy) const;

    [[nodiscard]] Point origin() const { return {x, y}; }
    [[nodiscard]] Size size() const { return {width, height}; }

    /// Member by member: two rectangles of the same area, one with a negative size, are not equal.
    bool operator==(const Rect&) const = default;
};

} // namespace tessarel
