// SPDX-License-Identifier: MIT

#include "look/contrast.h"

#include "qt_values/color.h"

#include <algorithm>
#include <cmath>

namespace tessarel {

namespace {

/// Returns the share of one component, from 0 to 1, in the light that a display emits (sRGB).
double linear(double component) {
    constexpr double kStraight = 0.03928; // below this, the curve is a straight line
    return component <= kStraight ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    constexpr double kStrayLight = 0.05; // reflected by the display
    const double first = luminance(one) + kStrayLight;
    const double second = luminance(other) + kStrayLight;
    return std::max(first, second) / std::min(first, second);
}

QColor readableOn(const QColor& background) {
    return contrast(Qt::white, background) >= kTextContrast ? Qt::white : Qt::black;
}

QColor visibleOn(const QColor& background, const QColor& color) {
    if (contrast(color, background) >= kOutlineContrast)
        return color;
    const QColor end =
        contrast(Qt::white, background) > contrast(Qt::black, background) ? Qt::white : Qt::black;
    // In the steps that a display has.
    const auto shade = [&](int share) { return QColor(over(color, translucent(end, share / 255.0)).rgb()); };
    int visible = 255;
    for (int faint = 0; visible - faint > 1;) {
        const int middle = (faint + visible) / 2;
        (contrast(shade(middle), background) < kOutlineContrast ? faint : visible) = middle;
    }
    return shade(visible);
}

QColor over(const QColor& background, const QColor& color) {
    const auto mix = [&color](float below, float above) { return below + (above - below) * color.alphaF(); };
    return QColor::fromRgbF(mix(background.redF(), color.redF()), mix(background.greenF(), color.greenF()),
                            mix(background.blueF(), color.blueF()));
}

} // namespace tessarel
