// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/application_icon.h"

#include "support/offscreen_test.h"

#include <QColor>
#include <QImage>
#include <QSize>

namespace tessarel::qt {
namespace {

class ApplicationIconTest : public OffscreenTest {
protected:
    static QImage image(int size) { return applicationIcon().pixmap(size).toImage(); }
    static bool isZone(const QImage& icon, int x, int y) {
        return qAlpha(icon.pixel(x, y)) == 255 && qGray(icon.pixel(x, y)) > 240;
    }
};

TEST_F(ApplicationIconTest, ItHasTheUsualSizesOfWindowLists) {
    for (const int size : {16, 24, 32, 48, 64, 128})
        EXPECT_EQ(applicationIcon().actualSize(QSize(size, size)), QSize(size, size));
}

TEST_F(ApplicationIconTest, ItsZonesAreSharpAndStandOutOnTheirTile) {
    for (const int size : {16, 32, 48, 128}) {
        const QImage icon = image(size);
        int light = 0;
        for (int y = size / 4; y < size * 3 / 4; ++y)
            for (int x = size / 4; x < size * 3 / 4; ++x) {
                const int gray = qGray(icon.pixel(x, y));
                EXPECT_TRUE(gray < 100 || gray > 240) << size << ": " << x << ' ' << y;
                light += isZone(icon, x, y) ? 1 : 0;
            }
        EXPECT_GT(light, size * size / 8);
        EXPECT_LT(light, size * size / 4) << "with gaps between them";
    }
}

TEST_F(ApplicationIconTest, ItsZonesAreSymmetricFromTopToBottom) {
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        const QImage icon = image(size);
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x)
                ASSERT_EQ(isZone(icon, x, y), isZone(icon, x, size - 1 - y)) << size << ": " << x << ' ' << y;
    }
}

TEST_F(ApplicationIconTest, ItsCornersAreTransparent) {
    EXPECT_EQ(image(48).pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image(48).pixelColor(47, 47).alpha(), 0);
}

} // namespace
} // namespace tessarel::qt
