// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_editor_picture.h"

#include "model/presets.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/recorded_painting.h"
#include "support/offscreen_test.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <limits>

namespace tessarel {
namespace {

using What = Painted::What;

class ZoneEditorPictureTest : public qt::OffscreenTest {
protected:
    ZoneEditorPictureTest() {
        palette.setColor(QPalette::Base, QColor(250, 240, 230));
        palette.setColor(QPalette::Mid, QColor(10, 20, 30));
        palette.setColor(QPalette::Highlight, QColor(0, 100, 200));
        palette.setColor(QPalette::WindowText, QColor(50, 60, 70));
    }

    [[nodiscard]] ZoneEditorPicture picture() const { return {zones, selected, size, palette}; }

    void draw() {
        painting.painted.clear();
        QPainter painter(&painting);
        picture().draw(painter, QRectF(QPointF(), size));
    }

    QImage image(double scale) {
        QImage pixels((size * scale).toSize(), QImage::Format_RGB32);
        pixels.setDevicePixelRatio(scale);
        pixels.fill(Qt::magenta);
        QPainter painter(&pixels);
        picture().draw(painter, QRectF(QPointF(), size));
        return pixels;
    }

    static QColor faded(QColor color, double alpha) {
        color.setAlphaF(static_cast<float>(alpha));
        return color;
    }

    std::vector<Zone> zones = Presets::pad({Presets::z(0, 0, 50, 100), Presets::z(50, 0, 50, 50)});
    int selected = 0;
    QSizeF size{400, 200};
    QPalette palette;
    const QColor accent{0, 100, 200};
    RecordedPainting painting;
};

TEST_F(ZoneEditorPictureTest, TheBackgroundComesFirstAndTheFrameLast) {
    draw();

    const Painted& first = painting.painted.front();
    EXPECT_EQ(first.bounds, QRectF(0, 0, 400, 200));
    EXPECT_EQ(first.fill, palette.color(QPalette::Base));
    const Painted& last = painting.painted.back();
    EXPECT_EQ(last.bounds, QRectF(0.5, 0.5, 399, 199));
    EXPECT_EQ(last.stroke, palette.color(QPalette::Mid));
    EXPECT_EQ(last.strokeWidth, 1);
    EXPECT_EQ(last.join, Qt::MiterJoin) << "its corners are square";
    EXPECT_FALSE(last.fill.isValid());
}

TEST_F(ZoneEditorPictureTest, EverythingIsPaintedInOrder) {
    draw();

    std::vector<What> order;
    for (const Painted& one : painting.painted)
        if (order.empty() || order.back() != one.what)
            order.push_back(one.what);
    EXPECT_EQ(order, (std::vector{What::Rectangle, What::Line, What::Path, What::Text, What::Path, What::Text,
                                  What::Rectangle}))
        << "background, guides, each zone with its number, handles and frame";
}

TEST_F(ZoneEditorPictureTest, GuidesAreDashedLinesAtQuartersThirdsAndHalves) {
    draw();

    const std::vector<Painted> lines = painting.all(What::Line);
    ASSERT_EQ(lines.size(), 8U);
    const double xs[] = {100, 400.0 / 3, 200, 800.0 / 3, 300};
    const double ys[] = {50, 100, 150};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_NEAR(lines[i].bounds.x(), xs[i], 0.5);
        EXPECT_EQ(lines[i].bounds.height(), 200);
    }
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(lines[5 + i].bounds.y(), ys[i], 0.5);
        EXPECT_EQ(lines[5 + i].bounds.width(), 400);
    }
    for (const Painted& line : lines) {
        EXPECT_EQ(line.stroke, faded(palette.color(QPalette::Mid), 0.6));
        EXPECT_EQ(line.strokeWidth, 0.5);
        EXPECT_EQ(line.dashes, (QList<double>{3, 3}));
        EXPECT_EQ(line.cap, Qt::FlatCap) << "otherwise each dash would be longer by the line width";
    }
}

