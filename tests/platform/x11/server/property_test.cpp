// SPDX-License-Identifier: MIT

#include "platform/x11/server/property.h"

#include "platform/x11/windows/window_traits.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace tessarel::x11 {
namespace {

/// Returns a reply as the server would send it.
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

TEST(PropertyTest, A32BitPropertyGivesItsValues) {
    const auto reply = makeReply(32, kTwoWords);

    ASSERT_EQ(values(reply).size(), 2U);
    EXPECT_EQ(values(reply)[1], 2U);
}

TEST(PropertyTest, OtherFormatsGiveNoValues) {
    const auto bytesReply = makeReply(8, kTwoWords);
    const auto halvesReply = makeReply(16, kTwoWords);
    EXPECT_TRUE(values(bytesReply).empty());
    const auto missing = makeReply(0, "");
    EXPECT_TRUE(values(halvesReply).empty());
    EXPECT_TRUE(values(missing).empty());
}

TEST(PropertyTest, APropertyLongerThanRequestedGivesNoValues) {
    const auto words = makeReply(32, kTwoWords, 4);
    const auto text = makeReply(8, "editor", 1);

    EXPECT_TRUE(values(words).empty());
    EXPECT_EQ(bytes(text), "");
}

TEST(PropertyTest, ValueRequiresExactlyOneValue) {
    const auto none = makeReply(32, "");
    const auto one = makeReply(32, kTwoWords.substr(0, 4));
    const auto two = makeReply(32, kTwoWords);

    EXPECT_FALSE(value(none));
    EXPECT_EQ(value(one), 1U);
    EXPECT_FALSE(value(two));
}

TEST(PropertyTest, AMissingReplyGivesNoValues) {
    const PropertyReply missing;

    EXPECT_TRUE(values(missing).empty());
    EXPECT_FALSE(value(missing));
    EXPECT_EQ(bytes(missing), "");
}

TEST(WindowTraitsTest, InstanceAndClassAreTheTwoNamesOfOneProperty) {
    using Names = std::pair<std::string, std::string>;
    EXPECT_EQ(classFrom(std::string("instance\0Class\0", 15)), Names("instance", "Class"));
    EXPECT_EQ(classFrom(std::string("instance\0Class", 14)), Names("instance", "Class")) << "not terminated";
    EXPECT_EQ(classFrom(std::string("\0Class\0", 7)), Names("", "Class"));
    EXPECT_EQ(classFrom(std::string("instance\0\0", 10)), Names("instance", ""));
    EXPECT_EQ(classFrom(std::string("instance\0", 9)), Names("instance", ""));
    EXPECT_EQ(classFrom("instance"), Names("instance", ""));
    EXPECT_EQ(classFrom(""), Names("", ""));
}

} // namespace
} // namespace tessarel::x11
