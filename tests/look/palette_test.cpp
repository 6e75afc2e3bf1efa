// SPDX-License-Identifier: MIT

#include "look/palette.h"

#include "look/contrast.h"

#include <QColor>
#include <QPalette>
#include <gtest/gtest.h>

#include <algorithm>

namespace tessarel {
namespace {

using Role = QPalette::ColorRole;

class PaletteTest : public testing::TestWithParam<bool> {
protected:
    [[nodiscard]] QColor color(Role role) const { return colors.color(role); }
    [[nodiscard]] double contrastOf(Role one, Role other) const { return contrast(color(one), color(other)); }

    QPalette colors = paletteOf({.isDark = GetParam()});
};

TEST_P(PaletteTest, TextIsReadable) {
    for (const Role background : {Role::Window, Role::Base, Role::AlternateBase, Role::Button}) {
        for (const Role text : {Role::WindowText, Role::Text, Role::ButtonText})
            EXPECT_GE(contrastOf(text, background), 7) << text << " on " << background;
        EXPECT_GE(contrastOf(Role::PlaceholderText, background), kTextContrast) << background;
    }
    EXPECT_GE(contrastOf(Role::Link, Role::Window), kTextContrast);
    EXPECT_GE(contrastOf(Role::ToolTipText, Role::ToolTipBase), 7);
}

TEST_P(PaletteTest, OutlinesAreVisible) {
    for (const Role background : {Role::Window, Role::Base, Role::AlternateBase, Role::Button})
        EXPECT_GE(contrastOf(Role::Mid, background), kOutlineContrast) << background;
}

TEST_P(PaletteTest, TheDefaultAccentColourStandsOutAndWhiteIsReadableOnIt) {
    for (const Role background : {Role::Window, Role::Base})
        EXPECT_GE(contrastOf(Role::Highlight, background), kOutlineContrast) << background;
    EXPECT_EQ(color(Role::HighlightedText), QColor(Qt::white));
}

TEST_P(PaletteTest, TheHighlightIsTheAccentColourAndItsTextIsReadable) {
    for (const QColor accent : {QColor("#0a84ff"), QColor(Qt::yellow), QColor(Qt::white), QColor("#3a0050"),
                                QColor("#777777"), QColor("#6f8396")}) {
        colors = paletteOf({.isDark = GetParam(), .accent = accent});
        EXPECT_EQ(color(Role::Highlight), accent);
        EXPECT_GE(contrastOf(Role::HighlightedText, Role::Highlight), kTextContrast)
            << accent.name().toStdString();
    }
}

TEST_P(PaletteTest, LinesInTheAccentColourAreVisibleWhateverTheAccentColour) {
    for (const QColor accent :
         {QColor("#0a72e3"), QColor("#3584e4"), QColor("#c88800"), QColor("#fac31e"), QColor("#f5c2e7"),
          QColor("#3a0050"), QColor("#777777"), QColor(Qt::white), QColor(Qt::black)}) {
        colors = paletteOf({.isDark = GetParam(), .accent = accent});
        const QColor line = accentLine(colors);
        bool isVisible = true;
        for (const Role background : {Role::Window, Role::Base}) {
            EXPECT_GE(contrast(line, color(background)), kOutlineContrast) << accent.name().toStdString();
            isVisible = isVisible && contrast(accent, color(background)) >= kOutlineContrast;
        }
        EXPECT_EQ(line == accent, isVisible) << accent.name().toStdString();
    }
}

TEST_P(PaletteTest, AVisibleLineIsTheNearestShadeOfItsAccentColour) {
    const QColor accent = GetParam() ? QColor("#3a0050") : QColor("#fac31e");
    colors = paletteOf({.isDark = GetParam(), .accent = accent});

    const QColor line = accentLine(colors);

    EXPECT_NEAR(line.hueF(), accent.hueF(), 0.02);
    EXPECT_LT(std::min(contrast(line, color(Role::Window)), contrast(line, color(Role::Base))),
              kOutlineContrast + 0.1);
}

TEST_P(PaletteTest, DisabledTextIsFainter) {
    EXPECT_LT(colors.color(QPalette::Disabled, Role::WindowText).alphaF(), 0.5F);
    EXPECT_EQ(colors.color(QPalette::Active, Role::WindowText).alphaF(), 1.0F);
}

TEST_P(PaletteTest, ListsAreWhiteOrLighterThanTheWindow) {
    EXPECT_EQ(color(Role::Base) == QColor(Qt::white), !GetParam());
    EXPECT_GT(color(Role::Base).lightness(), color(Role::Window).lightness());
}

TEST_P(PaletteTest, DarkIsDarkAndLightIsLight) {
    const int lightness = color(Role::Window).lightness();
    EXPECT_TRUE(GetParam() ? lightness < 80 : lightness > 200) << lightness;
}

INSTANTIATE_TEST_SUITE_P(Appearances, PaletteTest, testing::Bool(),
                         [](const auto& instance) { return instance.param ? "Dark" : "Light"; });

TEST(ContrastTest, IsOneForEqualColoursAndTwentyOneForBlackAndWhite) {
    EXPECT_DOUBLE_EQ(contrast(Qt::red, Qt::red), 1);
    EXPECT_DOUBLE_EQ(contrast(Qt::black, Qt::white), 21);
    EXPECT_DOUBLE_EQ(contrast(Qt::white, Qt::black), 21);
    EXPECT_NEAR(contrast(QColor("#767676"), Qt::white), 4.54, 0.01);
}

} // namespace
} // namespace tessarel