TEST_F(ZoneEditorPictureTest, ZonesAreInsetByOnePointAndTheSelectedOneStandsOut) {
    draw();

    const std::vector<Painted> shapes = painting.all(What::Path);
    ASSERT_EQ(shapes.size(), 2U);
    EXPECT_EQ(shapes[0].fill, faded(accent, 0.3));
    EXPECT_EQ(shapes[0].stroke, faded(accent, 1));
    EXPECT_EQ(shapes[0].strokeWidth, 2.5);
    EXPECT_EQ(shapes[1].fill, faded(accent, 0.14));
    EXPECT_EQ(shapes[1].stroke, faded(accent, 0.6));
    EXPECT_EQ(shapes[1].strokeWidth, 1.2);
    EXPECT_NEAR(shapes[1].bounds.left(), 201, 0.51);
    EXPECT_NEAR(shapes[1].bounds.right(), 399, 0.51);
    EXPECT_NEAR(shapes[1].bounds.top(), 1, 0.51);
    EXPECT_NEAR(shapes[1].bounds.bottom(), 99, 0.51);
}

TEST_F(ZoneEditorPictureTest, ZonesHaveRoundCornersOfSixPoints) {
    draw();

    for (const Painted& shape : painting.all(What::Path)) {
        QPainterPath rounded;
        rounded.addRoundedRect(shape.bounds, 6, 6);
        EXPECT_EQ(shape.path, rounded);
    }
}

TEST_F(ZoneEditorPictureTest, EverythingButTheFrameIsAntialiased) {
    draw();

    for (const What what : {What::Line, What::Path})
        for (const Painted& one : painting.all(what))
            EXPECT_TRUE(one.smooth);
    const std::vector<Painted> rectangles = painting.all(What::Rectangle);
    for (std::size_t handle = 1; handle + 1 < rectangles.size(); ++handle)
        EXPECT_TRUE(rectangles[handle].smooth);
    EXPECT_FALSE(rectangles.back().smooth);
}

TEST_F(ZoneEditorPictureTest, AZoneKeepsTheSameDistanceFromAllBorders) {
    zones = {Presets::z(0, 0, 100, 100)};
    draw();

    EXPECT_EQ(painting.all(What::Path)[0].bounds, QRectF(1.5, 1.5, 397, 197));
}

TEST_F(ZoneEditorPictureTest, ZonesAreNumberedFromOneAtTheirCorner) {
    draw();

    const std::vector<Painted> numbers = painting.all(What::Text);
    ASSERT_EQ(numbers.size(), 2U);
    const double ascent = QFontMetricsF(systemFont(22, QFont::DemiBold)).ascent();
    EXPECT_EQ(numbers[0].text, "1");
    EXPECT_EQ(numbers[1].text, "2");
    EXPECT_NEAR(numbers[1].bounds.x(), 211, 1e-6);
    EXPECT_NEAR(numbers[1].bounds.y(), 7 + ascent, 1e-6);
    for (const Painted& number : numbers) {
        EXPECT_EQ(number.fontSize, 22);
        EXPECT_EQ(number.fontWeight, QFont::DemiBold);
        EXPECT_EQ(number.stroke, faded(palette.color(QPalette::WindowText), 0.8));
    }
}

TEST_F(ZoneEditorPictureTest, TheSelectedZoneHasEightHandles) {
    selected = 1;
    draw();

    const std::vector<Painted> rectangles = painting.all(What::Rectangle);
    ASSERT_EQ(rectangles.size(), 1U + 8U + 1U) << "background, handles, frame";
    const QPointF centres[] = {{200, 0},  {300, 0},   {400, 0},   {200, 50},
                               {400, 50}, {200, 100}, {300, 100}, {400, 100}};
    for (std::size_t i = 0; i < 8; ++i) {
        const Painted& handle = rectangles[i + 1];
        EXPECT_EQ(handle.bounds.size(), QSizeF(8, 8));
        EXPECT_NEAR(handle.bounds.center().x(), centres[i].x(), 0.5);
        EXPECT_NEAR(handle.bounds.center().y(), centres[i].y(), 0.5);
        EXPECT_EQ(handle.fill, QColor(Qt::white));
        EXPECT_EQ(handle.stroke, accent);
        EXPECT_EQ(handle.strokeWidth, 1.5);
        EXPECT_EQ(handle.join, Qt::MiterJoin);
    }
}

