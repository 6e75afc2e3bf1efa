// SPDX-License-Identifier: MIT

#include "platform/xdg/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace tessarel::xdg {
namespace {

TEST(Utf8Test, ValidUtf8IsUnchanged) {
    for (const std::string text : {"", "editor", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"})
        EXPECT_EQ(toUtf8(text), text);
}

TEST(Utf8Test, TextEndsAtItsFirstNul) {
    EXPECT_EQ(toUtf8(std::string("editor\0rest", 11)), "editor");
}

TEST(Utf8Test, InvalidUtf8IsReadAsLatin1) {
    EXPECT_EQ(toUtf8("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(toUtf8("\x80\xFF"), "\xC2\x80\xC3\xBF");
    EXPECT_EQ(toUtf8("\xC3"), "\xC3\x83") << "truncated";
    EXPECT_EQ(toUtf8("\xC0\xAF"), "\xC3\x80\xC2\xAF") << "overlong";
    EXPECT_EQ(toUtf8("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80") << "a surrogate";
    EXPECT_EQ(toUtf8("\xF4\x90\x80\x80"), "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80") << "beyond U+10FFFF";
}

} // namespace
} // namespace tessarel::xdg
