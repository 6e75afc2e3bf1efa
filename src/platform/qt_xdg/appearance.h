// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace tessarel::qt {

// The settings of a desktop under "org.freedesktop.appearance": "color-scheme", which is 1 for dark and 2 for
// light, and "accent-color", which is red, green and blue from 0 to 1.

/// Returns whether windows are dark. Without a colour scheme, they are if the name of the theme in `gtkTheme`
/// ends in ":dark", as in "Adwaita:dark".
[[nodiscard]] bool prefersDark(const QVariantMap& settings, const QString& gtkTheme);

/// Returns the accent colour. `std::nullopt` if it is missing or has another type, or if a component is out
/// of range, which is how a desktop says that it has no accent colour.
[[nodiscard]] std::optional<QColor> accentColor(const QVariantMap& settings);

} // namespace tessarel::qt
