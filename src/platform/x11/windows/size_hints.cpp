// SPDX-License-Identifier: MIT

#include "platform/x11/windows/size_hints.h"

#include <algorithm>
#include <cstdint>

namespace tessarel::x11 {

namespace {

constexpr double kNear = 3; // pixels; too little to count as a refusal

/// Returns a pair of extents, with `absent` for values that `flag` does not announce or that no window can
/// have.
Size pairOf(const xcb_size_hints_t& hints, std::uint32_t flag, std::int32_t width, std::int32_t height,
            double absent) {
    const auto extent = [&](std::int32_t value) {
        const bool isPossible = value >= 1 && value <= ExtentHints{}.maximum;
        return (hints.flags & flag) != 0 && isPossible ? static_cast<double>(value) : absent;
    };
    return {extent(width), extent(height)};
}

} // namespace

bool ExtentHints::explain(double actual, double wanted) const {
    // Window managers round down to the step, so the extent may be up to one step short.
    const double allowed = std::max(minimum, std::min(wanted, maximum));
    return actual <= allowed + kNear && actual > allowed - step - kNear;
}

bool SizeHints::explain(const Size& actual, const Size& wanted) const {
    return keepsAspect ||
           (width.explain(actual.width, wanted.width) && height.explain(actual.height, wanted.height));
}

SizeHints sizeHintsFrom(const xcb_size_hints_t& hints) {
    constexpr ExtentHints kNone;
    const Size minimum =
        pairOf(hints, XCB_ICCCM_SIZE_HINT_P_MIN_SIZE, hints.min_width, hints.min_height, kNone.minimum);
    const Size maximum =
        pairOf(hints, XCB_ICCCM_SIZE_HINT_P_MAX_SIZE, hints.max_width, hints.max_height, kNone.maximum);
    const Size step =
        pairOf(hints, XCB_ICCCM_SIZE_HINT_P_RESIZE_INC, hints.width_inc, hints.height_inc, kNone.step);
    return {.width = {minimum.width, maximum.width, step.width},
            .height = {minimum.height, maximum.height, step.height},
            .keepsAspect = (hints.flags & XCB_ICCCM_SIZE_HINT_P_ASPECT) != 0,
            .hasStaticGravity = (hints.flags & XCB_ICCCM_SIZE_HINT_P_WIN_GRAVITY) != 0 &&
                                hints.win_gravity == XCB_GRAVITY_STATIC};
}

SizeHints readSizeHints(Connection& connection, xcb_window_t window) {
    const auto reply = connection.reply<xcb_get_property_reply>(
        xcb_icccm_get_wm_normal_hints_unchecked(connection.xcb(), window));
    xcb_size_hints_t hints{};
    if (reply)
        xcb_icccm_get_wm_size_hints_from_reply(&hints, reply.get());
    return sizeHintsFrom(hints);
}

} // namespace tessarel::x11
