// SPDX-License-Identifier: MIT

#include "desktop/expected.h"

#include <algorithm>
#include <cmath>

namespace tessarel::x11test {

namespace {

int rounded(double value) {
    return static_cast<int>(std::lround(value));
}

/// Returns the start of a window in one dimension, moved back so that it does not exceed `areaEnd` by more
/// than a pixel; a window longer than the area starts at `areaStart`.
int startFor(int start, int extent, int areaStart, int areaEnd) {
    return start + extent > areaEnd + 1 ? std::max(areaStart, areaEnd - extent) : start;
}

} // namespace

Frame frameIn(const Frame& area, const Share& share, const Spacing& spacing) {
    const double spread =
        spacing.gap - 2 * spacing.margin; // shares refer to the area with half a gap around it
    const double fullWidth = area.width + spread;
    const double fullHeight = area.height + spread;
    return {rounded(area.x + spacing.margin + fullWidth * share.x / 100),
            rounded(area.y + spacing.margin + fullHeight * share.y / 100),
            std::max(rounded(fullWidth * share.width / 100 - spacing.gap), 40),
            std::max(rounded(fullHeight * share.height / 100 - spacing.gap), 40)};
}

Frame centred(const Frame& area, const Frame& window) {
    const int width = std::min(window.width, area.width);
    const int height = std::min(window.height, area.height);
    return {rounded(area.x + (area.width - width) / 2.0), rounded(area.y + (area.height - height) / 2.0),
            width, height};
}

Frame pulledBack(const Frame& area, const Frame& wanted, const Frame& minimum) {
    const int width = std::max(wanted.width, minimum.width);
    const int height = std::max(wanted.height, minimum.height);
    return {startFor(wanted.x, width, area.x, area.right()),
            startFor(wanted.y, height, area.y, area.bottom()), width, height};
}

Frame carriedOver(const Frame& window, const Frame& from, const Frame& to) {
    const auto place = [](int offset, int extent) {
        return std::clamp(static_cast<double>(offset) / extent, 0.0, 1.0);
    };
    const double width = std::min(static_cast<double>(window.width) / from.width, 1.0);
    const double height = std::min(static_cast<double>(window.height) / from.height, 1.0);
    const Frame wanted{rounded(to.x + place(window.x - from.x, from.width) * to.width),
                       rounded(to.y + place(window.y - from.y, from.height) * to.height),
                       rounded(width * to.width), rounded(height * to.height)};
    return pulledBack(to, wanted, {});
}

} // namespace tessarel::x11test
