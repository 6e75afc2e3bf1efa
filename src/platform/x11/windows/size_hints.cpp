#include "platform/x11/windows/size_hints.h"

#include "platform/x11/server/property.h"

#include <algorithm>
#include <cstddef>

namespace tessarel::x11 {

namespace {

constexpr double kNear = 3; // pixels; too little to count as a refusal

// Flags and value indices of WM_NORMAL_HINTS (ICCCM 4.1.2.3).
constexpr std::uint32_t kHasMinimum = 1U << 4;
constexpr std::uint32_t kHasMaximum = 1U << 5;
constexpr std::uint32_t kHasStep = 1U << 6;
constexpr std::uint32_t kHasAspect = 1U << 7;
constexpr std::size_t kMinimum = 5;
constexpr std::size_t kMaximum = 7;
constexpr std::size_t kStep = 9;
constexpr std::uint32_t kLength = 18; // the full length; some clients leave out the last values

/// Returns the pair of extents at `place`, with `absent` for values that the flag does not announce, that are
/// missing, or that no window can have.
Size pairAt(std::span<const std::uint32_t> values, std::size_t place, std::uint32_t flag, double absent) {
    const auto extent = [&](std::size_t index) {
        const bool isGiven = index < values.size() && (values[0] & flag) != 0;
        return isGiven && values[index] >= 1 && values[index] <= ExtentHints{}.maximum
                   ? static_cast<double>(values[index])
                   : absent;
    };
    return {extent(place), extent(place + 1)};
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

SizeHints sizeHintsFrom(std::span<const std::uint32_t> values) {
    constexpr ExtentHints kNone;
    const Size minimum = pairAt(values, kMinimum, kHasMinimum, kNone.minimum);
    const Size maximum = pairAt(values, kMaximum, kHasMaximum, kNone.maximum);
    const Size step = pairAt(values, kStep, kHasStep, kNone.step);
    return {.width = {minimum.width, maximum.width, step.width},
            .height = {minimum.height, maximum.height, step.height},
            .keepsAspect = !values.empty() && (values[0] & kHasAspect) != 0};
}

SizeHints readSizeHints(Connection& connection, xcb_window_t window) {
    const auto reply = propertyReply(connection, requestProperty(connection, window, XCB_ATOM_WM_NORMAL_HINTS,
                                                                 XCB_ATOM_WM_SIZE_HINTS, kLength));
    return sizeHintsFrom(values(reply));
}

} // namespace tessarel::x11
