// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel {

/// A point in any of the coordinate systems; the variable name says which.
struct Point {
    double x = 0;
    double y = 0;

    [[nodiscard]] bool isFinite() const;

    bool operator==(const Point&) const = default;
};

/// An extent in the unit of its coordinate system.
struct Size {
    double width = 0;
    double height = 0;

    [[nodiscard]] bool isFinite() const;

    bool operator==(const Size&) const = default;
};

/// A rectangle in any of the coordinate systems; the variable name says which.
///
/// Width and height may be negative. The functions below work on the standardised rectangle: the same area
/// with a positive size. A rectangle contains its minimum edges, but not its maximum edges. The null
/// rectangle (infinite origin, no size) stands for "no area at all": the intersection of disjoint rectangles,
/// or a rectangle inset by more than its size.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    /// Returns the null rectangle.
    [[nodiscard]] static Rect null();

    /// Returns whether origin and size are finite.
    [[nodiscard]] bool isFinite() const;

    /// Returns whether this is the null rectangle. A rectangle of zero size is not null.
    [[nodiscard]] bool isNull() const;

    [[nodiscard]] double minX() const;
    [[nodiscard]] double minY() const;
    [[nodiscard]] double maxX() const;
    [[nodiscard]] double maxY() const;
    [[nodiscard]] double midX() const;
    [[nodiscard]] double midY() const;
    /// Returns the extent along x, never negative.
    [[nodiscard]] double absWidth() const;
    /// Returns the extent along y, never negative.
    [[nodiscard]] double absHeight() const;

    [[nodiscard]] bool contains(const Point& point) const;

    /// Returns the common area, or the null rectangle if there is none. Rectangles that only touch share an
    /// area without extent, which is not null.
    [[nodiscard]] Rect intersection(const Rect& other) const;

    /// Moves the left and right edges inwards by `dx`, the other two by `dy`; outwards if negative. Returns
    /// the null rectangle if the resulting width or height would be negative.
    [[nodiscard]] Rect inset(double dx, double dy) const;

    /// Returns `x` and `y` as stored: not the minimum edges if the size is negative.
    [[nodiscard]] Point origin() const { return {x, y}; }
    [[nodiscard]] Size size() const { return {width, height}; }

    /// Compares member by member: a rectangle with a negative size does not equal its standardised form.
    bool operator==(const Rect&) const = default;
};

} // namespace tessarel
