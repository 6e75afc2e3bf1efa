// SPDX-License-Identifier: MIT

#include "look/contrast.h"
#include "platform/qt_x11/tray/status_symbols.h"

#include <QApplication>
#include <QColor>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QSize>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>

namespace tessarel::qt {
namespace {

using status_symbols::Appearance;

constexpr std::array kNames = {"rectangle.3.group", "square.grid.2x2", "rectangle.split.3x1"};
constexpr std::array kSizes = {16, 22, 24, 32, 48};

class StatusSymbolsTest : public testing::Test {
protected:
    static void SetUpTestSuite() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

    static QImage image(const QIcon& icon, int size) {
        return icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
    }

    /// Returns the share of pixels that differ clearly from a panel of this colour.
    static double visibleShare(const QIcon& icon, int size, const QColor& panel) {
        QImage painted(size, size, QImage::Format_ARGB32);
        painted.fill(panel);
        QPainter(&painted).drawImage(0, 0, image(icon, size));
        constexpr int kClearly = 96;
        int visible = 0;
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x)
                visible += std::abs(qGray(painted.pixel(x, y)) - qGray(panel.rgb())) >= kClearly ? 1 : 0;
        return static_cast<double>(visible) / (size * size);
    }

    /// Returns the brightest opaque colour.
    static QColor brightest(const QImage& picture) {
        QRgb found = qRgb(0, 0, 0);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (const QRgb pixel = picture.pixel(x, y);
                    qAlpha(pixel) == 255 && qGray(pixel) > qGray(found))
                    found = pixel;
        return found;
    }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    QApplication application{argumentCount, arguments.data()};
};

TEST_F(StatusSymbolsTest, TheThreeSymbolsExistInEverySize) {
    for (const char* name : kNames) {
        ASSERT_TRUE(status_symbols::exists(name));
        const QIcon icon = status_symbols::symbol(name, Appearance::Normal);
        for (const int size : kSizes)
            EXPECT_TRUE(icon.availableSizes().contains(QSize(size, size))) << name << " " << size;
    }
}

TEST_F(StatusSymbolsTest, NoOtherSymbolExists) {
    for (const char* name : {"", "rectangle", "rectangle.3.group ", "Rectangle.3.group"}) {
        EXPECT_FALSE(status_symbols::exists(name)) << name;
        EXPECT_TRUE(status_symbols::symbol(name, Appearance::Normal).isNull()) << name;
    }
}

TEST_F(StatusSymbolsTest, SymbolsAreReadableOnLightAndDarkPanels) {
    for (const char* name : kNames)
        for (const int size : kSizes)
            for (const auto panel : {Qt::white, Qt::black}) {
                const QIcon icon = status_symbols::symbol(name, Appearance::Normal);
                EXPECT_GT(visibleShare(icon, size, panel), 0.15) << name << " " << size << " " << panel;
            }
}

TEST_F(StatusSymbolsTest, TextIsReadableOnLightAndDarkPanels) {
    const QIcon icon = status_symbols::text("TS", Appearance::Normal);

    for (const int size : kSizes)
        for (const auto panel : {Qt::white, Qt::black})
            EXPECT_GT(visibleShare(icon, size, panel), 0.1) << size << " " << panel;
}

TEST_F(StatusSymbolsTest, SymbolsDifferFromEachOtherAtEverySize) {
    for (const int size : kSizes) {
        std::array<QImage, kNames.size()> pictures;
        for (std::size_t i = 0; i < kNames.size(); ++i)
            pictures[i] = image(status_symbols::symbol(kNames[i], Appearance::Normal), size);
        EXPECT_NE(pictures[0], pictures[1]);
        EXPECT_NE(pictures[1], pictures[2]);
        EXPECT_NE(pictures[0], pictures[2]);
    }
}

TEST_F(StatusSymbolsTest, ADisabledIconHasTheShapeOfTheNormalOne) {
    for (const int size : kSizes) {
        const QImage normal = image(status_symbols::symbol(kNames[0], Appearance::Normal), size);
        const QImage dimmed = image(status_symbols::symbol(kNames[0], Appearance::Disabled), size);
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x)
                ASSERT_EQ(qAlpha(dimmed.pixel(x, y)), qAlpha(normal.pixel(x, y)));
    }
}

TEST_F(StatusSymbolsTest, ADisabledIconIsDimmedButStandsOutFromLightAndDarkPanels) {
    const std::array icons = {status_symbols::symbol(kNames[0], Appearance::Disabled),
                              status_symbols::text("TS", Appearance::Disabled)};
    for (const QIcon& icon : icons)
        for (const int size : kSizes) {
            const QColor glyph = brightest(image(icon, size));
            // From black to a dark grey, and from a light grey to white.
            for (const QColor panel :
                 {QColor("#000000"), QColor("#303030"), QColor("#eaeaea"), QColor("#ffffff")})
                EXPECT_GE(contrast(glyph, panel), kOutlineContrast) << size << panel.name().toStdString();
            EXPECT_LT(qGray(glyph.rgb()), 0xc0) << size;
        }
}

TEST_F(StatusSymbolsTest, AnEmptyTextGivesANullIcon) {
    EXPECT_TRUE(status_symbols::text("", Appearance::Normal).isNull());
}

TEST_F(StatusSymbolsTest, AnyTextKeepsItsEdgeWithinTheIcon) {
    for (const QString& text : {QString("T"), QString("A much longer title"), QString("   ")})
        for (const int size : kSizes) {
            const QImage picture = image(status_symbols::text(text, Appearance::Normal), size);
            for (int i = 0; i < size; ++i)
                for (const QPoint border :
                     {QPoint(0, i), QPoint(size - 1, i), QPoint(i, 0), QPoint(i, size - 1)})
                    EXPECT_LT(qGray(picture.pixel(border)), 0x80) << text.toStdString() << " " << size;
        }
}

} // namespace
} // namespace tessarel::qt
