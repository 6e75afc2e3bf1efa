#include "model/json_document.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessarel {
namespace {

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST(JsonDocumentTest, EachJsonTypeIsReadAsItsOwnType) {
    const auto root = readJson(R"({"n": null, "b": true, "i": -3, "d": 0.5, "s": "x", "a": [1], "o": {}})");

    ASSERT_TRUE(root);
    EXPECT_TRUE(root->member("n")->isNull());
    EXPECT_TRUE(*root->member("b")->as<bool>());
    EXPECT_EQ(*root->member("i")->as<std::int64_t>(), -3);
    EXPECT_EQ(*root->member("d")->as<double>(), 0.5);
    EXPECT_EQ(*root->member("s")->as<std::string>(), "x");
    EXPECT_EQ(root->member("a")->as<JsonArray>()->size(), 1U);
    EXPECT_TRUE(root->member("o")->as<JsonObject>()->empty());
}

TEST(JsonDocumentTest, AsReturnsNullForAnotherType) {
    const auto root = readJson(R"({"i": 1})");

    ASSERT_TRUE(root);
    EXPECT_EQ(root->member("i")->as<std::string>(), nullptr);
    EXPECT_EQ(root->member("i")->as<double>(), nullptr);
    EXPECT_FALSE(root->member("i")->isNull());
}

TEST(JsonDocumentTest, OnlyAnObjectHasMembers) {
    EXPECT_EQ(readJson(R"({"a": 1})")->member("b"), nullptr);
    EXPECT_EQ(readJson(R"(["a"])")->member("a"), nullptr);
    EXPECT_EQ(JsonValue().member("a"), nullptr);
}

TEST(JsonDocumentTest, TheLastOfDuplicateMembersWins) {
    const auto root = readJson(R"({"a": [1, {"b": 2}], "a": "last"})");

    ASSERT_TRUE(root);
    EXPECT_EQ(root->as<JsonObject>()->size(), 1U);
    EXPECT_EQ(*root->member("a")->as<std::string>(), "last");
}

TEST(JsonDocumentTest, AnIntegerThatNeedsMoreThan64BitsIsADouble) {
    EXPECT_EQ(*readJson("9223372036854775807")->as<std::int64_t>(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(*readJson("9223372036854775808")->as<double>(), 9223372036854775808.0);
    EXPECT_EQ(*readJson("-9223372036854775809")->as<double>(), -9223372036854775808.0);
    EXPECT_EQ(*readJson("123456789012345678901234567890")->as<double>(), 123456789012345678901234567890.0);
}

TEST(JsonDocumentTest, TextThatIsNotJsonIsRejected) {
    for (const char* document :
         {"", " ", "{", "[1,]", "{\"a\"}", "nul", "1 2", "NaN", "'a'", "1e400", "\"\xFF\""})
        EXPECT_FALSE(readJson(document)) << document;
}

TEST(JsonDocumentTest, NestingDeeperThan64LevelsIsRejected) {
    EXPECT_TRUE(readJson(nested(64)));
    EXPECT_FALSE(readJson(nested(65)));
    EXPECT_FALSE(readJson(nested(1'000'000)));

    const auto objects = [](std::size_t depth) {
        std::string document;
        for (std::size_t level = 1; level < depth; ++level)
            document += "{\"a\":";
        return document + "{}" + std::string(depth - 1, '}');
    };
    EXPECT_TRUE(readJson(objects(64)));
    EXPECT_FALSE(readJson(objects(65)));
}

TEST(JsonDocumentTest, MembersAfterANestedValueKeepTheirNames) {
    const auto root = readJson(R"({"a": {"b": [{"c": 1}], "d": 2}, "e": 3})");

    ASSERT_TRUE(root);
    EXPECT_EQ(*root->member("a")->member("d")->as<std::int64_t>(), 2);
    EXPECT_EQ(*root->member("e")->as<std::int64_t>(), 3);
    EXPECT_EQ(root->as<JsonObject>()->size(), 2U);
}

TEST(JsonDocumentTest, ADocumentIsWrittenOnOneLineWithMembersSortedByName) {
    const JsonValue root = JsonObject{
        {"z", JsonValue()}, {"b", JsonArray{true, 0.5, std::int64_t{-3}}}, {"a", std::string("x\"y")}};

    EXPECT_EQ(writeJson(root), R"({"a":"x\"y","b":[true,0.5,-3],"z":null})");
}

TEST(JsonDocumentTest, ANonFiniteNumberCannotBeWrittenAtAnyDepth) {
    const double infinity = std::numeric_limits<double>::infinity();

    EXPECT_EQ(writeJson(infinity), std::nullopt);
    EXPECT_EQ(writeJson(JsonArray{1.0, std::numeric_limits<double>::quiet_NaN()}), std::nullopt);
    EXPECT_EQ(writeJson(JsonObject{{"a", JsonArray{-infinity}}}), std::nullopt);
}

TEST(JsonDocumentTest, TextThatIsNotUtf8CannotBeWritten) {
    EXPECT_EQ(writeJson(std::string("\xC3")), std::nullopt);
    EXPECT_EQ(writeJson(JsonObject{{"\xFF", true}}), std::nullopt);
}

} // namespace
} // namespace tessarel
