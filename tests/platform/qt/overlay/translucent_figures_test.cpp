// SPDX-License-Identifier: MIT

#include "platform/qt/overlay/translucent_figures.h"

#include "support/offscreen_test.h"
#include "support/overlay_figures.h"

#include <QColor>
#include <QImage>

#include <algorithm>
#include <string>
#include <vector>

namespace tessarel::qt {
namespace {

constexpr Rect kZone{20, 30, 200, 160};
const QColor kAccentColor(0x1a, 0x63, 0xd2); // unlike the default

class TranslucentFiguresTest : public OffscreenTest {
protected:
    [[nodiscard]] QImage painted(const std::vector<OverlayFigure>& list, double scale = 1) {
        QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        for (const OverlayFigure& figure : list)
            figures.paint(painter, figure, scale);
        return image;
    }

    TranslucentFigures figures{kAccentColor};
};

/// Expects the accent colour at `alpha` over a transparent background, within rounding of the premultiplied
/// value.
void expectAccent(const QColor& color, double alpha) {
    EXPECT_NEAR(color.alphaF(), alpha, 0.005);
    const QRgb premultiplied = qPremultiply(color.rgba());
    EXPECT_NEAR(qRed(premultiplied), kAccentColor.red() * alpha, 1.5);
    EXPECT_NEAR(qGreen(premultiplied), kAccentColor.green() * alpha, 1.5);
    EXPECT_NEAR(qBlue(premultiplied), kAccentColor.blue() * alpha, 1.5);
}

/// Returns the opacity of two layers above each other.
double over(double lower, double upper) {
    return 1 - (1 - lower) * (1 - upper);
}

/// Returns the bounding rectangle of all pixels that are not fully transparent.
QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) != 0)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

OverlayFigure onlyLabel(OverlayFigure figure) {
    figure.shape = Rect::null();
    return figure;
}

TEST_F(TranslucentFiguresTest, APlainZoneIsFilledFaintly) {
    const QImage image = painted({zoneFigure(kZone)});

    expectAccent(image.pixelColor(120, 110), 0.1);
    expectAccent(image.pixelColor(26, 110), 0.1);
}

TEST_F(TranslucentFiguresTest, AHighlightedZoneIsFilledStrongly) {
    const QImage image = painted({zoneFigure(kZone, {}, true)});

    expectAccent(image.pixelColor(120, 110), 0.35);
    expectAccent(image.pixelColor(26, 110), 0.35);
}

TEST_F(TranslucentFiguresTest, TheLineOfAHighlightedZoneIsThreePixelsWideAroundTheInsetShape) {
    const QImage image = painted({zoneFigure(kZone, {}, true)});

    // The line is from 20.5 to 23.5: half of it outside the shape, which begins at 22, and half over its
    // fill.
    EXPECT_NEAR(image.pixelColor(20, 110).alphaF(), 0.95 / 2, 0.01);
    EXPECT_NEAR(image.pixelColor(21, 110).alphaF(), 0.95, 0.01);
    expectAccent(image.pixelColor(22, 110), over(0.35, 0.95));
    EXPECT_NEAR(image.pixelColor(23, 110).alphaF(), over(0.35, 0.95 / 2), 0.01);
    expectAccent(image.pixelColor(24, 110), 0.35);
    EXPECT_EQ(image.pixelColor(19, 110).alpha(), 0);
}

TEST_F(TranslucentFiguresTest, TheLineOfAPlainZoneIsOneAndAHalfPixelsWide) {
    const QImage image = painted({zoneFigure(kZone)});

    // The line is from 21.25 to 22.75.
    EXPECT_EQ(image.pixelColor(20, 110).alpha(), 0);
    EXPECT_NEAR(image.pixelColor(21, 110).alphaF(), 0.45 * 0.75, 0.01);
    EXPECT_NEAR(image.pixelColor(22, 110).alphaF(), over(0.1, 0.45 * 0.75), 0.01);
    expectAccent(image.pixelColor(23, 110), 0.1);
}

