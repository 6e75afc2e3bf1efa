#pragma once

#include "qt_values/color.h"

#include <QColor>
#include <QPalette>
#include <QString>
#include <QVariantMap>

namespace tessarel::qt {

/// The user's preferences for the colours of windows. A fresh value holds the defaults.
struct Appearance {
    bool isDark = false;
    QColor accent{kAccent};

    bool operator==(const Appearance&) const = default;
};

/// Decodes the settings of a desktop under "org.freedesktop.appearance": "color-scheme", which is 1 for dark
/// and 2 for light, and "accent-color", which is red, green and blue from 0 to 1.
///
/// Without a colour scheme, windows are dark if the name of the theme in `gtkTheme` ends in ":dark", as in
/// "Adwaita:dark". Without a valid accent colour, the default is used.
[[nodiscard]] Appearance appearance(const QVariantMap& settings, const QString& gtkTheme);

/// Returns the colours of all controls. Requires the application object, whose style has the light palette.
[[nodiscard]] QPalette palette(const Appearance& appearance);

} // namespace tessarel::qt
