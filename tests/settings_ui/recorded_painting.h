// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QRectF>
#include <QString>

#include <vector>

namespace tessarel {

/// A recorded paint operation: a line, a rectangle, a path or a text.
struct Painted {
    enum class What { Line, Rectangle, Path, Text };

    What what = What::Rectangle;
    QRectF bounds;     ///< of the outline; for a text its origin on the baseline, with no size
    QPainterPath path; ///< only for a path
    QColor fill;       ///< invalid when nothing is filled
    QColor stroke;     ///< invalid when nothing is stroked; for a text its colour
    double strokeWidth = 0;
    QList<double> dashes; ///< in points; empty for a solid line
    Qt::PenCapStyle cap = Qt::SquareCap;
    Qt::PenJoinStyle join = Qt::BevelJoin;
    bool smooth = false; ///< with antialiasing
    QString text;
    int fontSize = 0;
    int fontWeight = 0;
};

/// A paint device without pixels that records the paint operations in order.
class RecordedPainting : public QPaintDevice {
public:
    std::vector<Painted> painted;

    [[nodiscard]] QPaintEngine* paintEngine() const override { return &m_engine; }

    /// Returns the operations of one kind, in order.
    [[nodiscard]] std::vector<Painted> all(Painted::What what) const {
        std::vector<Painted> some;
        for (const Painted& one : painted)
            if (one.what == what)
                some.push_back(one);
        return some;
    }

protected:
    [[nodiscard]] int metric(PaintDeviceMetric which) const override {
        switch (which) {
        case PdmWidth:
        case PdmHeight:
            return 4096;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        default:
            return 96;
        }
    }

private:
    class Engine : public QPaintEngine {
    public:
        explicit Engine(RecordedPainting& painting) : QPaintEngine(AllFeatures), m_painting(painting) {}

        bool begin(QPaintDevice* /*device*/) override { return true; }
        bool end() override { return true; }
        [[nodiscard]] Type type() const override { return User; }
        void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}

        void updateState(const QPaintEngineState& changed) override {
            if (changed.state() & DirtyPen)
                m_pen = changed.pen();
            if (changed.state() & DirtyBrush)
                m_brush = changed.brush();
            if (changed.state() & DirtyHints)
                m_hints = changed.renderHints();
        }
        void drawLines(const QLineF* lines, int count) override {
            for (int i = 0; i < count; ++i)
                add(Painted::What::Line, QRectF(lines[i].p1(), lines[i].p2()), {});
        }
        void drawRects(const QRectF* rects, int count) override {
            for (int i = 0; i < count; ++i)
                add(Painted::What::Rectangle, rects[i], m_brush);
        }
        void drawPath(const QPainterPath& path) override {
            add(Painted::What::Path, path.boundingRect(), m_brush);
            m_painting.painted.back().path = path;
        }
        void drawTextItem(const QPointF& origin, const QTextItem& item) override {
            Painted one;
            one.what = Painted::What::Text;
            one.bounds = QRectF(origin, QSizeF());
            one.stroke = m_pen.color();
            one.text = item.text();
            one.fontSize = item.font().pixelSize();
            one.fontWeight = item.font().weight();
            m_painting.painted.push_back(one);
        }

    private:
        void add(Painted::What what, const QRectF& bounds, const QBrush& brush) {
            Painted one;
            one.what = what;
            one.bounds = bounds;
            one.smooth = m_hints.testFlag(QPainter::Antialiasing);
            if (brush.style() != Qt::NoBrush)
                one.fill = brush.color();
            if (m_pen.style() != Qt::NoPen) {
                one.stroke = m_pen.color();
                one.strokeWidth = m_pen.widthF();
                one.cap = m_pen.capStyle();
                one.join = m_pen.joinStyle();
                for (const double dash : m_pen.dashPattern())
                    one.dashes.append(dash * m_pen.widthF());
            }
            m_painting.painted.push_back(one);
        }

        RecordedPainting& m_painting;
        QPen m_pen;
        QBrush m_brush;
        QPainter::RenderHints m_hints;
    };

    mutable Engine m_engine{*this};
};

} // namespace tessarel