TEST_F(TranslucentFiguresTest, AllFourSidesHaveTheSameLine) {
    const QImage image = painted({zoneFigure(kZone, {}, true)});
    const QColor left = image.pixelColor(22, 110);

    EXPECT_EQ(image.pixelColor(120, 32), left);
    EXPECT_EQ(image.pixelColor(217, 110), left);
    EXPECT_EQ(image.pixelColor(120, 187), left);
}

TEST_F(TranslucentFiguresTest, CornersHaveARadiusOfTenPixels) {
    const QImage image = painted({zoneFigure(kZone, {}, true)});

    // The corner of the shape is at (22, 32), the centre of the arc at (32, 42), its middle at 32 - 10 /
    // sqrt(2).
    EXPECT_EQ(image.pixelColor(22, 32).alpha(), 0);
    EXPECT_LT(image.pixelColor(23, 33).alphaF(), 0.02);
    EXPECT_GT(image.pixelColor(24, 34).alphaF(), 0.8);
    EXPECT_GT(image.pixelColor(25, 35).alphaF(), 0.8);
    expectAccent(image.pixelColor(27, 37), 0.35);
    EXPECT_GT(image.pixelColor(22, 43).alphaF(), 0.9);
}

TEST_F(TranslucentFiguresTest, NothingIsPaintedOutsideOfTheZone) {
    const QRect ink = inkOf(painted({zoneFigure(kZone, "7", true)}));

    EXPECT_EQ(ink, QRect(20, 30, 200, 160));
}

TEST_F(TranslucentFiguresTest, ALaterZonePaintsOverAnEarlierOne) {
    const OverlayFigure plain = zoneFigure(kZone);
    const OverlayFigure target = zoneFigure({120, 30, 200, 160}, {}, true);

    expectAccent(painted({plain, target}).pixelColor(180, 60), over(0.1, 0.35));
    const QColor targetLast = painted({plain, target}).pixelColor(218, 60);
    const QColor plainLast = painted({target, plain}).pixelColor(218, 60);
    EXPECT_NE(targetLast, QColor(Qt::transparent));
    EXPECT_NEAR(targetLast.alphaF(), plainLast.alphaF(), 0.01);
}

TEST_F(TranslucentFiguresTest, TheLabelOfALaterZoneIsNotCovered) {
    const OverlayFigure first = zoneFigure(kZone, "1");
    const OverlayFigure second = onlyLabel(zoneFigure(kZone, "1", true));
    const QImage image = painted({second});
    int brightest = 0;
    for (int x = 0; x < image.width(); ++x)
        brightest = std::max(brightest, image.pixelColor(x, 110).alpha());

    const QImage both = painted({first, second});

    ASSERT_NEAR(brightest / 255.0, 0.95, 0.01);
    bool isWhite = false;
    for (int x = 0; x < both.width(); ++x)
        isWhite = isWhite || qRed(both.pixel(x, 110)) > 240;
    EXPECT_TRUE(isWhite);
}

TEST_F(TranslucentFiguresTest, TwoZonesOfTheSameFrameAreBothPainted) {
    const QImage image = painted({zoneFigure(kZone), zoneFigure(kZone)});

    expectAccent(image.pixelColor(120, 60), over(0.1, 0.1));
}

TEST_F(TranslucentFiguresTest, TheLabelIsCentred) {
    const QRect ink = inkOf(painted({onlyLabel(zoneFigure(kZone, "8", true))}));

    EXPECT_NEAR(ink.center().x(), 120, 2);
    EXPECT_NEAR(ink.center().y(), 110, 4); // the line has room for descenders
}

TEST_F(TranslucentFiguresTest, TheLabelIsWhiteWithTheAlphaOfItsZone) {
    for (const bool highlighted : {false, true}) {
        const QImage image = painted({onlyLabel(zoneFigure(kZone, "1", highlighted))});
        double most = 0;
        for (int x = 100; x < 140; ++x)
            if (const QColor color = image.pixelColor(x, 110); color.red() > 250)
                most = std::max(most, static_cast<double>(color.alphaF()));
        EXPECT_NEAR(most, highlighted ? 0.95 : 0.6, 0.01);
    }
}

