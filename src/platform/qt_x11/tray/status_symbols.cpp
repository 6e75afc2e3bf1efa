// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/status_symbols.h"

#include <QColor>
#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPixmap>
#include <QRect>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <span>

namespace tessarel::qt::status_symbols {

namespace {

constexpr std::array kSizes = {16, 22, 24, 32, 48}; // in pixels; the sizes that panels request

/// The colours of an icon.
struct Tone {
    QColor glyph;
    QColor edge;
};

constexpr Tone kNormal{.glyph = QColor(0xfa, 0xfa, 0xfa), .edge = QColor(0x20, 0x20, 0x20)};
/// Dimmed to a grey that stands out from light and from dark panels. Translucent colours would not: on one of
/// the two kinds of panel they are hardly visible. The edge is visible on panels of about the same grey.
constexpr Tone kDisabled{.glyph = QColor(0x85, 0x85, 0x85), .edge = QColor(0x58, 0x58, 0x58)};

/// The width and height of the grid on which symbols are designed.
constexpr int kGrid = 16;

/// A rectangle of a symbol. Its edges are in units of the grid, y down.
struct Tile {
    int left;
    int top;
    int right;
    int bottom;
};

constexpr std::array kGroup = {Tile{1, 2, 7, 14}, Tile{9, 2, 15, 7}, Tile{9, 9, 15, 14}};
constexpr std::array kGridOfFour = {Tile{1, 1, 7, 7}, Tile{9, 1, 15, 7}, Tile{1, 9, 7, 15},
                                    Tile{9, 9, 15, 15}};
constexpr std::array kColumns = {Tile{1, 2, 5, 14}, Tile{6, 2, 10, 14}, Tile{11, 2, 15, 14}};

struct Symbol {
    std::string_view name;
    std::span<const Tile> tiles;
};

constexpr std::array kSymbols = {Symbol{"rectangle.3.group", kGroup}, Symbol{"square.grid.2x2", kGridOfFour},
                                 Symbol{"rectangle.split.3x1", kColumns}};

/// Returns the width in pixels of the dark edge around the glyph.
int edgeWidth(int size) {
    return std::max(1, size / kGrid);
}

/// Returns the tile on an icon of `size` pixels, rounded to whole pixels so that its edges are sharp.
QRect pixels(const Tile& tile, int size) {
    const auto scaled = [size](int units) {
        return static_cast<int>(std::lround(static_cast<double>(units) * size / kGrid));
    };
    const QPoint topLeft(scaled(tile.left), scaled(tile.top));
    return {topLeft, QSize(scaled(tile.right) - topLeft.x(), scaled(tile.bottom) - topLeft.y())};
}

/// Draws all edges before the first glyph, because the edge of a tile may reach into its neighbour.
void drawTiles(QPainter& painter, std::span<const Tile> tiles, const Tone& tone, int size) {
    const int edge = edgeWidth(size);
    for (const Tile& tile : tiles)
        painter.fillRect(pixels(tile, size).adjusted(-edge, -edge, edge, edge), tone.edge);
    for (const Tile& tile : tiles)
        painter.fillRect(pixels(tile, size), tone.glyph);
}

/// Draws the text centred and as large as fits, with its edge inside the icon.
void drawText(QPainter& painter, const QString& text, const Tone& tone, int size) {
    QFont font = QGuiApplication::font();
    font.setBold(true);
    font.setPixelSize(size);
    QPainterPath path;
    path.addText(0, 0, font, text);
    const QRectF bounds = path.boundingRect();
    if (bounds.isEmpty())
        return;
    const double edge = edgeWidth(size);
    const double room = size - 2 * edge;
    const double scale = std::min(room / bounds.width(), room / bounds.height());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(size / 2.0, size / 2.0);
    painter.scale(scale, scale);
    painter.translate(-bounds.center());
    painter.strokePath(path, QPen(tone.edge, 2 * edge / scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(path, tone.glyph);
}

/// Returns an icon that holds every size in `kSizes`.
QIcon drawn(Appearance appearance, const std::function<void(QPainter&, const Tone&, int size)>& draw) {
    QIcon icon;
    for (const int size : kSizes) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        draw(painter, appearance == Appearance::Normal ? kNormal : kDisabled, size);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace

bool exists(std::string_view symbolName) {
    return std::ranges::find(kSymbols, symbolName, &Symbol::name) != kSymbols.end();
}

QIcon symbol(std::string_view name, Appearance appearance) {
    const auto* const found = std::ranges::find(kSymbols, name, &Symbol::name);
    if (found == kSymbols.end())
        return {};
    return drawn(appearance, [found](QPainter& painter, const Tone& tone, int size) {
        drawTiles(painter, found->tiles, tone, size);
    });
}

QIcon text(const QString& text, Appearance appearance) {
    if (text.isEmpty())
        return {};
    return drawn(appearance, [&text](QPainter& painter, const Tone& tone, int size) {
        drawText(painter, text, tone, size);
    });
}

} // namespace tessarel::qt::status_symbols
