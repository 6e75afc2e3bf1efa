// SPDX-License-Identifier: MIT

#include "platform/x11/windows/size_hints.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace tessarel::x11 {
namespace {

constexpr std::uint32_t kMinimum = 16;
constexpr std::uint32_t kMaximum = 32;
constexpr std::uint32_t kStep = 64;
constexpr std::uint32_t kAspect = 128;

/// Returns the hints minimum 100x50, maximum 900x500 and increments 10x20, as far as `flags` enables them.
SizeHints hintsWith(std::uint32_t flags) {
    xcb_size_hints_t hints{};
    hints.flags = flags;
    hints.min_width = 100;
    hints.min_height = 50;
    hints.max_width = 900;
    hints.max_height = 500;
    hints.width_inc = 10;
    hints.height_inc = 20;
    return sizeHintsFrom(hints);
}

TEST(SizeHintsTest, HintsWithoutTheirFlagAreIgnored) {
    EXPECT_EQ(hintsWith(0), SizeHints{});
    EXPECT_EQ(hintsWith(kMinimum), (SizeHints{.width = {.minimum = 100}, .height = {.minimum = 50}}));
    EXPECT_EQ(hintsWith(kMaximum), (SizeHints{.width = {.maximum = 900}, .height = {.maximum = 500}}));
    EXPECT_EQ(hintsWith(kStep), (SizeHints{.width = {.step = 10}, .height = {.step = 20}}));
}

TEST(SizeHintsTest, InvalidSizesAreIgnored) {
    xcb_size_hints_t hints{};
    hints.flags = kMinimum | kMaximum | kStep;
    hints.min_width = -1;
    hints.max_height = 70'000;
    hints.width_inc = -1;

    EXPECT_EQ(sizeHintsFrom(hints), SizeHints{});
}

TEST(SizeHintsTest, WithoutHintsOnlyTheRequestedSizeIsExplained) {
    const SizeHints none;

    EXPECT_TRUE(none.explain({800, 435}, {800, 435}));
    EXPECT_TRUE(none.explain({803, 432}, {800, 435}));
    EXPECT_FALSE(none.explain({800, 450}, {800, 435}));
    EXPECT_FALSE(none.explain({790, 435}, {800, 435}));
}

TEST(SizeHintsTest, ALimitExplainsASizeAtTheLimit) {
    EXPECT_TRUE(hintsWith(kMinimum).explain({100, 50}, {60, 20}));
    EXPECT_TRUE(hintsWith(kMaximum).explain({900, 500}, {1600, 870}));
    EXPECT_FALSE(hintsWith(kMinimum).explain({120, 50}, {60, 20}));
    EXPECT_FALSE(hintsWith(kMaximum).explain({900, 480}, {1600, 870}));
}

TEST(SizeHintsTest, IncrementsExplainASizeThatIsSmallerByLessThanOne) {
    EXPECT_TRUE(hintsWith(kStep).explain({791, 416}, {800, 435}));
    EXPECT_FALSE(hintsWith(kStep).explain({780, 435}, {800, 435}));
    EXPECT_FALSE(hintsWith(kStep).explain({800, 450}, {800, 435}));
}

TEST(SizeHintsTest, AFixedSizeExplainsEveryRequest) {
    const SizeHints fixed{.width = {.minimum = 300, .maximum = 300},
                          .height = {.minimum = 200, .maximum = 200}};

    for (const Size& wanted : {Size{1, 1}, Size{300, 200}, Size{1600, 870}})
        EXPECT_TRUE(fixed.explain({300, 200}, wanted)) << wanted.width;
}

TEST(SizeHintsTest, TheMinimumWinsOverASmallerMaximum) {
    const ExtentHints hints{.minimum = 500, .maximum = 100};

    EXPECT_TRUE(hints.explain(500, 300));
    EXPECT_FALSE(hints.explain(100, 300));
}

TEST(SizeHintsTest, AnAspectRatioExplainsEverySize) {
    EXPECT_TRUE(hintsWith(kAspect).explain({10, 10}, {1600, 870}));
}

} // namespace
} // namespace tessarel::x11
