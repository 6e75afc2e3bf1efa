// SPDX-License-Identifier: MIT

#include "look/palette.h"

#include "look/contrast.h"
#include "qt_values/color.h"

namespace tessarel {

namespace {

/// The colours of one appearance that do not depend on the accent colour.
struct Shades {
    QRgb window;
    QRgb base; ///< of fields and lists
    QRgb alternateBase;
    QRgb button;
    QRgb text;
    QRgb secondary; ///< of less important texts
    QRgb outline;
    QRgb light;
    QRgb midlight;
    QRgb dark;
    QRgb shadow;
    QRgb link;
};

constexpr QRgb grey(int level) {
    return qRgb(level, level, level);
}

constexpr Shades kLight{.window = grey(0xf4),
                        .base = grey(0xff),
                        .alternateBase = grey(0xf7),
                        .button = grey(0xfd),
                        .text = grey(0x1a),
                        .secondary = grey(0x5a),
                        .outline = grey(0x84),
                        .light = grey(0xff),
                        .midlight = grey(0xe4),
                        .dark = grey(0xa0),
                        .shadow = grey(0x76),
                        .link = qRgb(0x0a, 0x5c, 0xc0)};
constexpr Shades kDark{.window = grey(0x24),
                       .base = grey(0x2b),
                       .alternateBase = grey(0x30),
                       .button = grey(0x38),
                       .text = grey(0xf0),
                       .secondary = grey(0xb2),
                       .outline = grey(0x88),
                       .light = grey(0x5a),
                       .midlight = grey(0x48),
                       .dark = grey(0x18),
                       .shadow = grey(0x10),
                       .link = qRgb(0x6c, 0xb2, 0xff)};

} // namespace

QPalette paletteOf(const Appearance& appearance) {
    constexpr double kDisabled = 0.4;
    const Shades& shades = appearance.isDark ? kDark : kLight;
    const QColor text(shades.text);
    QPalette palette(text, QColor(shades.button), QColor(shades.light), QColor(shades.dark),
                     QColor(shades.outline), text, Qt::white, QColor(shades.base), QColor(shades.window));
    palette.setColor(QPalette::AlternateBase, QColor(shades.alternateBase));
    palette.setColor(QPalette::Midlight, QColor(shades.midlight));
    palette.setColor(QPalette::Shadow, QColor(shades.shadow));
    palette.setColor(QPalette::Link, QColor(shades.link));
    palette.setColor(QPalette::PlaceholderText, QColor(shades.secondary));
    palette.setColor(QPalette::ToolTipBase, QColor(shades.base));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, appearance.accent);
    palette.setColor(QPalette::HighlightedText, readableOn(appearance.accent));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, translucent(text, kDisabled));
    palette.setColor(QPalette::Disabled, QPalette::Mid,
                     over(QColor(shades.window), translucent(QColor(shades.outline), kDisabled)));
    for (const auto role : {QPalette::Base, QPalette::Button})
        palette.setColor(QPalette::Disabled, role, QColor(shades.window));
    return palette;
}

QColor accentLine(const QPalette& palette) {
    QColor line = palette.color(QPalette::Active, QPalette::Highlight);
    for (const auto role : {QPalette::Window, QPalette::Base})
        line = visibleOn(palette.color(QPalette::Active, role), line);
    return line;
}

} // namespace tessarel
