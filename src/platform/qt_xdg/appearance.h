#pragma once

#include <QColor>
#include <QPalette>
#include <QString>
#include <QVariantMap>

namespace tessarel::qt {

/// How the user likes windows to look.
struct Appearance {
    bool isDark = false;
    QColor accent{0x0a, 0x84, 0xff};

    bool operator==(const Appearance&) const = default;
};

/// What a desktop says of it under "org.freedesktop.appearance": "color-scheme", 1 for dark, and
/// "accent-color", three numbers from 0 to 1. Where it does not tell dark from light, the theme that is named
/// in `gtkTheme`, as in "Adwaita:dark", does.
[[nodiscard]] Appearance appearance(const QVariantMap& settings, const QString& gtkTheme);

/// The colours of all controls.
[[nodiscard]] QPalette palette(const Appearance& appearance);

} // namespace tessarel::qt
