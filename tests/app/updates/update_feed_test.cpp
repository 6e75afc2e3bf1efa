// SPDX-License-Identifier: MIT

#include "app/updates/update_feed.h"

#include <gtest/gtest.h>

#include <string>

namespace tessarel {
namespace {

TEST(UpdateFeedTest, AVersionIsEnough) {
    EXPECT_EQ(decodeUpdateFeed(R"({"version": "1.2"})"), (UpdateFeed{"1.2", "", std::nullopt}));
}

TEST(UpdateFeedTest, NotesAndAddressAreRead) {
    EXPECT_EQ(decodeUpdateFeed(R"({"version": "1.2", "notes": "Faster.", "url": "https://a.example/"})"),
              (UpdateFeed{"1.2", "Faster.", "https://a.example/"}));
}

TEST(UpdateFeedTest, NotesAndAddressOfAnotherTypeCountAsMissing) {
    for (const char* other : {"null", "1", "true", "[\"a\"]", "{\"a\": \"b\"}"}) {
        const std::string document =
            std::string(R"({"version": "1.2", "notes": )") + other + R"(, "url": )" + other + "}";
        EXPECT_EQ(decodeUpdateFeed(document), (UpdateFeed{"1.2", "", std::nullopt})) << other;
    }
}

TEST(UpdateFeedTest, AVersionThatIsNotAStringIsRejected) {
    for (const char* other : {"null", "1.2", "2", "true", "[\"1.2\"]", "{\"version\": \"1.2\"}"})
        EXPECT_EQ(decodeUpdateFeed(std::string(R"({"version": )") + other + "}"), std::nullopt) << other;
}

TEST(UpdateFeedTest, AFeedWithoutAVersionIsRejected) {
    EXPECT_EQ(decodeUpdateFeed(R"({"notes": "a", "Version": "1.2"})"), std::nullopt);
    EXPECT_EQ(decodeUpdateFeed("{}"), std::nullopt);
}

TEST(UpdateFeedTest, ADocumentThatIsNotAnObjectIsRejected) {
    for (const char* document : {"", "null", "\"1.2\"", "[{\"version\": \"1.2\"}]", "1.2", "<html></html>",
                                 "{\"version\": \"1.2\"", "{\"version\": \"1.2\"} x", "\"\xFF\""})
        EXPECT_EQ(decodeUpdateFeed(document), std::nullopt) << document;
}

TEST(UpdateFeedTest, OtherMembersAreIgnored) {
    EXPECT_TRUE(decodeUpdateFeed(R"({"a": [{"version": 3}], "version": "1.2", "z": 1e300})"));
}

TEST(UpdateFeedTest, OtherMembersMayHoldAnything) {
    const std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
    for (const std::string& other :
         {std::string("1e400"), std::string(500, '9'), std::string("[{\"a\": -1e999}]"), deep})
        EXPECT_TRUE(decodeUpdateFeed("{\"other\": " + other + R"(, "version": "1.2"})"));
    EXPECT_EQ(decodeUpdateFeed(R"({"version": "1.2", "notes": 1e400, "url": 1e400})"),
              (UpdateFeed{"1.2", "", std::nullopt}));
    EXPECT_EQ(decodeUpdateFeed(R"({"version": 1e400})"), std::nullopt);
}

TEST(UpdateFeedTest, AZeroByteMakesTheFeedUnreadable) {
    EXPECT_EQ(decodeUpdateFeed(std::string("{\"version\": \"1.2\"}\0", 19)), std::nullopt);
}

TEST(UpdateFeedTest, TheLastOfDuplicateMembersWins) {
    EXPECT_EQ(decodeUpdateFeed(R"({"version": 1, "version": "1.2"})")->version, "1.2");
    EXPECT_EQ(decodeUpdateFeed(R"({"version": "1.2", "version": 1})"), std::nullopt);
}

} // namespace
} // namespace tessarel
