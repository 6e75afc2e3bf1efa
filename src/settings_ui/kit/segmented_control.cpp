// SPDX-License-Identifier: MIT

#include "settings_ui/kit/segmented_control.h"

#include "look/box.h"
#include "look/palette.h"
#include "look/pixel_grid.h"
#include "settings_ui/kit/kit.h"

#include <QColor>
#include <QPainter>
#include <QPalette>
#include <QPen>
#include <QRadioButton>
#include <QRectF>

#include <cstddef>
#include <utility>

namespace tessarel {

namespace {

/// Distance of the filled part of a segment with the keyboard focus from its edge, in device-independent
/// pixels. The ring and a gap lie between them.
constexpr double kFocusInset = 4;

/// One segment: a radio button for the keyboard and for screen readers, painted as a part of a bar.
class Segment : public QRadioButton {
public:
    /// The position in the bar, whose ends are rounded.
    enum class Place { First, Middle, Last };

    Segment(QWidget& parent, const QString& label, Place place)
        : QRadioButton(label, &parent), m_place(place) {
        setFont(systemFont(13));
    }

protected:
    /// Accepts clicks anywhere; a radio button would accept them only on its mark and its text.
    [[nodiscard]] bool hitButton(const QPoint& point) const override { return rect().contains(point); }
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRectF bar() const;
    [[nodiscard]] QColor fill() const;
    /// Paints a ring along the edge of the segment, and the segment smaller inside of it.
    void paintFocus(QPainter& painter) const;
    void paintSeparator(QPainter& painter) const;

    Place m_place;
};

/// Returns the box to paint in this segment. At an inner edge it extends beyond the segment, so that its
/// rounded corners are clipped.
QRectF Segment::bar() const {
    const double beyond = 2 * kCornerRadius;
    return QRectF(rect()).adjusted(m_place == Place::First ? 0 : -beyond, 0,
                                   m_place == Place::Last ? 0 : beyond, 0);
}

QColor Segment::fill() const {
    if (isChecked())
        return controlAccentColor(palette());
    const QColor button = palette().color(QPalette::Button);
    return isDown() ? button.darker(115) : button; // percent
}

void Segment::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const bool hasFocus = showsKeyboardFocus(*this);
    paintBox(
        painter, bar(),
        {.fill = hasFocus ? palette().color(QPalette::Button) : fill(), .line = separatorColor(palette())});
    if (hasFocus)
        paintFocus(painter);
    else if (m_place != Place::Last)
        paintSeparator(painter);
    painter.setPen(palette().color(isChecked() ? QPalette::HighlightedText : QPalette::ButtonText));
    painter.drawText(rect(), Qt::AlignCenter, text());
}

/// Paints the line to the next segment, without the ends that belong to the outline.
void Segment::paintSeparator(QPainter& painter) const {
    const PixelGrid grid(painter.deviceTransform());
    const double width = grid.wholeWidth(kOutlineWidth);
    const double x = grid.lineX(this->width() - width / 2, width);
    painter.setPen(QPen(separatorColor(palette()), width));
    painter.drawLine(QPointF(x, width), QPointF(x, height() - width));
}

void Segment::paintFocus(QPainter& painter) const {
    const QRectF all(rect());
    paintBox(painter, all, {.line = accentLine(palette()), .lineWidth = kFocusWidth});
    paintBox(painter, all.adjusted(kFocusInset, kFocusInset, -kFocusInset, -kFocusInset),
             {.fill = fill(), .radius = kCornerRadius / 2});
}

} // namespace

SegmentedControl::SegmentedControl(QWidget& parent, const QStringList& labels, const QRect& frame,
                                   const std::function<void()>& action)
    : QWidget(&parent) {
    setGeometry(frame);
    // Edges rather than equal widths: together the segments fill the frame exactly.
    const auto edge = [&](qsizetype i) { return static_cast<int>(i * frame.width() / labels.size()); };
    for (qsizetype i = 0; i < labels.size(); ++i) {
        const auto place = i == 0                   ? Segment::Place::First
                           : i + 1 == labels.size() ? Segment::Place::Last
                                                    : Segment::Place::Middle;
        auto* const segment = new Segment(*this, labels.at(i), place);
        segment->setGeometry(edge(i), 0, edge(i + 1) - edge(i), frame.height());
        m_segments.push_back(segment);
        connect(segment, &QRadioButton::clicked, this, action);
    }
    setSelectedSegment(0);
}

int SegmentedControl::selectedSegment() const {
    for (std::size_t i = 0; i < m_segments.size(); ++i)
        if (m_segments[i]->isChecked())
            return static_cast<int>(i);
    return 0;
}

void SegmentedControl::setSelectedSegment(int segment) {
    m_segments.at(static_cast<std::size_t>(segment))->setChecked(true);
}

} // namespace tessarel
