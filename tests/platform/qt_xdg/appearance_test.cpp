// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/appearance.h"

#include <gtest/gtest.h>

namespace tessarel::qt {
namespace {

QVariantMap scheme(uint value) {
    return {{"color-scheme", value}};
}

TEST(AppearanceTest, DefaultsToLightWithoutAnAccentColour) {
    EXPECT_FALSE(prefersDark({}, ""));
    EXPECT_EQ(accentColor({}), std::nullopt);
}

TEST(AppearanceTest, IsDarkWhereTheDesktopPrefersIt) {
    EXPECT_FALSE(prefersDark(scheme(0), ""));
    EXPECT_TRUE(prefersDark(scheme(1), ""));
    EXPECT_FALSE(prefersDark(scheme(2), ""));
}

TEST(AppearanceTest, TheThemeNameDecidesIfTheDesktopHasNoPreference) {
    EXPECT_TRUE(prefersDark({}, "Adwaita:dark"));
    EXPECT_TRUE(prefersDark(scheme(0), "Adwaita:dark"));
    EXPECT_FALSE(prefersDark(scheme(2), "Adwaita:dark"));
    EXPECT_FALSE(prefersDark({}, "Adwaita"));
}

TEST(AppearanceTest, SettingsOfTheWrongTypeAreIgnored) {
    EXPECT_FALSE(prefersDark({{"color-scheme", "dark"}}, ""));
    EXPECT_EQ(accentColor({{"accent-color", "red"}}), std::nullopt);
}

} // namespace
} // namespace tessarel::qt
