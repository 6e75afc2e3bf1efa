#include "settings_ui/zone_editor_picture.h"

#include "settings_ui/kit.h"
#include "settings_ui/pixel_grid.h"
#include "settings_ui/zone_editing.h"

#include <QFontMetricsF>
#include <QLineF>
#include <QList>
#include <QPainter>
#include <QPen>
#include <QPointF>

#include <algorithm>
#include <array>
#include <cmath>

namespace tessarel {

namespace {

constexpr double kInset = 1;
constexpr double kZoneCornerRadius = 6;
constexpr int kNumberSize = 22;
constexpr double kNumberAlpha = 0.8;
constexpr QPointF kNumberOffset(10, 6);
constexpr QSizeF kNumberExtent(40, 45); // more than any digit takes, from the corner of its zone
constexpr double kHandleSize = 8;
constexpr double kHandleStroke = 1.5;
constexpr double kHandleReach = 6; // with its stroke and its way to whole pixels
/// In shares of the zone: its corners and the middles of its edges.
constexpr std::array<QPointF, 8> kHandlePlaces = {QPointF(0, 0),   QPointF(0.5, 0), QPointF(1, 0),
                                                  QPointF(0, 0.5), QPointF(1, 0.5), QPointF(0, 1),
                                                  QPointF(0.5, 1), QPointF(1, 1)};
constexpr double kGuideWidth = 0.5;
constexpr double kGuideAlpha = 0.6;
constexpr double kDash = 3;
constexpr std::array<double, 5> kVerticalGuides = {0.25, 1.0 / 3, 0.5, 2.0 / 3, 0.75};
constexpr std::array<double, 3> kHorizontalGuides = {0.25, 0.5, 0.75};
/// How far outside the view edges may lie before they are painted nearer; nothing of them is seen either way.
constexpr double kOutside = 100;

struct Look {
    double fillAlpha;
    double strokeAlpha;
    double strokeWidth;
};

constexpr Look kPlain{.fillAlpha = 0.14, .strokeAlpha = 0.6, .strokeWidth = 1.2};
constexpr Look kSelected{.fillAlpha = 0.3, .strokeAlpha = 1, .strokeWidth = 2.5};

const Look& lookOf(std::size_t index, int selected) {
    return static_cast<int>(index) == selected ? kSelected : kPlain;
}

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

bool isFinite(const QRectF& rect) {
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height());
}

QRectF fromEdges(double left, double top, double right, double bottom) {
    return {QPointF(left, top), QPointF(right, bottom)};
}

/// The outline of `rect` on whole pixels, so that all edges of one width look alike. An edge midway between
/// two pixels goes inwards, on every side.
QRectF onPixels(const PixelGrid& grid, const QRectF& rect, double stroke) {
    constexpr double kHardlyInwards = 1e-3;
    return fromEdges(grid.lineX(rect.left(), stroke), grid.lineY(rect.top(), stroke),
                     grid.lineX(rect.right() - kHardlyInwards, stroke),
                     grid.lineY(rect.bottom() - kHardlyInwards, stroke));
}

/// `rect` without what is far outside a view of `size`: painters do not reckon with numbers of any size.
QRectF withinReach(const QRectF& rect, const QSizeF& size) {
    const double right = size.width() + kOutside;
    const double bottom = size.height() + kOutside;
    return fromEdges(std::clamp(rect.left(), -kOutside, right), std::clamp(rect.top(), -kOutside, bottom),
                     std::clamp(rect.right(), -kOutside, right),
                     std::clamp(rect.bottom(), -kOutside, bottom));
}

} // namespace

void ZoneEditorPicture::draw(QPainter& painter, const QRectF& dirty) const {
    drawScreen(painter, dirty);
    drawZones(painter, dirty);
    drawHandles(painter, dirty);
    drawFrame(painter);
}

void ZoneEditorPicture::drawZones(QPainter& painter, const QRectF& dirty) const {
    const PixelGrid grid(painter.deviceTransform());
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = 0; i < zones.size(); ++i) {
        const auto line = outline(i, grid);
        if (!line || !extent(zones[i]).intersects(dirty))
            continue;
        drawOutline(painter, i, *line);
        drawNumber(painter, i);
    }
}

std::optional<std::size_t> ZoneEditorPicture::selectedZone() const {
    const auto index = static_cast<std::size_t>(selected);
    if (selected < 0 || index >= zones.size() || !zones[index].enabled || !isFinite(rect(zones[index])))
        return std::nullopt;
    return index;
}

QRectF ZoneEditorPicture::rect(const Zone& zone) const {
    const Rect area = ZoneEditing::rect(zone, {size.width(), size.height()});
    return {area.minX(), area.minY(), area.absWidth(), area.absHeight()};
}

