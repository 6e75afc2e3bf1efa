// SPDX-License-Identifier: MIT

#include "model/json.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>

namespace tessarel {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(JsonTest, TheLastOfDuplicateMembersWins) {
    EXPECT_EQ(readJson(R"({"a": [1, {"b": 2}], "a": "last"})"), (Json{{"a", "last"}}));
}

TEST(JsonTest, TextThatIsNotJsonIsRejected) {
    for (const char* document : {"", " ", "{", "[1,]", "{\"a\"}", "nul", "1 2", "NaN", "'a'", "\"\xFF\"",
                                 "01", "1.", ".5e400", "1e400e1", "[1e400", "1e400 x", "-e400", "1e+"})
        EXPECT_FALSE(readJson(document)) << document;
}

TEST(JsonTest, AZeroByteMakesADocumentUnreadable) {
    for (const std::string_view document : {"{}\0"sv, "{}\0{}"sv, "\0{}"sv, "{\0}"sv, "\"a\0b\""sv})
        EXPECT_FALSE(readJson(document)) << document;
    EXPECT_EQ(readJson(R"("a\u0000b")"), Json("a\0b"s));
}

TEST(JsonTest, ANumberTooLargeForADoubleHasNoTypeAndSparesTheRest) {
    const std::string digits(400, '9');
    for (const std::string_view number :
         {"1e309"sv, "-1e400"sv, "1E+99999999999999999999"sv, "0.1e500"sv, std::string_view(digits)}) {
        const auto root =
            readJson("{\"a\": [1e3, " + std::string(number) + ", 7], \"b\": \"1e400\", \"c\": 0}");

        ASSERT_TRUE(root) << number;
        EXPECT_EQ(root->at("b"), "1e400");
        EXPECT_EQ(root->at("c"), 0);
        EXPECT_EQ(root->at("a")[0], 1000);
        EXPECT_TRUE(root->at("a")[1].is_binary());
        EXPECT_EQ(root->at("a")[2], 7);
    }
}

TEST(JsonTest, ALongOrSmallNumberThatFitsIntoADoubleIsRead) {
    EXPECT_EQ(readJson("1.7976931348623157e308"), Json(std::numeric_limits<double>::max()));
    EXPECT_EQ(readJson("0e999999"), Json(0.0));
    EXPECT_EQ(readJson(std::string(400, '9') + "e-400"), Json(1.0));
    EXPECT_EQ(readJson("1" + std::string(308, '0')), Json(1e308));
    EXPECT_EQ(readJson("4.9406564584124654e-324"), Json(std::numeric_limits<double>::denorm_min()));
}

TEST(JsonTest, ANumberTooSmallForADoubleIsZero) {
    for (const char* number : {"1e-400", "-1e-400", "1e-99999999999999999999", "2e-324"})
        EXPECT_EQ(readJson(number), Json(0.0)) << number;
}

TEST(JsonTest, ADocumentMayBeNestedUpToTheBound) {
    const auto nested = [](std::size_t depth) {
        return readJson(std::string(depth, '[') + std::string(depth, ']')).has_value();
    };

    EXPECT_TRUE(nested(kDeepestJson));
    EXPECT_FALSE(nested(kDeepestJson + 1));
}

TEST(JsonTest, MembersAreTheTextOfTheirValues) {
    const auto members = readJsonMembers("\xEF\xBB\xBF { \"b\" : [ 1.50, {\"x\" :\t\" }, \\\" ]\"} ],\n"
                                         R"("\u0061": 12345678901234567890123 , "c":{},"c":-1e400})");

    EXPECT_EQ(members,
              (JsonMembers{
                  {"a", "12345678901234567890123"}, {"b", R"([1.50,{"x":" }, \" ]"}])"}, {"c", "-1e400"}}));
}

TEST(JsonTest, OnlyAValidObjectHasMembers) {
    EXPECT_EQ(readJsonMembers("{}"), JsonMembers());
    for (const char* document : {"", "[]", "1", "{\"a\":1", "{\"a\":1,}", "{\"a\" 1}", "{\"a\":\"\xFF\"}"})
        EXPECT_EQ(readJsonMembers(document), std::nullopt) << document;
}

TEST(JsonTest, MembersAreWrittenOnOneLineSortedByName) {
    EXPECT_EQ(writeJsonMembers({}), "{}");
    EXPECT_EQ(writeJsonMembers({{"b", "[1e400]"}, {"a\"", "1"}}), R"({"a\"":1,"b":[1e400]})");
    EXPECT_EQ(writeJsonMembers({{"\xFF", "1"}}), std::nullopt);
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
