// SPDX-License-Identifier: MIT

#include "icon.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLatin1String>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace tessarel {
namespace {

class IconTest : public testing::TestWithParam<int> {
protected:
    /// Returns the colour at a fraction of the icon's width and height.
    [[nodiscard]] QColor at(double x, double y) const {
        return icon.pixelColor(static_cast<int>(x * icon.width()), static_cast<int>(y * icon.height()));
    }

    QImage icon = drawIcon(GetParam());
};

TEST_P(IconTest, ItHasTheRequestedSize) {
    EXPECT_EQ(icon.size(), QSize(GetParam(), GetParam()));
}

TEST_P(IconTest, ThePlateLeavesAMargin) {
    EXPECT_EQ(at(0, 0).alpha(), 0);
    EXPECT_EQ(at(0.5, 0.03).alpha(), 0);
    EXPECT_EQ(at(0.12, 0.12).alpha(), 0) << "its corners are round";
    EXPECT_EQ(at(0.5, 0.17).alpha(), 255);
}

TEST_P(IconTest, ItShowsThreeTiles) {
    const QColor main = at(0.35, 0.5);
    EXPECT_GT(main.blue(), main.red() + 100) << "in the colour of the zone that takes the window";
    EXPECT_GT(at(0.65, 0.35).lightness(), 200);
    EXPECT_GT(at(0.65, 0.65).lightness(), 200);
}

INSTANTIATE_TEST_SUITE_P(Sizes, IconTest, testing::Values(16, 32, 128, 1024));

/// Runs draw_icon and returns whether it has succeeded.
bool draws(const QStringList& arguments) {
    return QProcess::execute(QStringLiteral(TESSAREL_DRAW_ICON), arguments) == 0;
}

TEST(DrawIconTest, TheSetHasEverySizeUnderItsExpectedName) {
    const QTemporaryDir scratch;
    const QString folder = scratch.filePath(QStringLiteral("Tessarel.iconset"));

    ASSERT_TRUE(draws({QStringLiteral("iconset"), folder}));

    const QStringList names = QDir(folder).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(names.size(), 10);
    for (const int points : {16, 32, 128, 256, 512}) {
        const QString name = QStringLiteral("%1/icon_%2x%2").arg(folder).arg(points);
        EXPECT_EQ(QImage(name + QStringLiteral(".png")).width(), points);
        EXPECT_EQ(QImage(name + QStringLiteral("@2x.png")).width(), 2 * points);
    }
}

TEST(DrawIconTest, TheThemeHasEverySizeAndTheDrawing) {
    const QTemporaryDir scratch;

    ASSERT_TRUE(draws({QStringLiteral("hicolor"), scratch.path(), QStringLiteral("name")}));

    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QImage icon(scratch.filePath(QStringLiteral("%1x%1/apps/name.png").arg(size)));
        EXPECT_EQ(icon.size(), QSize(size, size));
    }
    QFile drawing(scratch.filePath(QStringLiteral("scalable/apps/name.svg")));
    ASSERT_TRUE(drawing.open(QIODevice::ReadOnly));
    EXPECT_EQ(drawing.readAll(), svgIcon());
}

TEST(DrawIconTest, TheDrawingIsWellFormedAndHasThePlateAndThreeTiles) {
    QXmlStreamReader reader(svgIcon());
    int rectangles = 0;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == QLatin1String("rect"))
            ++rectangles;
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    EXPECT_EQ(rectangles, 4);
}

TEST(DrawIconTest, AFolderThatCannotBeCreatedIsAnError) {
    EXPECT_FALSE(draws({QStringLiteral("iconset"), QStringLiteral("/dev/null/set")}));
    EXPECT_FALSE(draws({QStringLiteral("hicolor"), QStringLiteral("/dev/null/set"), QStringLiteral("name")}));
}

TEST(DrawIconTest, WithoutAFolderItFails) {
    EXPECT_FALSE(draws({}));
    EXPECT_FALSE(draws({QStringLiteral("iconset")}));
    EXPECT_FALSE(draws({QStringLiteral("hicolor"), QStringLiteral("folder")}));
}

} // namespace
} // namespace tessarel
