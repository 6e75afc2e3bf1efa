#include "settings_ui/zone_editor_pixels.h"

#include "settings_ui/kit.h"
#include "settings_ui/pixel_grid.h"

#include <QColor>
#include <QPainter>
#include <QPoint>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

namespace tessarel {

namespace {

constexpr int kMargin = 8;  // points around an outline, more than half of any line
constexpr int kCorner = 10; // points that the round part of an outline takes, at most

int pixels(double points, const QTransform& toPixels) {
    return static_cast<int>(std::ceil(points * toPixels.m11()));
}

/// The whole pixel at or before a place.
QPoint pixelAt(const QPointF& place) {
    constexpr double kHardly = 1e-6; // what reckoning may have taken away from a whole number
    return {static_cast<int>(std::floor(place.x() + kHardly)),
            static_cast<int>(std::floor(place.y() + kHardly))};
}

/// All that a line along `outline`, in points, may cover.
QRect areaOf(const QRectF& outline, const QTransform& toPixels) {
    const int margin = pixels(kMargin, toPixels);
    const QRectF line = toPixels.mapRect(outline);
    return QRect(pixelAt(line.topLeft()), pixelAt(line.bottomRight()))
        .adjusted(-margin, -margin, margin, margin);
}

QImage transparentImage(const QSize& size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// Copies a frame of any size out of a larger one, `frame`: its straight parts look the same everywhere.
void drawShrunk(QPainter& painter, const QRect& target, const QImage& frame) {
    const int left = target.width() / 2;
    const int top = target.height() / 2;
    for (const bool isRight : {false, true})
        for (const bool isLower : {false, true}) {
            const QSize size(isRight ? target.width() - left : left, isLower ? target.height() - top : top);
            const QPoint from(isRight ? frame.width() - size.width() : 0,
                              isLower ? frame.height() - size.height() : 0);
            const QPoint to = target.topLeft() + QPoint(isRight ? left : 0, isLower ? top : 0);
            painter.drawImage(to, frame, QRect(from, size));
        }
}

} // namespace

void ZoneEditorPixels::draw(QPainter& painter, const ZoneEditorPicture& picture, const QRectF& dirty) {
    const QTransform toDevice = painter.deviceTransform();
    const QPoint corner = pixelAt({toDevice.dx(), toDevice.dy()});
    Key key{.others = picture.zones,
            .selected = picture.selected,
            .size = picture.size,
            .toPixels = toDevice * QTransform::fromTranslate(-corner.x(), -corner.y()),
            .palette = picture.palette.cacheKey()};
    if (const auto selected = picture.selectedZone())
        key.others[*selected] = {};
    if (m_below.isNull() || key != m_key) {
        m_key = std::move(key);
        prepare(picture);
    }
    const QRect part = m_key.toPixels.mapRect(dirty).toAlignedRect() & m_below.rect();
    if (part.isEmpty())
        return; // an empty part would stand for the whole image
    painter.save();
    painter.setTransform(QTransform::fromTranslate(corner.x(), corner.y()) * toDevice.inverted(), true);
    painter.drawImage(part.topLeft(), m_below, part);
    drawSelected(painter, picture);
    if (!m_above.isNull())
        painter.drawImage(part.topLeft(), m_above, part);
    for (const QRectF& handle : picture.handles(PixelGrid(m_key.toPixels)))
        painter.drawImage(areaOf(handle, m_key.toPixels).topLeft(), m_handle);
    drawFrame(painter, picture);
    painter.restore();
}

/// Its pixels have the colour whole: no need to put lines together.
void ZoneEditorPixels::drawFrame(QPainter& painter, const ZoneEditorPicture& picture) const {
    const PixelGrid grid(m_key.toPixels);
    const double width = grid.wholeWidth(1) * m_key.toPixels.m11();
    const QRectF line = m_key.toPixels.mapRect(picture.frame(grid));
    const QRect outer = line.adjusted(-width / 2, -width / 2, width / 2, width / 2).toRect();
    const int side = qRound(width);
    const QColor color = separatorColor(picture.palette);
    painter.fillRect(outer.x(), outer.y(), outer.width(), side, color);
    painter.fillRect(outer.x(), outer.bottom() + 1 - side, outer.width(), side, color);
    painter.fillRect(outer.x(), outer.y(), side, outer.height(), color);
    painter.fillRect(outer.right() + 1 - side, outer.y(), side, outer.height(), color);
}

void ZoneEditorPixels::prepare(const ZoneEditorPicture& picture) {
    const QRectF view(QPointF(), picture.size);
    const QSize size = m_key.toPixels.mapRect(view).toAlignedRect().size().expandedTo({1, 1});
    const auto selected = picture.selectedZone();
    const std::size_t count = picture.zones.size();
    m_below = QImage(size, QImage::Format_RGB32);
    QPainter below(&m_below);
    below.setTransform(m_key.toPixels);
    picture.drawScreen(below, view.adjusted(0, 0, 1, 1)); // with the pixels that it ends in
    picture.drawZones(below, view, 0, selected.value_or(count));
    below.end();
    m_above = {};
    if (!selected)
        return;
    if (std::any_of(picture.zones.begin() + static_cast<std::ptrdiff_t>(*selected) + 1, picture.zones.end(),
                    [](const Zone& zone) { return zone.enabled; })) {
        m_above = transparentImage(size);
        QPainter above(&m_above);
        above.setTransform(m_key.toPixels);
        picture.drawZones(above, view, *selected + 1, count);
    }
    prepareParts(picture);
}

/// Out of a picture of one zone, which fills the view.
void ZoneEditorPixels::prepareParts(const ZoneEditorPicture& picture) {
    const std::vector<Zone> zones{{true, 0, 0, 100, 100}};
    const ZoneEditorPicture largest{zones, 0, picture.size, picture.palette};
    const int margin = pixels(kMargin + kCorner, m_key.toPixels);
    const QTransform toPixels = QTransform::fromScale(m_key.toPixels.m11(), m_key.toPixels.m22()) *
                                QTransform::fromTranslate(margin, margin);
    const PixelGrid grid(toPixels);
    const auto draw = [&](const QRectF& outline, const auto& drawOutline) {
        QImage image = transparentImage(m_below.size() + QSize(2 * margin, 2 * margin));
        QPainter painter(&image);
        painter.setTransform(toPixels);
        painter.setRenderHint(QPainter::Antialiasing);
        drawOutline(painter, outline);
        painter.end();
        return image.copy(areaOf(outline, toPixels));
    };
    if (const auto outline = largest.outline(0, grid))
        m_outline = draw(
            *outline, [&](QPainter& painter, const QRectF& rect) { largest.drawOutline(painter, 0, rect); });
    m_handle = draw(largest.handles(grid).first(),
                    [&](QPainter& painter, const QRectF& rect) { largest.drawHandle(painter, rect); });
}

void ZoneEditorPixels::drawSelected(QPainter& painter, const ZoneEditorPicture& picture) const {
    const auto index = picture.selectedZone();
    const auto outline = index ? picture.outline(*index, PixelGrid(m_key.toPixels)) : std::nullopt;
    if (!outline)
        return;
    const QRect area = areaOf(*outline, m_key.toPixels);
    const int smallest = 2 * pixels(kMargin + kCorner, m_key.toPixels);
    const bool isLikeLargest = area.width() >= smallest && area.height() >= smallest &&
                               area.width() <= m_outline.width() && area.height() <= m_outline.height();
    if (isLikeLargest)
        drawShrunk(painter, area, m_outline);
    painter.setTransform(m_key.toPixels, true);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isLikeLargest)
        picture.drawOutline(painter, *index, *outline);
    picture.drawNumber(painter, *index);
    painter.setTransform(m_key.toPixels.inverted(), true);
}

} // namespace tessarel
