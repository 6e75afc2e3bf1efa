// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt_x11/overlay/outline_figures.h"

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QWidget>

#include <array>
#include <cstdint>
#include <memory>

namespace tessarel::qt {

/// Puts the outlined look on windows with 8 bits per pixel. Qt creates such windows but cannot paint on them.
class PaletteCanvas {
public:
    /// Returns whether the windows of Qt's screen have 8 bits per pixel.
    [[nodiscard]] static bool isNeeded();

    /// Allocates the colours of the outlined look in the colormap of the screen, black or white where it is
    /// full. Waits for a few replies on Qt's connection.
    explicit PaletteCanvas(const QColor& accent);

    /// Copies `image` to the window of `widget` at `corner`, in pixels. Every pixel takes the closest colour.
    void put(const QWidget& widget, const QImage& image, const QPoint& corner) const;

private:
    struct Entry {
        QColor color;
        std::uint8_t pixel = 0;
    };

    [[nodiscard]] std::uint8_t closest(QRgb color) const;

    std::array<Entry, 3> m_palette;
};

} // namespace tessarel::qt
