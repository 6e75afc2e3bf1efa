#include "platform/x11/property.h"

#include "platform/x11/window_traits.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace tessarel::x11 {
namespace {

/// A reply as the server would send it.
PropertyReply makeReply(std::uint8_t format, const std::string& content, std::uint32_t bytesAfter = 0) {
    auto* const memory = std::calloc(1, sizeof(xcb_get_property_reply_t) + content.size());
    PropertyReply reply(static_cast<xcb_get_property_reply_t*>(memory));
    reply->format = format;
    reply->bytes_after = bytesAfter;
    reply->value_len = static_cast<std::uint32_t>(format == 0 ? 0 : content.size() * 8 / format);
    std::memcpy(xcb_get_property_value(reply.get()), content.data(), content.size());
    return reply;
}

const std::string kTwoWords("\x01\0\0\0\x02\0\0\0", 8);

TEST(PropertyTest, WordsAreReadFromAPropertyOfWords) {
    const auto reply = makeReply(32, kTwoWords);

    ASSERT_EQ(values(reply).size(), 2U);
    EXPECT_EQ(values(reply)[1], 2U);
}

TEST(PropertyTest, OtherFormatsHaveNoWords) {
    const auto bytesReply = makeReply(8, kTwoWords);
    const auto halvesReply = makeReply(16, kTwoWords);
    EXPECT_TRUE(values(bytesReply).empty());
    const auto missing = makeReply(0, "");
    EXPECT_TRUE(values(halvesReply).empty());
    EXPECT_TRUE(values(missing).empty());
}

TEST(PropertyTest, APropertyLongerThanAskedForHasNoValues) {
    const auto words = makeReply(32, kTwoWords, 4);
    const auto text = makeReply(8, "editor", 1);

    EXPECT_TRUE(values(words).empty());
    EXPECT_EQ(bytes(text), "");
}

TEST(PropertyTest, OneValueMeansExactlyOne) {
    const auto none = makeReply(32, "");
    const auto one = makeReply(32, kTwoWords.substr(0, 4));
    const auto two = makeReply(32, kTwoWords);

    EXPECT_FALSE(value(none));
    EXPECT_EQ(value(one), 1U);
    EXPECT_FALSE(value(two));
}

TEST(PropertyTest, AMissingReplyHasNothing) {
    const PropertyReply missing;

    EXPECT_TRUE(values(missing).empty());
    EXPECT_FALSE(value(missing));
    EXPECT_EQ(bytes(missing), "");
}

TEST(TextTest, GoodTextStaysAsItIs) {
    for (const std::string text : {"", "editor", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"})
        EXPECT_EQ(toUtf8(text), text);
}

TEST(TextTest, TextEndsAtItsFirstNul) {
    EXPECT_EQ(toUtf8(std::string("editor\0rest", 11)), "editor");
}

TEST(TextTest, WhatIsNoUtf8IsTakenForLatin1) {
    EXPECT_EQ(toUtf8("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(toUtf8("\x80\xFF"), "\xC2\x80\xC3\xBF");
    EXPECT_EQ(toUtf8("\xC3"), "\xC3\x83") << "cut off";
    EXPECT_EQ(toUtf8("\xC0\xAF"), "\xC3\x80\xC2\xAF") << "longer than need be";
    EXPECT_EQ(toUtf8("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80") << "half of a pair";
    EXPECT_EQ(toUtf8("\xF4\x90\x80\x80"), "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80") << "beyond the last character";
}

TEST(TextTest, TheClassIsTheSecondOfTwoNames) {
    EXPECT_EQ(classFrom(std::string("instance\0Class\0", 15)), "Class");
    EXPECT_EQ(classFrom(std::string("instance\0Class", 14)), "Class") << "not terminated";
    EXPECT_EQ(classFrom(std::string("instance\0\0", 10)), "");
    EXPECT_EQ(classFrom(std::string("instance\0", 9)), "");
    EXPECT_EQ(classFrom("instance"), "");
    EXPECT_EQ(classFrom(""), "");
}

} // namespace
} // namespace tessarel::x11
