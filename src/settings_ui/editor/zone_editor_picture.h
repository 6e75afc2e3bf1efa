// SPDX-License-Identifier: MIT

#pragma once

#include "model/zone.h"

#include <QList>
#include <QPalette>
#include <QRectF>
#include <QSizeF>

#include <cstddef>
#include <optional>
#include <vector>

class QPainter;

namespace tessarel {

class PixelGrid;

/// The picture of the zone editor: the screen with its guides, the enabled zones with their numbers, and the
/// handles of the selected zone. Units are device-independent pixels from the top-left corner of the view, y
/// down.
struct ZoneEditorPicture {
    const std::vector<Zone>& zones;
    int selected; ///< position of the selected zone; no zone is selected if it is not in the list
    QSizeF size;  ///< size of the view
    const QPalette& palette;

    /// Paints at least everything that reaches into `dirty`. Skips zones whose numbers are not finite.
    void draw(QPainter& painter, const QRectF& dirty) const;

    /// Returns the area that `zone` paints on, including the handles that it has while it is selected. Empty
    /// if its numbers are not finite.
    [[nodiscard]] QRectF extent(const Zone& zone) const;

private:
    // The layers, from the bottom to the top.
    void drawScreen(QPainter& painter, const QRectF& dirty) const;
    void drawZones(QPainter& painter, const QRectF& dirty) const;
    void drawHandles(QPainter& painter, const QRectF& dirty) const;
    void drawFrame(QPainter& painter) const;

    /// Returns the position of the selected zone if it is enabled and its numbers are finite.
    [[nodiscard]] std::optional<std::size_t> selectedZone() const;
    /// Returns the centre of the line around a zone, aligned with whole pixels. `std::nullopt` if the zone is
    /// disabled, too small or not finite.
    [[nodiscard]] std::optional<QRectF> outline(std::size_t index, const PixelGrid& grid) const;
    void drawOutline(QPainter& painter, std::size_t index, const QRectF& outline) const;
    void drawNumber(QPainter& painter, std::size_t index) const;
    /// Returns the centres of the lines around the handles, aligned with whole pixels. Handles far outside of
    /// the view are left out.
    [[nodiscard]] QList<QRectF> handles(const PixelGrid& grid) const;
    void drawHandle(QPainter& painter, const QRectF& handle) const;
    /// Returns the centre of the line around the view, aligned with whole pixels.
    [[nodiscard]] QRectF frame(const PixelGrid& grid) const;
    [[nodiscard]] QRectF rect(const Zone& zone) const;
    /// Returns the rectangle of a zone without `kInset` on each side, which keeps neighbouring zones apart.
    [[nodiscard]] QRectF inset(std::size_t index) const;
};

} // namespace tessarel
