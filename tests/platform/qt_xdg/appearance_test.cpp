#include "platform/qt_xdg/appearance.h"

#include "support/offscreen_test.h"

#include <QImage>
#include <QPalette>
#include <QPixmap>
#include <QTabWidget>
#include <QVariantMap>
#include <gtest/gtest.h>

#include <cmath>

namespace tessarel::qt {
namespace {

QVariantMap scheme(uint value) {
    return {{"color-scheme", value}};
}

/// Returns the contrast ratio of `text` on `background`, from 1 (invisible) to 21.
double contrast(const QColor& text, const QColor& background) {
    const auto part = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&part](const QColor& color) {
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
    };
    const double first = luminance(text) + 0.05;
    const double second = luminance(background) + 0.05;
    return first > second ? first / second : second / first;
}

QColor over(const QColor& background, const QColor& color) {
    const auto mix = [&color](float below, float above) { return below + (above - below) * color.alphaF(); };
    return QColor::fromRgbF(mix(background.redF(), color.redF()), mix(background.greenF(), color.greenF()),
                            mix(background.blueF(), color.blueF()));
}

TEST(AppearanceTest, DefaultsToLightWithAFixedBlue) {
    EXPECT_EQ(appearance({}, ""), (Appearance{false, QColor("#0a84ff")}));
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

class PaletteTest : public OffscreenTest {};

TEST_F(PaletteTest, TextIsReadableInLightAndDark) {
    for (const bool isDark : {false, true}) {
        const QPalette colors = palette({.isDark = isDark});
        const QColor window = colors.color(QPalette::Window);
        const QColor base = colors.color(QPalette::Base);
        EXPECT_GT(contrast(colors.color(QPalette::WindowText), window), 7) << isDark;
        EXPECT_GT(contrast(colors.color(QPalette::Text), base), 7) << isDark;
        EXPECT_GT(contrast(colors.color(QPalette::ButtonText), colors.color(QPalette::Button)), 7) << isDark;
        const QColor secondary = colors.color(QPalette::PlaceholderText);
        EXPECT_GT(contrast(over(window, secondary), window), 4.5) << isDark;
    }
}

TEST_F(PaletteTest, SecondaryTextIsReadableOnATab) {
    for (const bool isDark : {false, true}) {
        QTabWidget tabs;
        tabs.setPalette(palette({.isDark = isDark}));
        tabs.addTab(new QWidget, "General");
        tabs.resize(200, 200);
        const QColor page = tabs.grab().toImage().pixelColor(100, 150);

        const QColor secondary = tabs.palette().color(QPalette::PlaceholderText);

        EXPECT_GT(contrast(over(page, secondary), page), 4.5) << isDark;
    }
}

TEST_F(PaletteTest, DarkIsDarkAndLightIsLight) {
    EXPECT_GT(palette({.isDark = false}).color(QPalette::Window).lightness(), 200);
    EXPECT_LT(palette({.isDark = true}).color(QPalette::Window).lightness(), 80);
}

TEST_F(PaletteTest, TheHighlightIsTheAccentColourAndItsTextIsReadable) {
    for (const QColor accent :
         {QColor("#0a84ff"), QColor(Qt::yellow), QColor(Qt::white), QColor("#3a0050")}) {
        const QPalette colors = palette({.accent = accent});
        EXPECT_EQ(colors.color(QPalette::Highlight), accent);
        EXPECT_GT(contrast(colors.color(QPalette::HighlightedText), accent), 3)
            << accent.name().toStdString();
    }
}

TEST_F(PaletteTest, DisabledTextIsFainter) {
    const QPalette colors = palette({.isDark = true});

    EXPECT_LT(colors.color(QPalette::Disabled, QPalette::WindowText).alphaF(), 0.5F);
    EXPECT_EQ(colors.color(QPalette::Active, QPalette::WindowText).alphaF(), 1.0F);
}

} // namespace
} // namespace tessarel::qt
