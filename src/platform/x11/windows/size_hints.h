#pragma once

#include "platform/x11/server/connection.h"
#include "ports/rect.h"

#include <cstdint>
#include <span>

namespace tessarel::x11 {

/// What one extent of a client's window may be, in pixels: anything from `minimum` to `maximum`, in steps.
struct ExtentHints {
    double minimum = 1;
    double maximum = 65535; ///< no window of the X protocol is larger
    double step = 1;

    /// Whether somebody who was asked for `wanted` may well have settled on `actual` for the client's sake.
    [[nodiscard]] bool explain(double actual, double wanted) const;

    bool operator==(const ExtentHints&) const = default;
};

/// Which sizes a client wants its window to have.
struct SizeHints {
    ExtentHints width;
    ExtentHints height;
    bool keepsAspect = false; ///< one extent decides on the other

    /// The same for both extents. A client that keeps its aspect explains everything.
    [[nodiscard]] bool explain(const Size& actual, const Size& wanted) const;

    bool operator==(const SizeHints&) const = default;
};

/// Hints as WM_NORMAL_HINTS gives them; what is missing or cannot be meant asks for nothing.
[[nodiscard]] SizeHints sizeHintsFrom(std::span<const std::uint32_t> values);

/// Asks for the hints of `window`. One that has gone has none.
[[nodiscard]] SizeHints readSizeHints(Connection& connection, xcb_window_t window);

} // namespace tessarel::x11
