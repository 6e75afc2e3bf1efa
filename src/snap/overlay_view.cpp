// SPDX-License-Identifier: MIT

#include "snap/overlay_view.h"

namespace tessarel {

namespace {

/// Distance between a zone's frame and the shape that is drawn for it, in points. Keeps the stroke inside the
/// frame and adjacent zones apart.
constexpr double kInset = 2;
constexpr double kCornerRadius = 10;
constexpr double kFontSize = 28;
constexpr int kSemibold = 600;

/// Style of a zone. Alpha values are from 0 to 1, widths in points.
struct Look {
    double fillAlpha;
    double strokeAlpha;
    double strokeWidth;
    double labelAlpha;
};

constexpr Look kPlain{.fillAlpha = 0.1, .strokeAlpha = 0.45, .strokeWidth = 1.5, .labelAlpha = 0.6};
constexpr Look kHighlighted{.fillAlpha = 0.35, .strokeAlpha = 0.95, .strokeWidth = 3, .labelAlpha = 0.95};

/// Returns the figure for an item whose rectangle is `local`, in coordinates of the overlay window.
OverlayFigure figure(const OverlayItem& item, const Rect& local) {
    const Look& look = item.highlighted ? kHighlighted : kPlain;
    return {.bounds = local,
            .shape = local.inset(kInset, kInset),
            .cornerRadius = kCornerRadius,
            .fillAlpha = look.fillAlpha,
            .strokeAlpha = look.strokeAlpha,
            .strokeWidth = look.strokeWidth,
            .label = {.text = item.label,
                      .center = {local.midX(), local.midY()},
                      .fontSize = kFontSize,
                      .fontWeight = kSemibold,
                      .alpha = look.labelAlpha},
            .highlighted = item.highlighted};
}

} // namespace

std::vector<OverlayFigure> OverlayView::draw() const {
    std::vector<OverlayFigure> figures;
    figures.reserve(items.size());
    for (const OverlayItem& item : items) {
        const Rect local{item.rect.minX() - origin.x, item.rect.minY() - origin.y, item.rect.absWidth(),
                         item.rect.absHeight()};
        if (local.isFinite())
            figures.push_back(figure(item, local));
    }
    return figures;
}

} // namespace tessarel
