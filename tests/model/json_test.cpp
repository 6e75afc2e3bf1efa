#include "model/json.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessarel {
namespace {

TEST(JsonTest, TheLastOfDuplicateMembersWins) {
    EXPECT_EQ(readJson(R"({"a": [1, {"b": 2}], "a": "last"})"), (Json{{"a", "last"}}));
}

TEST(JsonTest, TextThatIsNotJsonIsRejected) {
    for (const char* document :
         {"", " ", "{", "[1,]", "{\"a\"}", "nul", "1 2", "NaN", "'a'", "1e400", "\"\xFF\""})
        EXPECT_FALSE(readJson(document)) << document;
}

TEST(JsonTest, ADeeplyNestedDocumentDoesNotExhaustTheStack) {
    constexpr std::size_t kDepth = 1'000'000;

    EXPECT_TRUE(readJson(std::string(kDepth, '[') + std::string(kDepth, ']')));
}

TEST(JsonTest, ADocumentIsWrittenOnOneLineWithMembersSortedByName) {
    const Json root{{"z", nullptr}, {"b", {true, 0.5, -3}}, {"a", "x\"y"}};

    EXPECT_EQ(writeJson(root), R"({"a":"x\"y","b":[true,0.5,-3],"z":null})");
}

TEST(JsonTest, ANonFiniteNumberCannotBeWrittenAtAnyDepth) {
    const double infinity = std::numeric_limits<double>::infinity();

    EXPECT_EQ(writeJson(infinity), std::nullopt);
    EXPECT_EQ(writeJson(Json{1.0, std::numeric_limits<double>::quiet_NaN()}), std::nullopt);
    EXPECT_EQ(writeJson(Json{{"a", {-infinity}}}), std::nullopt);
}

TEST(JsonTest, TextThatIsNotUtf8CannotBeWritten) {
    EXPECT_EQ(writeJson("\xC3"), std::nullopt);
    EXPECT_EQ(writeJson(Json{{"\xFF", true}}), std::nullopt);
}

} // namespace
} // namespace tessarel