QRectF ZoneEditorPicture::extent(const Zone& zone) const {
    const QRectF area = rect(zone);
    if (!isFinite(area))
        return {};
    const QRectF within = withinReach(area, size);
    return within.adjusted(-kHandleReach, -kHandleReach, kHandleReach, kHandleReach)
        .united(QRectF(within.topLeft(), kNumberExtent));
}

void ZoneEditorPicture::drawScreen(QPainter& painter, const QRectF& dirty) const {
    painter.fillRect(dirty, controlBackgroundColor(palette));
    painter.setRenderHint(QPainter::Antialiasing);
    const PixelGrid grid(painter.deviceTransform());
    QList<QLineF> lines;
    for (const double share : kVerticalGuides) {
        const double x = grid.lineX(share * size.width(), kGuideWidth);
        lines.append({x, 0, x, size.height()});
    }
    for (const double share : kHorizontalGuides) {
        const double y = grid.lineY(share * size.height(), kGuideWidth);
        lines.append({0, y, size.width(), y});
    }
    QPen pen(withAlpha(separatorColor(palette), kGuideAlpha), kGuideWidth, Qt::SolidLine, Qt::FlatCap);
    pen.setDashPattern({kDash / kGuideWidth, kDash / kGuideWidth}); // in widths of the pen
    painter.setPen(pen);
    painter.drawLines(lines);
}

QRectF ZoneEditorPicture::inset(std::size_t index) const {
    return rect(zones[index]).adjusted(kInset, kInset, -kInset, -kInset);
}

std::optional<QRectF> ZoneEditorPicture::outline(std::size_t index, const PixelGrid& grid) const {
    const QRectF area = inset(index);
    if (!zones[index].enabled || !isFinite(area) || area.width() < 0 || area.height() < 0)
        return std::nullopt;
    return onPixels(grid, withinReach(area, size), lookOf(index, selected).strokeWidth);
}

void ZoneEditorPicture::drawOutline(QPainter& painter, std::size_t index, const QRectF& outline) const {
    const Look& look = lookOf(index, selected);
    const QColor accent = controlAccentColor(palette);
    painter.setPen(QPen(withAlpha(accent, look.strokeAlpha), look.strokeWidth));
    painter.setBrush(withAlpha(accent, look.fillAlpha));
    painter.drawRoundedRect(outline, kZoneCornerRadius, kZoneCornerRadius);
}

void ZoneEditorPicture::drawNumber(QPainter& painter, std::size_t index) const {
    const QFont font = systemFont(kNumberSize, QFont::DemiBold);
    const QPointF corner = withinReach(inset(index), size).topLeft() + kNumberOffset;
    painter.setFont(font);
    painter.setPen(withAlpha(labelColor(palette), kNumberAlpha));
    painter.drawText(corner + QPointF(0, QFontMetricsF(font).ascent()), QString::number(index + 1));
}

QList<QRectF> ZoneEditorPicture::handles(const PixelGrid& grid) const {
    const auto index = selectedZone();
    if (!index)
        return {};
    const QRectF area = rect(zones[*index]);
    const QRectF view = QRectF(QPointF(), size).adjusted(-kOutside, -kOutside, kOutside, kOutside);
    const double side = grid.wholeWidth(kHandleSize);
    QList<QRectF> all;
    for (const QPointF& place : kHandlePlaces) {
        const QPointF centre = area.topLeft() + QPointF(place.x() * area.width(), place.y() * area.height());
        if (view.contains(centre))
            all.append(QRectF(grid.lineX(centre.x() - kHandleSize / 2, kHandleStroke),
                              grid.lineY(centre.y() - kHandleSize / 2, kHandleStroke), side, side));
    }
    return all;
}

void ZoneEditorPicture::drawHandle(QPainter& painter, const QRectF& handle) const {
    painter.setPen(
        QPen(controlAccentColor(palette), kHandleStroke, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::white);
    painter.drawRect(handle);
}

void ZoneEditorPicture::drawHandles(QPainter& painter, const QRectF& dirty) const {
    const PixelGrid grid(painter.deviceTransform());
    painter.setRenderHint(QPainter::Antialiasing);
    for (const QRectF& handle : handles(grid))
        if (handle.adjusted(-kHandleStroke, -kHandleStroke, kHandleStroke, kHandleStroke).intersects(dirty))
            drawHandle(painter, handle);
}

QRectF ZoneEditorPicture::frame(const PixelGrid& grid) const {
    const double inset = grid.wholeWidth(1) / 2;
    return onPixels(grid, QRectF(QPointF(), size).adjusted(inset, inset, -inset, -inset), 2 * inset);
}

void ZoneEditorPicture::drawFrame(QPainter& painter) const {
    const PixelGrid grid(painter.deviceTransform());
    painter.setRenderHint(QPainter::Antialiasing, false); // it is on whole pixels, also at its corners
    painter.setPen(
        QPen(separatorColor(palette), grid.wholeWidth(1), Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame(grid));
}

} // namespace tessarel