TEST_F(ZoneEditorPictureTest, ADisabledZoneIsNotPainted) {
    zones[0].enabled = false;
    draw();

    EXPECT_EQ(painting.all(What::Path).size(), 1U);
    ASSERT_EQ(painting.all(What::Text).size(), 1U);
    EXPECT_EQ(painting.all(What::Text)[0].text, "2") << "the number is the position in the list";
    EXPECT_EQ(painting.all(What::Rectangle).size(), 2U) << "and a disabled selection has no handles";
}

TEST_F(ZoneEditorPictureTest, ASelectionOutOfRangeShowsNoZoneAsSelected) {
    for (const int beyond : {-1, 9, std::numeric_limits<int>::max()}) {
        selected = beyond;
        draw();
        EXPECT_EQ(painting.all(What::Rectangle).size(), 2U);
        for (const Painted& shape : painting.all(What::Path))
            EXPECT_EQ(shape.strokeWidth, 1.2);
    }
}

TEST_F(ZoneEditorPictureTest, LaterZonesLieAboveEarlierOnes) {
    zones = Presets::pad({Presets::z(0, 0, 100, 100), Presets::z(0, 0, 100, 100)});
    draw();

    EXPECT_EQ(painting.all(What::Path)[0].strokeWidth, 2.5);
    EXPECT_EQ(painting.all(What::Path)[1].strokeWidth, 1.2);
}

TEST_F(ZoneEditorPictureTest, AZoneWithoutRoomForItsInsetIsNotPainted) {
    zones = Presets::pad({Presets::z(10, 10, 0, 50)});
    selected = 8;
    draw();

    EXPECT_TRUE(painting.all(What::Path).empty());
    EXPECT_TRUE(painting.all(What::Text).empty());
}

TEST_F(ZoneEditorPictureTest, OnlyWhatIntersectsTheDirtyAreaIsPainted) {
    QPainter painter(&painting);
    picture().draw(painter, QRectF(210, 120, 10, 10));

    EXPECT_TRUE(painting.all(What::Path).empty());
    EXPECT_EQ(painting.painted.front().bounds, QRectF(210, 120, 10, 10));
    EXPECT_EQ(painting.all(What::Rectangle).size(), 2U) << "background and frame, but no handle";
}

TEST_F(ZoneEditorPictureTest, AHandleIsPaintedWhenItsStrokeIntersectsTheDirtyArea) {
    const auto handlesIn = [this](const QRectF& dirty) {
        painting.painted.clear();
        QPainter painter(&painting);
        picture().draw(painter, dirty);
        return painting.all(What::Rectangle).size() - 2;
    };

    // The handle in the middle of the right edge covers x 196 to 204 and y 96 to 104.
    EXPECT_EQ(handlesIn({205, 90, 20, 20}), 1U);
    EXPECT_EQ(handlesIn({206, 90, 20, 20}), 0U);
    EXPECT_EQ(handlesIn({175, 90, 20, 20}), 1U);
    EXPECT_EQ(handlesIn({174, 90, 20, 20}), 0U);
    EXPECT_EQ(handlesIn({190, 105, 20, 20}), 1U);
    EXPECT_EQ(handlesIn({190, 106, 20, 20}), 0U);
    EXPECT_EQ(handlesIn({190, 75, 20, 20}), 1U);
    EXPECT_EQ(handlesIn({190, 74, 20, 20}), 0U);
}

