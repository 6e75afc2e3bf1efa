// SPDX-License-Identifier: MIT

#include "look/contrast.h"

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

QColor over(const QColor& background, const QColor& color) {
    const auto mix = [&color](float below, float above) { return below + (above - below) * color.alphaF(); };
    return QColor::fromRgbF(mix(background.redF(), color.redF()), mix(background.greenF(), color.greenF()),
                            mix(background.blueF(), color.blueF()));
}

} // namespace tessarel
