// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/outline_figures.h"

#include "support/offscreen_test.h"
#include "support/overlay_figures.h"

#include <QColor>
#include <QImage>
#include <QRegion>

#include <algorithm>

namespace tessarel::qt {
namespace {

constexpr Rect kZone{20, 30, 200, 160}; // its shape covers x 22 to 218 and y 32 to 188
constexpr QRect kWindow{0, 0, 400, 300};
const QColor kAccentColor(0x0a, 0x72, 0xe3);

class OutlineFiguresTest : public OffscreenTest {
protected:
    [[nodiscard]] static QImage painted(const OverlayFigure& figure, double scale = 1) {
        QImage image(kWindow.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        OutlineFigures(kWindow, scale).paint(painter, figure);
        return image;
    }

    [[nodiscard]] static QRegion region(const OverlayFigure& figure, double scale = 1) {
        return OutlineFigures(kWindow, scale).region(figure);
    }
};

TEST_F(OutlineFiguresTest, APlainZoneIsAThinRing) {
    const QRegion ring = region(zoneFigure(kZone));

    EXPECT_EQ(ring, QRegion(22, 32, 196, 156) - QRegion(25, 35, 190, 150));
}

TEST_F(OutlineFiguresTest, TheRingIsWhiteOutsideAndInTheAccentColorInside) {
    const QImage image = painted(zoneFigure(kZone));

    EXPECT_EQ(image.pixelColor(22, 110), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(23, 110), kAccentColor);
    EXPECT_EQ(image.pixelColor(24, 110), kAccentColor);
    EXPECT_EQ(image.pixelColor(25, 110).alpha(), 0);
}

TEST_F(OutlineFiguresTest, AHighlightedZoneHasAThickRing) {
    const QImage image = painted(zoneFigure(kZone, {}, true));

    EXPECT_EQ(image.pixelColor(22, 110), QColor(Qt::white));
    for (int x = 23; x < 29; ++x)
        EXPECT_EQ(image.pixelColor(x, 110), kAccentColor) << x;
}

TEST_F(OutlineFiguresTest, AHighlightedZoneIsHatchedWithALineEverySixPixels) {
    const QRegion zone = region(zoneFigure(kZone, {}, true));
    int lines = 0;
    int last = 0;
    for (int y = 39; y < 181; ++y) {
        if (!zone.contains(QPoint(120, y)))
            continue;
        EXPECT_TRUE(last == 0 || y - last == 6) << y;
        last = y;
        ++lines;
    }
    EXPECT_EQ(lines, 142 / 6);
}

TEST_F(OutlineFiguresTest, HatchLinesAlternateInColor) {
    const QImage image = painted(zoneFigure(kZone, {}, true));

    const QColor first = image.pixelColor(120, 44);
    const QColor second = image.pixelColor(120, 50);
    EXPECT_TRUE(first == kAccentColor || first == QColor(Qt::white));
    EXPECT_TRUE(second == kAccentColor || second == QColor(Qt::white));
    EXPECT_NE(first, second);
    EXPECT_EQ(image.pixelColor(120, 56), first);
}

TEST_F(OutlineFiguresTest, ALabelHasABadgeInTheMiddle) {
    const QRegion zone = region(zoneFigure(kZone, "3"));

    EXPECT_EQ(zone & QRegion(40, 50, 160, 120), QRegion(98, 88, 44, 44));
}

TEST_F(OutlineFiguresTest, TheBadgeIsDarkOrInTheAccentColorWhenHighlighted) {
    const QColor plain = painted(zoneFigure(kZone, "3")).pixelColor(101, 91);
    const QColor target = painted(zoneFigure(kZone, "3", true)).pixelColor(101, 91);

    EXPECT_LT(plain.lightness(), 80);
    EXPECT_EQ(target, kAccentColor);
    EXPECT_EQ(painted(zoneFigure(kZone, "3")).pixelColor(98, 88), QColor(Qt::white));
}

TEST_F(OutlineFiguresTest, AnotherAccentColourIsUsedWithADigitThatIsReadableOnIt) {
    QImage image(kWindow.size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);

    OutlineFigures(kWindow, 1, Qt::yellow).paint(painter, zoneFigure(kZone, "8", true));

    EXPECT_EQ(image.pixelColor(23, 110), QColor(Qt::yellow));
    EXPECT_EQ(image.pixelColor(101, 91), QColor(Qt::yellow));
    int darkest = 255;
    for (int y = 90; y < 130; ++y)
        for (int x = 100; x < 140; ++x)
            darkest = std::min(darkest, image.pixelColor(x, y).lightness());
    EXPECT_LT(darkest, 40);
}

TEST_F(OutlineFiguresTest, TheDigitIsWhiteAndCentredOnTheBadge) {
    const QImage image = painted(zoneFigure(kZone, "8"));
    QRect digit;
    for (int y = 90; y < 130; ++y)
        for (int x = 100; x < 140; ++x)
            if (image.pixelColor(x, y).lightness() > 200)
                digit |= QRect(x, y, 1, 1);

    EXPECT_NEAR(digit.center().x(), 120, 2);
    EXPECT_NEAR(digit.center().y(), 110, 3);
    EXPECT_GT(digit.height(), 15);
}

TEST_F(OutlineFiguresTest, ALongLabelGetsAWiderBadge) {
    const QRect badge = (region(zoneFigure(kZone, "1234567")) & QRegion(40, 50, 160, 120)).boundingRect();

    EXPECT_GT(badge.width(), 60);
    EXPECT_EQ(badge.height(), 44);
    EXPECT_NEAR(badge.center().x(), 120, 1);
}

TEST_F(OutlineFiguresTest, WithoutATextThereIsNoBadge) {
    EXPECT_FALSE(region(zoneFigure(kZone)).contains(QPoint(120, 110)));
}

TEST_F(OutlineFiguresTest, WithoutAShapeThereIsNoRing) {
    OverlayFigure figure = zoneFigure(kZone, "3", true);
    figure.shape = Rect::null();

    EXPECT_EQ(region(figure), QRegion(98, 88, 44, 44));
}

TEST_F(OutlineFiguresTest, TheRegionIsExactlyWhatIsPainted) {
    for (const double scale : {1.0, 2.0}) {
        for (const bool highlighted : {false, true}) {
            const OverlayFigure figure = zoneFigure({-30, 30, 250, 400}, "12", highlighted);
            const QImage image = painted(figure, scale);
            const QRegion zone = region(figure, scale);
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    ASSERT_EQ(zone.contains(QPoint(x, y)), image.pixelColor(x, y).alpha() == 255)
                        << x << ' ' << y;
        }
    }
}

TEST_F(OutlineFiguresTest, TheExtentContainsTheRegion) {
    for (const auto& figure : {zoneFigure(kZone, "3", true), zoneFigure({100, 100, 40, 40}, "123")}) {
        const QRect extent = OutlineFigures(kWindow, 1).extent(figure);
        EXPECT_TRUE((region(figure) - extent).isEmpty());
    }
}

TEST_F(OutlineFiguresTest, TheScaleAppliesToLinesButNotToPositions) {
    EXPECT_EQ(region(zoneFigure(kZone), 2), QRegion(22, 32, 196, 156) - QRegion(28, 38, 184, 144));
    EXPECT_EQ(region(zoneFigure(kZone, "3"), 2).boundingRect(), QRect(22, 32, 196, 156));
}

TEST_F(OutlineFiguresTest, AZoneThinnerThanItsRingIsAllRing) {
    EXPECT_EQ(region(zoneFigure({20, 30, 12, 160}, {}, true)), QRegion(22, 32, 8, 156));
}

TEST_F(OutlineFiguresTest, AHugeZoneIsClippedToTheWindow) {
    const QRegion zone = region(zoneFigure({-5e5, -5e5, 1e6, 1e6}, {}, true));

    EXPECT_LE(zone.rectCount(), kWindow.height() / 6 + 1);
    EXPECT_TRUE(kWindow.contains(zone.boundingRect()));
}

TEST_F(OutlineFiguresTest, TheHatchDoesNotShiftWhenItsTopIsClipped) {
    const OverlayFigure figure = zoneFigure({20, -100, 200, 300}, {}, true);
    const QRegion all = OutlineFigures(QRect(0, -200, 400, 500), 1).region(figure);

    EXPECT_EQ(region(figure), all & kWindow);
}

} // namespace
} // namespace tessarel::qt
