#pragma once

#include "look/palette.h"

#include <QString>
#include <QVariantMap>

namespace tessarel::qt {

/// Decodes the settings of a desktop under "org.freedesktop.appearance": "color-scheme", which is 1 for dark
/// and 2 for light, and "accent-color", which is red, green and blue from 0 to 1.
///
/// Without a colour scheme, windows are dark if the name of the theme in `gtkTheme` ends in ":dark", as in
/// "Adwaita:dark". Without a valid accent colour, the default is used.
[[nodiscard]] Appearance appearance(const QVariantMap& settings, const QString& gtkTheme);

} // namespace tessarel::qt
