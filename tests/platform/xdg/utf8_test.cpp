#include "platform/xdg/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace tessarel::xdg {
namespace {

TEST(Utf8Test, GoodTextStaysAsItIs) {
    for (const std::string text : {"", "editor", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"})
        EXPECT_EQ(toUtf8(text), text);
}

TEST(Utf8Test, TextEndsAtItsFirstNul) {
    EXPECT_EQ(toUtf8(std::string("editor\0rest", 11)), "editor");
}

TEST(Utf8Test, WhatIsNoUtf8IsTakenForLatin1) {
    EXPECT_EQ(toUtf8("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(toUtf8("\x80\xFF"), "\xC2\x80\xC3\xBF");
    EXPECT_EQ(toUtf8("\xC3"), "\xC3\x83") << "cut off";
    EXPECT_EQ(toUtf8("\xC0\xAF"), "\xC3\x80\xC2\xAF") << "longer than need be";
    EXPECT_EQ(toUtf8("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80") << "half of a pair";
    EXPECT_EQ(toUtf8("\xF4\x90\x80\x80"), "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80") << "beyond the last character";
}

} // namespace
} // namespace tessarel::xdg
