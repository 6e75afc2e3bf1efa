// SPDX-License-Identifier: MIT

#pragma once

#include "qt_values/color.h"

#include <QColor>
#include <QPalette>

namespace tessarel {

/// The user's preferences for the colours of windows. A fresh value holds the defaults.
struct Appearance {
    bool isDark = false;
    QColor accent{kAccent};

    bool operator==(const Appearance&) const = default;
};

/// Returns the colours of all controls.
///
/// Texts have a contrast of at least `kTextContrast`, and the outlines, `QPalette::Mid`, of at least
/// `kOutlineContrast` with windows, fields, lists (`QPalette::Base`) and buttons. Lists and fields are white
/// in light, and lighter than the window in dark. `QPalette::Highlight` is the accent colour.
[[nodiscard]] QPalette paletteOf(const Appearance& appearance);

/// Returns the colour of lines that show the keyboard focus or what is selected: the accent colour, or the
/// nearest shade of it that has a contrast of `kOutlineContrast` with windows, fields and lists.
[[nodiscard]] QColor accentLine(const QPalette& palette);

} // namespace tessarel
