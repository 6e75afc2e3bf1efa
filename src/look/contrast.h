// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>

namespace tessarel {

/// The least contrast of a text with its background at which small letters are readable.
inline constexpr double kTextContrast = 4.5;
/// The least contrast of an outline with its surroundings at which a control is recognised.
inline constexpr double kOutlineContrast = 3;

/// Returns the contrast ratio of two opaque colours, from 1 (equal) to 21 (black and white), as the Web
/// Content Accessibility Guidelines define it.
[[nodiscard]] double contrast(const QColor& one, const QColor& other);

/// Returns a colour for text on `background`: white where that is readable, otherwise black, which is
/// readable wherever white is not.
[[nodiscard]] QColor readableOn(const QColor& background);

/// Returns `color` if it has a contrast of `kOutlineContrast` with the opaque `background`, otherwise its
/// nearest shade towards black or white that has.
[[nodiscard]] QColor visibleOn(const QColor& background, const QColor& color);

/// Returns the opaque colour that `color` gives over the opaque `background`.
[[nodiscard]] QColor over(const QColor& background, const QColor& color);

} // namespace tessarel
