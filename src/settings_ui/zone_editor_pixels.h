#pragma once

#include "model/zone.h"
#include "settings_ui/zone_editor_picture.h"

#include <QImage>
#include <QRectF>
#include <QSizeF>
#include <QTransform>

#include <vector>

class QPainter;

namespace tessarel {

/// Paints the zone editor's picture from prepared pixels, so that a drag of the selected zone costs little
/// more than copying them: what lies below and above that zone, its outline in the largest size, a handle.
///
/// They are prepared anew whenever they would be others. They may differ from those of the picture itself by
/// a few steps of 255, where translucent lines are put together before they are painted.
class ZoneEditorPixels {
public:
    /// Onto a painter of pixels whose transform neither rotates nor shears.
    void draw(QPainter& painter, const ZoneEditorPicture& picture, const QRectF& dirty);

    /// Gives the memory back.
    void drop() { *this = {}; }

private:
    /// All that the prepared pixels depend on.
    struct Key {
        std::vector<Zone> others; ///< the zones, none in the place of the selected one
        int selected = 0;
        QSizeF size;
        QTransform toPixels; ///< from points to pixels of the images, the first of which is at 0, 0
        qint64 palette = 0;

        bool operator==(const Key&) const = default;
    };

    void prepare(const ZoneEditorPicture& picture);
    void prepareParts(const ZoneEditorPicture& picture);
    void drawFrame(QPainter& painter, const ZoneEditorPicture& picture) const;
    void drawSelected(QPainter& painter, const ZoneEditorPicture& picture) const;

    Key m_key;
    QImage m_below;
    QImage m_above; ///< null when no zone is above the selected one
    QImage m_outline;
    QImage m_handle;
};

} // namespace tessarel
