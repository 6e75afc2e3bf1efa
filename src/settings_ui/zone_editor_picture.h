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

/// What the zone editor shows: the screen with its guides, the enabled zones with their numbers, the handles
/// of the selected one. Units are points of the view, from its top-left corner.
struct ZoneEditorPicture {
    const std::vector<Zone>& zones;
    int selected; ///< position of the selected zone; none shows as selected when it is beyond the list
    QSizeF size;
    const QPalette& palette;

    /// Paints all that reaches into `dirty`. A zone whose numbers are not finite cannot be painted.
    void draw(QPainter& painter, const QRectF& dirty) const;

    /// All that `zone` paints upon, whether it is selected or not; empty for a zone that cannot be painted.
    [[nodiscard]] QRectF extent(const Zone& zone) const;

private:
    // The layers, from below.
    void drawScreen(QPainter& painter, const QRectF& dirty) const;
    void drawZones(QPainter& painter, const QRectF& dirty) const;
    void drawHandles(QPainter& painter, const QRectF& dirty) const;
    void drawFrame(QPainter& painter) const;

    /// The position of the selected zone, if it can be seen.
    [[nodiscard]] std::optional<std::size_t> selectedZone() const;
    /// The middle of the line around a zone, on whole pixels; none when it has no room for it.
    [[nodiscard]] std::optional<QRectF> outline(std::size_t index, const PixelGrid& grid) const;
    void drawOutline(QPainter& painter, std::size_t index, const QRectF& outline) const;
    void drawNumber(QPainter& painter, std::size_t index) const;
    /// The middles of the lines around the handles, on whole pixels.
    [[nodiscard]] QList<QRectF> handles(const PixelGrid& grid) const;
    void drawHandle(QPainter& painter, const QRectF& handle) const;
    /// The middle of the line around the view, on whole pixels.
    [[nodiscard]] QRectF frame(const PixelGrid& grid) const;
    [[nodiscard]] QRectF rect(const Zone& zone) const;
    [[nodiscard]] QRectF inset(std::size_t index) const;
};

} // namespace tessarel
