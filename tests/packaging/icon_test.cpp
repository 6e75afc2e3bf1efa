#include "icon.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
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

TEST(DrawIconTest, TheSetHasEverySizeUnderItsExpectedName) {
    const QTemporaryDir scratch;
    const QString folder = scratch.filePath(QStringLiteral("Tessarel.iconset"));

    ASSERT_EQ(QProcess::execute(QStringLiteral(TESSAREL_DRAW_ICON), {folder}), 0);

    const QStringList names = QDir(folder).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(names.size(), 10);
    for (const int points : {16, 32, 128, 256, 512}) {
        const QString name = QStringLiteral("%1/icon_%2x%2").arg(folder).arg(points);
        EXPECT_EQ(QImage(name + QStringLiteral(".png")).width(), points);
        EXPECT_EQ(QImage(name + QStringLiteral("@2x.png")).width(), 2 * points);
    }
}

TEST(DrawIconTest, AFolderThatCannotBeCreatedIsAnError) {
    EXPECT_NE(QProcess::execute(QStringLiteral(TESSAREL_DRAW_ICON), {QStringLiteral("/dev/null/set")}), 0);
}

TEST(DrawIconTest, WithoutAFolderItFails) {
    EXPECT_NE(QProcess::execute(QStringLiteral(TESSAREL_DRAW_ICON), {}), 0);
}

} // namespace
} // namespace tessarel
