// SPDX-License-Identifier: MIT

#pragma once

#include <ostream>

namespace tessarel::x11test {

/// A rectangle of the root window in pixels, y down.
struct Frame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] int right() const { return x + width; }
    [[nodiscard]] int bottom() const { return y + height; }

    bool operator==(const Frame&) const = default;
};

/// Widths of the borders around a client window, in the order of the EWMH properties.
struct Extents {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;

    bool operator==(const Extents&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Frame& frame) {
    return stream << frame.width << 'x' << frame.height << std::showpos << frame.x << frame.y
                  << std::noshowpos;
}

} // namespace tessarel::x11test
