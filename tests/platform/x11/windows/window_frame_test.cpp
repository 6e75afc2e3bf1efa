// SPDX-License-Identifier: MIT

#include "platform/x11/windows/window_frame.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>

namespace tessarel::x11 {
namespace {

constexpr Size kClient{600, 400};
constexpr Extents kDecoration{1, 2, 20, 4};
constexpr Extents kShadows{10, 11, 12, 13};

TEST(ExtentsTest, FourValuesAreLeftRightTopBottom) {
    EXPECT_EQ(extentsFrom(std::array<std::uint32_t, 4>{1, 2, 20, 4}), kDecoration);
    EXPECT_EQ(extentsFrom(std::array<std::uint32_t, 4>{}), Extents{});
}

TEST(ExtentsTest, AnyOtherNumberOfValuesIsRejected) {
    const std::array<std::uint32_t, 6> values{1, 1, 1, 1, 1, 1};

    for (const std::size_t length : {0U, 1U, 3U, 5U, 6U})
        EXPECT_FALSE(extentsFrom(std::span(values).first(length))) << length;
}

TEST(ExtentsTest, NegativeAndHugeValuesAreRejected) {
    EXPECT_TRUE(extentsFrom(std::array<std::uint32_t, 4>{4096, 0, 0, 0}));
    for (const std::uint32_t absurd : {4097U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_FALSE(extentsFrom(std::array<std::uint32_t, 4>{0, 0, 0, absurd})) << absurd;
}

TEST(ExtentsTest, TheDecorationIsOutsideTheClient) {
    EXPECT_EQ(effectiveExtents(kDecoration, std::nullopt, kClient), kDecoration);
    EXPECT_EQ(effectiveExtents(std::nullopt, std::nullopt, kClient), Extents{});
}

TEST(ExtentsTest, ShadowsAreInsideTheClientAndReplaceTheDecoration) {
    const Extents inside{-10, -11, -12, -13};

    EXPECT_EQ(effectiveExtents(std::nullopt, kShadows, kClient), inside);
    EXPECT_EQ(effectiveExtents(kDecoration, kShadows, kClient), inside);
}

TEST(ExtentsTest, ShadowsOfZeroWidthAreIgnored) {
    EXPECT_EQ(effectiveExtents(kDecoration, Extents{}, kClient), kDecoration);
}

TEST(ExtentsTest, ShadowsThatCoverTheWindowAreIgnored) {
    EXPECT_EQ(effectiveExtents(kDecoration, Extents{300, 300, 0, 0}, kClient), kDecoration);
    EXPECT_EQ(effectiveExtents(kDecoration, Extents{0, 0, 200, 200}, kClient), kDecoration);
    EXPECT_EQ(effectiveExtents(kDecoration, Extents{300, 299, 0, 0}, kClient), (Extents{-300, -299, 0, 0}));
}

TEST(WindowFrameTest, TheOuterFrameIncludesTheDecoration) {
    const WindowFrame frame{{100, 120, 600, 400}, kDecoration, {}};

    EXPECT_EQ(frame.outer(), (Rect{99, 100, 603, 424}));
}

TEST(WindowFrameTest, TheOuterFrameExcludesTheShadows) {
    const WindowFrame frame{{100, 120, 600, 400}, {-10, -11, -12, -13}, {}};

    EXPECT_EQ(frame.outer(), (Rect{110, 132, 579, 375}));
}

} // namespace
} // namespace tessarel::x11
