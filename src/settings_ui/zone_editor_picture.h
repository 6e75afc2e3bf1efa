#pragma once

#include "model/zone.h"

#include <QPalette>
#include <QRectF>
#include <QSizeF>

#include <vector>

class QPainter;

namespace tessarel {

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
    void drawGuides(QPainter& painter) const;
    void drawZone(QPainter& painter, std::size_t index) const;
    void drawHandles(QPainter& painter, const Zone& zone) const;
    void drawFrame(QPainter& painter) const;
    [[nodiscard]] QRectF rect(const Zone& zone) const;
};

} // namespace tessarel
