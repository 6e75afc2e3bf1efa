#include "settings_ui/zone_editor_pixels.h"

#include "model/presets.h"
#include "support/long_run.h"
#include "support/offscreen_test.h"

#include <QPainter>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>

namespace tessarel {
namespace {

/// Of 255: so far may translucent lines differ that lie above each other.
constexpr int kHardlySeen = 3;

/// How far apart the colours of two pictures are, at most.
int distance(const QImage& one, const QImage& other) {
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        const auto* const firsts = reinterpret_cast<const QRgb*>(one.constScanLine(y));
        const auto* const seconds = reinterpret_cast<const QRgb*>(other.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            const QRgb first = firsts[x];
            const QRgb second = seconds[x];
            if (first != second) // most are equal, and under the sanitizers each look costs
                largest = std::max({largest, std::abs(qRed(first) - qRed(second)),
                                    std::abs(qGreen(first) - qGreen(second)),
                                    std::abs(qBlue(first) - qBlue(second))});
        }
    }
    return largest;
}

/// The editor in a window, painted in several ways.
class ZoneEditorPixelsTest : public qt::OffscreenTest {
protected:
    using Paint = std::function<void(QPainter&, const QRectF& dirty)>;

    [[nodiscard]] ZoneEditorPicture picture() const { return {zones, selected, size, palette}; }
    [[nodiscard]] QRectF whole() const { return {QPointF(), size}; }

    [[nodiscard]] QImage window(const QRectF& dirty, const Paint& paint) const {
        QImage pixels(((size + QSizeF(60, 60)) * scale).toSize(), QImage::Format_RGB32);
        pixels.setDevicePixelRatio(scale);
        pixels.fill(Qt::magenta);
        QPainter painter(&pixels);
        painter.translate(origin);
        painter.setClipRect(dirty);
        paint(painter, dirty);
        return pixels;
    }
    [[nodiscard]] QImage withKeptPixels(const QRectF& dirty) {
        return window(dirty,
                      [this](QPainter& painter, const QRectF& part) { kept.draw(painter, picture(), part); });
    }
    [[nodiscard]] QImage withFreshPixels(const QRectF& dirty) const {
        return window(dirty, [this](QPainter& painter, const QRectF& part) {
            ZoneEditorPixels().draw(painter, picture(), part);
        });
    }
    [[nodiscard]] QImage asOrdered(const QRectF& dirty) const {
        return window(dirty,
                      [this](QPainter& painter, const QRectF& part) { picture().draw(painter, part); });
    }

    void expectKeptPixelsAreRight() { EXPECT_EQ(withKeptPixels(whole()), withFreshPixels(whole())); }

    std::vector<Zone> zones =
        Presets::pad({Presets::z(0, 0, 50, 100), Presets::z(50, 0, 50, 50), Presets::z(40, 30, 40, 50)});
    int selected = 1;
    QSizeF size{500, 312};
    double scale = 1;
    QPointF origin{34, 18};
    QPalette palette;
    ZoneEditorPixels kept;
};

TEST_F(ZoneEditorPixelsTest, AtEveryScaleTheyLookLikeThePicture) {
    for (scale = 1; scale <= 2; scale += 0.25)
        for (origin = QPointF(33, 17); origin.x() < 35; origin += QPointF(1, 1))
            for (selected = -1; selected < 4; ++selected)
                EXPECT_LE(distance(withFreshPixels(whole()), asOrdered(whole())), kHardlySeen)
                    << "at scale " << scale << ", zone " << selected;
}

TEST_F(ZoneEditorPixelsTest, ZonesOfEverySizeLookLikeThePicture) {
    for (const double extent : {0.0, 0.3, 1.0, 2.0, 4.0, 7.5, 12.0, 33.33, 99.99, 100.0, 150.0}) {
        zones = {Presets::z(0, 0, extent, 50), Presets::z(20, 20, 40, extent)};
        for (selected = 0; selected < 2; ++selected)
            EXPECT_LE(distance(withFreshPixels(whole()), asOrdered(whole())), kHardlySeen) << extent;
    }
}

TEST_F(ZoneEditorPixelsTest, WhateverChangesThePixelsAreRight) {
    expectKeptPixelsAreRight();
    zones[0].w = 40;
    expectKeptPixelsAreRight();
    zones[2].enabled = false;
    expectKeptPixelsAreRight();
    zones[1].enabled = false;
    expectKeptPixelsAreRight();
    for (selected = 8; selected >= -1; --selected)
        expectKeptPixelsAreRight();
    palette.setColor(QPalette::Base, Qt::darkGreen);
    expectKeptPixelsAreRight();
    palette.setColor(QPalette::Highlight, Qt::yellow);
    expectKeptPixelsAreRight();
    size = QSizeF(300, 200);
    expectKeptPixelsAreRight();
    scale = 2;
    expectKeptPixelsAreRight();
    zones.clear();
    expectKeptPixelsAreRight();
}

TEST_F(ZoneEditorPixelsTest, TheyCanBeDroppedAtAnyTime) {
    kept.drop();
    expectKeptPixelsAreRight();
    kept.drop();
    expectKeptPixelsAreRight();
}

TEST_F(ZoneEditorPixelsTest, NothingIsPaintedWithoutASize) {
    size = QSizeF(0, 0);

    EXPECT_EQ(withFreshPixels(whole()).pixelColor(34, 18), QColor(Qt::magenta));
}

TEST_F(ZoneEditorPixelsTest, AbsurdZonesArePaintedLikeThePicture) {
    constexpr double kHuge = std::numeric_limits<double>::max();
    zones = {{true, -1e12, -1e12, 2e12, 2e12},
             {true, std::numeric_limits<double>::quiet_NaN(), 0, 50, 50},
             {true, 0, 0, kHuge, kHuge},
             {true, 50, 50, -20, -20}};
    for (selected = 0; selected < 4; ++selected)
        EXPECT_LE(distance(withFreshPixels(whole()), asOrdered(whole())), kHardlySeen) << selected;
}

TEST_F(ZoneEditorPixelsTest, WhateverIsDraggedKeptPixelsAreThoseOfAFreshPicture) {
    std::mt19937 random(7);
    const auto upTo = [&random](int last) { return std::uniform_int_distribution(0, last)(random); };
    for (int session = 0; session < rounds(10, 200); ++session) {
        scale = 1 + 0.25 * (session % 5);
        zones.clear();
        for (int i = 0; i < 9; ++i)
            zones.push_back({upTo(3) != 0, upTo(9000) / 100.0, upTo(9000) / 100.0, upTo(6000) / 100.0,
                             upTo(6000) / 100.0});
        selected = upTo(8);
        for (int event = 0; event < 8; ++event) {
            Zone& dragged = zones[static_cast<std::size_t>(selected)];
            const QRectF before = picture().extent(dragged);
            (event % 2 == 0 ? dragged.x : dragged.h) = upTo(9000) / 100.0;
            const QRectF dirty(before.united(picture().extent(dragged)).toAlignedRect());
            ASSERT_EQ(withKeptPixels(dirty), withFreshPixels(dirty)) << "session " << session;
        }
    }
}

} // namespace
} // namespace tessarel
