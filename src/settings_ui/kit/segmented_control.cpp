#include "settings_ui/kit/segmented_control.h"

#include "settings_ui/kit/kit.h"
#include "settings_ui/kit/pixel_grid.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPen>
#include <QRadioButton>
#include <QRectF>

#include <cmath>
#include <cstddef>
#include <utility>

namespace tessarel {

namespace {

// In device-independent pixels.
constexpr double kCornerRadius = 4;
constexpr double kFocusWidth = 2;
constexpr double kFocusInset = 3;

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
    [[nodiscard]] QRectF bar(double stroke) const;
    [[nodiscard]] QColor fill() const;
    /// Paints a frame inside the segment that shows the keyboard focus.
    void paintFocus(QPainter& painter) const;

    Place m_place;
};

/// Returns the outline to paint in this segment, for a line of width `stroke`. At an inner edge it extends
/// beyond the segment, so that its rounded corners are clipped.
QRectF Segment::bar(double stroke) const {
    QRectF area(rect());
    area.adjust(stroke / 2, stroke / 2, -stroke / 2, -stroke / 2);
    const double beyond = 2 * kCornerRadius;
    return area.adjusted(m_place == Place::First ? 0 : -beyond, 0, m_place == Place::Last ? 0 : beyond, 0);
}

QColor Segment::fill() const {
    if (isChecked())
        return controlAccentColor(palette());
    const QColor button = palette().color(QPalette::Button);
    return isDown() ? button.darker(115) : button; // percent
}

void Segment::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const PixelGrid grid(painter.deviceTransform());
    const double stroke = grid.wholeWidth(1);
    painter.setPen(QPen(separatorColor(palette()), stroke));
    painter.setBrush(fill());
    painter.drawRoundedRect(bar(stroke), kCornerRadius, kCornerRadius);
    // The line to the next segment, without the ends that belong to the outline.
    if (m_place != Place::Last) {
        const double x = grid.lineX(width() - stroke / 2, stroke);
        painter.drawLine(QPointF(x, stroke), QPointF(x, height() - stroke));
    }
    painter.setPen(palette().color(isChecked() ? QPalette::HighlightedText : QPalette::ButtonText));
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (hasFocus())
        paintFocus(painter);
}

void Segment::paintFocus(QPainter& painter) const {
    painter.setPen(QPen(palette().color(isChecked() ? QPalette::HighlightedText : QPalette::Highlight),
                        kFocusWidth / 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(kFocusInset, kFocusInset, -kFocusInset, -kFocusInset),
                            kCornerRadius / 2, kCornerRadius / 2);
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