TEST_F(TranslucentFiguresTest, ALabelIsReadableOnWhite) {
    QImage desktop(400, 300, QImage::Format_RGB32);
    desktop.fill(Qt::white);
    QPainter(&desktop).drawImage(0, 0, painted({onlyLabel(zoneFigure(kZone, "8"))}));
    int darkest = 255;
    for (int x = 100; x < 140; ++x)
        darkest = std::min(darkest, qGray(desktop.pixel(x, 110)));

    EXPECT_LT(darkest, 190);
    EXPECT_GT(darkest, 140);
}

TEST_F(TranslucentFiguresTest, WithoutATextThereIsNoLabel) {
    EXPECT_TRUE(inkOf(painted({onlyLabel(zoneFigure(kZone))})).isEmpty());
}

TEST_F(TranslucentFiguresTest, TheScaleAppliesToLabelsButNotToShapes) {
    const QRect atOne = inkOf(painted({onlyLabel(zoneFigure(kZone, "8"))}));
    const QRect atTwo = inkOf(painted({onlyLabel(zoneFigure(kZone, "8"))}, 2));

    EXPECT_NEAR(atTwo.height(), 2 * atOne.height(), 3);
    EXPECT_EQ(inkOf(painted({zoneFigure(kZone)}, 2)), inkOf(painted({zoneFigure(kZone)})));
}

TEST_F(TranslucentFiguresTest, TheExtentContainsEverythingPainted) {
    for (const auto& figure : {zoneFigure(kZone, "8"), zoneFigure({100, 100, 40, 40}, "888888", true)}) {
        const QRect extent = figures.extent(figure, 1);
        EXPECT_TRUE(extent.contains(inkOf(painted({figure}))));
    }
}

TEST_F(TranslucentFiguresTest, AZoneFarBeyondTheWindowIsClipped) {
    const QImage image = painted({zoneFigure({-1e6, -1e6, 1e6 + 100, 1e6 + 100}, "1", true)});

    expectAccent(image.pixelColor(50, 50), 0.35);
    EXPECT_EQ(image.pixelColor(120, 50).alpha(), 0);
}

TEST_F(TranslucentFiguresTest, PaintingOnAnEmptyBackgroundGivesTheSamePixels) {
    for (const Rect& zone : {kZone, Rect{20, 30, 40, 12}, Rect{20.5, 30.25, 200, 160}}) {
        const OverlayFigure figure = zoneFigure(zone, "1", true);
        QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        figures.paint(painter, figure, 1, true);
        painter.end();

        EXPECT_EQ(image, painted({figure}));
    }
}

TEST_F(TranslucentFiguresTest, TheFastPathMatchesARoundedRectangle) {
    for (const bool highlighted : {false, true}) {
        const OverlayFigure figure = zoneFigure(kZone, {}, highlighted);
        QImage expected(400, 300, QImage::Format_ARGB32_Premultiplied);
        expected.fill(Qt::transparent);
        QPainter painter(&expected);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor color(0x0a, 0x72, 0xe3);
        color.setAlphaF(static_cast<float>(figure.fillAlpha));
        painter.setBrush(color);
        color.setAlphaF(static_cast<float>(figure.strokeAlpha));
        painter.setPen(QPen(color, figure.strokeWidth));
        painter.drawRoundedRect(QRectF(22, 32, 196, 156), 10, 10);
        painter.end();

        const QImage image = painted({figure});

        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                ASSERT_NEAR(qAlpha(image.pixel(x, y)), qAlpha(expected.pixel(x, y)), 8) << x << ' ' << y;
    }
}

TEST_F(TranslucentFiguresTest, AZoneAtFractionalPixelsIsFilledCompletely) {
    const QImage image = painted({zoneFigure({20.5, 30.5, 200, 160}, {}, true)});

    for (int y = 35; y < 185; ++y)
        expectAccent(image.pixelColor(120, y), 0.35);
}

TEST_F(TranslucentFiguresTest, ManyDifferentLabelsAreAllPainted) {
    for (int number = 0; number < 200; ++number)
        EXPECT_FALSE(inkOf(painted({onlyLabel(zoneFigure(kZone, std::to_string(number)))})).isEmpty());
}

} // namespace
} // namespace tessarel::qt