TEST_F(ZoneEditorPictureTest, AZoneIsPaintedOnlyInsideItsExtent) {
    for (const Zone& zone : {Presets::z(20, 20, 30, 30), Presets::z(20.13, 20.77, 2, 2),
                             Presets::z(33.33, 0, 66.67, 100), Presets::z(97, 97, 3, 3)}) {
        zones = {};
        const QImage without = image(1.25);
        zones = {zone};
        const QImage with = image(1.25);
        const QRectF extent = picture().extent(zone);
        for (int y = 0; y < with.height(); ++y)
            for (int x = 0; x < with.width(); ++x) {
                if (!extent.contains(QPointF(x + 0.5, y + 0.5) / 1.25)) {
                    ASSERT_EQ(with.pixel(x, y), without.pixel(x, y)) << x << ' ' << y;
                }
            }
    }
}

TEST_F(ZoneEditorPictureTest, TheFrameIsSharpAtEveryScale) {
    zones.clear();
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        const QImage pixels = image(scale);
        const int width = static_cast<int>(std::round(scale));
        const int y = pixels.height() * 3 / 5;
        for (int x = 0; x < width; ++x) {
            EXPECT_EQ(pixels.pixelColor(x, y), palette.color(QPalette::Mid)) << scale;
            EXPECT_EQ(pixels.pixelColor(pixels.width() - 1 - x, y), palette.color(QPalette::Mid)) << scale;
        }
        EXPECT_EQ(pixels.pixelColor(width, y), palette.color(QPalette::Base)) << scale;
        EXPECT_EQ(pixels.pixelColor(pixels.width() - 1 - width, y), palette.color(QPalette::Base)) << scale;
    }
}

TEST_F(ZoneEditorPictureTest, StraightEdgesHaveASharpCoreAtEveryScale) {
    zones = {Presets::z(33.33, 20, 33.34, 60)};
    selected = 8;
    const QColor stroke = [this] { // the stroke blended with the background
        const auto over = [](int above, int below, double alpha) {
            return alpha * above + (1 - alpha) * below;
        };
        const QColor base = palette.color(QPalette::Base);
        const auto mixed = [&](int above, int below) {
            return static_cast<int>(over(above, below, 0.6) + 0.5);
        };
        return QColor(mixed(accent.red(), base.red()), mixed(accent.green(), base.green()),
                      mixed(accent.blue(), base.blue()));
    }();
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        const QImage pixels = image(scale);
        const int y = static_cast<int>(90 * scale);
        int nearest = 1000;
        for (int x = static_cast<int>(130 * scale); x < static_cast<int>(140 * scale); ++x)
            nearest = std::min(nearest, std::abs(pixels.pixelColor(x, y).blue() - stroke.blue()) +
                                            std::abs(pixels.pixelColor(x, y).red() - stroke.red()));
        EXPECT_LE(nearest, 50) << scale;
    }
}

TEST_F(ZoneEditorPictureTest, ExtremeZonesAreClippedToThePicture) {
    constexpr double kHuge = std::numeric_limits<double>::max();
    zones = {{true, -1e12, -1e12, 2e12, 2e12},
             {true, std::nan(""), 0, 50, 50},
             {true, 0, 0, kHuge, kHuge},
             {true, -kHuge, 0, 50, 50},
             {true, 50, 50, -20, -20}};
    for (selected = 0; selected < 5; ++selected)
        draw();

    const std::vector<Painted> shapes = painting.all(What::Path);
    for (const Painted& shape : shapes) {
        EXPECT_LT(std::abs(shape.bounds.x()), 1000);
        EXPECT_LT(shape.bounds.width(), 1000);
    }
    EXPECT_EQ(image(1).pixelColor(390, 190), image(1).pixelColor(380, 130))
        << "the first zone fills both points";
}

} // namespace
} // namespace tessarel
