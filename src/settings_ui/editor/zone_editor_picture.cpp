// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_editor_picture.h"

#include "look/palette.h"
#include "look/pixel_grid.h"
#include "qt_values/color.h"
#include "settings_ui/editor/zone_editing.h"
#include "settings_ui/kit/kit.h"

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

// Lengths are in device-independent pixels.
constexpr double kInset = 1;
constexpr double kZoneCornerRadius = 6;
constexpr int kNumberSize = 22;
constexpr double kNumberAlpha = 0.8;
constexpr QPointF kNumberOffset(10, 6);
constexpr QSizeF kNumberExtent(40, 45); // from the corner of the zone; any digit fits into it
constexpr double kHandleSize = 8;
constexpr double kHandleStroke = 1.5;
/// How far a handle reaches beyond its zone, with its stroke and its alignment with whole pixels.
constexpr double kHandleReach = 6;
/// Corners and centres of the edges, in shares of the size of the zone.
constexpr std::array<QPointF, 8> kHandlePlaces = {QPointF(0, 0),   QPointF(0.5, 0), QPointF(1, 0),
                                                  QPointF(0, 0.5), QPointF(1, 0.5), QPointF(0, 1),
                                                  QPointF(0.5, 1), QPointF(1, 1)};
constexpr double kGuideWidth = 0.5;
constexpr double kGuideAlpha = 0.6;
constexpr double kDash = 3;
constexpr std::array<double, 5> kVerticalGuides = {0.25, 1.0 / 3, 0.5, 2.0 / 3, 0.75};
constexpr std::array<double, 3> kHorizontalGuides = {0.25, 0.5, 0.75};
/// Coordinates further outside the view than this are moved to this distance, which the user cannot see.
constexpr double kOutside = 100;

/// Appearance of a zone.
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

bool isFinite(const QRectF& rect) {
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height());
}

QRectF fromEdges(double left, double top, double right, double bottom) {
    return {QPointF(left, top), QPointF(right, bottom)};
}

/// Returns the outline of `rect` on whole pixels, so that all edges of one width look alike. An edge midway
/// between two pixels moves inwards, on every side.
QRectF onPixels(const PixelGrid& grid, const QRectF& rect, double stroke) {
    constexpr double kHardlyInwards = 1e-3;
    return fromEdges(grid.lineX(rect.left(), stroke), grid.lineY(rect.top(), stroke),
                     grid.lineX(rect.right() - kHardlyInwards, stroke),
                     grid.lineY(rect.bottom() - kHardlyInwards, stroke));
}

/// Limits the edges of `rect` to the surroundings of a view of `size`, because QPainter cannot handle very
/// large coordinates.
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
    // The number may be larger than a small zone.
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
    QPen pen(translucent(separatorColor(palette), kGuideAlpha), kGuideWidth, Qt::SolidLine, Qt::FlatCap);
    pen.setDashPattern({kDash / kGuideWidth, kDash / kGuideWidth}); // Qt's unit is the width of the pen
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
    const PixelGrid grid(painter.deviceTransform());
    painter.setPen(
        QPen(translucent(accentLine(palette), look.strokeAlpha), grid.sharpWidth(look.strokeWidth)));
    painter.setBrush(translucent(controlAccentColor(palette), look.fillAlpha));
    painter.drawRoundedRect(outline, kZoneCornerRadius, kZoneCornerRadius);
}

void ZoneEditorPicture::drawNumber(QPainter& painter, std::size_t index) const {
    const QFont font = systemFont(kNumberSize, QFont::DemiBold);
    const QPointF corner = withinReach(inset(index), size).topLeft() + kNumberOffset;
    painter.setFont(font);
    painter.setPen(translucent(labelColor(palette), kNumberAlpha));
    // drawText() takes the position of the baseline.
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
    const PixelGrid grid(painter.deviceTransform());
    painter.setPen(QPen(accentLine(palette), grid.sharpWidth(kHandleStroke), Qt::SolidLine, Qt::SquareCap,
                        Qt::MiterJoin));
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
    painter.setRenderHint(QPainter::Antialiasing, false); // the line covers whole pixels, even in the corners
    painter.setPen(
        QPen(separatorColor(palette), grid.wholeWidth(1), Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame(grid));
}

} // namespace tessarel
