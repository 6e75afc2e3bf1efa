#include "platform/qt_xdg/appearance.h"

#include <QVariantMap>
#include <gtest/gtest.h>

namespace tessarel::qt {
namespace {

QVariantMap scheme(uint value) {
    return {{"color-scheme", value}};
}

TEST(AppearanceTest, DefaultsToLightWithAFixedBlue) {
    EXPECT_EQ(appearance({}, ""), (Appearance{false, QColor("#0a72e3")}));
}

TEST(AppearanceTest, IsDarkWhereTheDesktopPrefersIt) {
    EXPECT_FALSE(appearance(scheme(0), "").isDark);
    EXPECT_TRUE(appearance(scheme(1), "").isDark);
    EXPECT_FALSE(appearance(scheme(2), "").isDark);
}

TEST(AppearanceTest, TheThemeNameDecidesIfTheDesktopHasNoPreference) {
    EXPECT_TRUE(appearance({}, "Adwaita:dark").isDark);
    EXPECT_TRUE(appearance(scheme(0), "Adwaita:dark").isDark);
    EXPECT_FALSE(appearance(scheme(2), "Adwaita:dark").isDark);
    EXPECT_FALSE(appearance({}, "Adwaita").isDark);
}

TEST(AppearanceTest, SettingsOfTheWrongTypeAreIgnored) {
    EXPECT_EQ(appearance({{"color-scheme", "dark"}, {"accent-color", "red"}}, ""), Appearance{});
}

} // namespace
} // namespace tessarel::qt
