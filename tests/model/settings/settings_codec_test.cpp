// SPDX-License-Identifier: MIT

#include "model/settings/settings_codec.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {
namespace {

std::optional<AppSettings> withMember(std::string_view name, std::string_view value) {
    return decodeSettings("{\"" + std::string(name) + "\":" + std::string(value) + "}");
}

std::optional<double> gap(std::string_view number) {
    const auto settings = withMember("gap", number);
    return settings ? std::optional(settings->gap) : std::nullopt;
}

std::optional<std::int64_t> appZone(std::string_view number) {
    const auto settings = withMember("appZones", "{\"a\":" + std::string(number) + "}");
    return settings ? std::optional(settings->appZones.at("a")) : std::nullopt;
}

std::string nested(std::size_t depth) {
    return "{\"unknown\":" + std::string(depth, '[') + std::string(depth, ']') + "}";
}

TEST(DecodeSettingsTest, AnEmptyObjectGivesTheDefaults) {
    EXPECT_EQ(decodeSettings("{}"), AppSettings());
}

TEST(DecodeSettingsTest, OneMemberLeavesTheOthersAtTheirDefaults) {
    AppSettings expected;
    expected.gap = 8;

    EXPECT_EQ(decodeSettings(R"({"gap": 8})"), expected);
}

TEST(DecodeSettingsTest, EveryMemberIsReadUnderItsName) {
    const auto settings = decodeSettings(R"({
        "zones": [{"enabled": true, "x": 1, "y": 2.5, "w": 3, "h": 4}],
        "bindings": {"zone1": {"keyCode": 7, "mods": 256}},
        "userLayouts": [{"name": "Mine", "zones": [{"enabled": false, "x": 5, "y": 6, "w": 7, "h": 8}]}],
        "gap": 1.5, "margin": 2.5, "dragEnabled": false, "dragTrigger": "always", "edgeSnap": true,
        "ignoredApps": ["org.example.one", "org.example.two"], "hasOnboarded": true, "gridStep": 2,
        "lastUpdateCheck": 1700000000.25, "rememberApps": false, "appZones": {"org.example.one": 3}})");

    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->zones, (std::vector<Zone>{{true, 1, 2.5, 3, 4}}));
    EXPECT_EQ(settings->bindings, (AppSettings::Bindings{{"zone1", {7, 256}}}));
    EXPECT_EQ(settings->userLayouts, (std::vector<Layout>{{"Mine", {{false, 5, 6, 7, 8}}}}));
    EXPECT_EQ(settings->gap, 1.5);
    EXPECT_EQ(settings->margin, 2.5);
    EXPECT_FALSE(settings->dragEnabled);
    EXPECT_EQ(settings->dragTrigger, "always");
    EXPECT_TRUE(settings->edgeSnap);
    EXPECT_EQ(settings->ignoredApps, (std::vector<std::string>{"org.example.one", "org.example.two"}));
    EXPECT_TRUE(settings->hasOnboarded);
    EXPECT_EQ(settings->gridStep, 2);
    EXPECT_EQ(settings->lastUpdateCheck, 1700000000.25);
    EXPECT_FALSE(settings->rememberApps);
    EXPECT_EQ(settings->appZones, (decltype(settings->appZones){{"org.example.one", 3}}));
}

TEST(DecodeSettingsTest, ANullMemberTakesItsDefault) {
    EXPECT_EQ(decodeSettings(R"({"zones": null, "bindings": null, "userLayouts": null, "gap": null,
                                 "margin": null, "dragEnabled": null, "dragTrigger": null, "edgeSnap": null,
                                 "ignoredApps": null, "hasOnboarded": null, "gridStep": null,
                                 "lastUpdateCheck": null, "rememberApps": null, "appZones": null})"),
              AppSettings());
}

TEST(DecodeSettingsTest, MapsAndListsAreNotMergedWithTheDefaults) {
    const auto settings =
        decodeSettings(R"({"bindings": {"zone1": {"keyCode": 0, "mods": 0}}, "zones": []})");

    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->bindings.size(), 1U);
    EXPECT_TRUE(settings->zones.empty());
}

TEST(DecodeSettingsTest, UnknownMembersAreIgnored) {
    EXPECT_EQ(decodeSettings(R"({"Gap": 8, "later": {"deep": [1, "two", null]}, "": true})"), AppSettings());
    EXPECT_EQ(
        decodeSettings(R"({"zones": [{"enabled": true, "x": 1, "y": 2, "w": 3, "h": 4, "label": "A"}]})")
            ->zones,
        (std::vector<Zone>{{true, 1, 2, 3, 4}}));
}

TEST(DecodeSettingsTest, BindingsOfUnknownActionsAreKept) {
    const auto settings = decodeSettings(R"({"bindings": {"future": {"keyCode": 1, "mods": 2}}})");

    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->bindings, (AppSettings::Bindings{{"future", {1, 2}}}));
}

TEST(DecodeSettingsTest, AListMayBeOfAnyLength) {
    const auto settings = decodeSettings(
        R"({"zones": [], "ignoredApps": ["a", "b", "a"], "userLayouts": [{"name": "", "zones": []}]})");

    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->ignoredApps, (std::vector<std::string>{"a", "b", "a"}));
    EXPECT_EQ(settings->userLayouts, (std::vector<Layout>{{"", {}}}));
}

TEST(DecodeSettingsTest, TextThatIsNotAJsonObjectIsRejected) {
    for (const std::string_view text : {"",
                                        " ",
                                        "null",
                                        "[]",
                                        "[{}]",
                                        "8",
                                        "true",
                                        "\"{}\"",
                                        "{",
                                        "{}}",
                                        "{} {}",
                                        "{\"gap\":8,}",
                                        "{'gap':8}",
                                        "{gap:8}",
                                        "/* */{}",
                                        "{\"gap\":08}",
                                        "{\"gap\":+8}",
                                        "{\"gap\":.5}",
                                        "{\"gap\":NaN}",
                                        "{\"gap\":Infinity}"})
        EXPECT_EQ(decodeSettings(text), std::nullopt) << text;
}

TEST(DecodeSettingsTest, ALeadingByteOrderMarkIsAccepted) {
    EXPECT_EQ(decodeSettings("\xef\xbb\xbf{\"gap\":8}")->gap, 8);
}

struct Member {
    std::string_view name;
    std::vector<std::string_view> wrong;
};

class WrongTypeTest : public testing::TestWithParam<Member> {};

TEST_P(WrongTypeTest, FailsTheWholeDocument) {
    for (const std::string_view value : GetParam().wrong)
        EXPECT_EQ(withMember(GetParam().name, value), std::nullopt) << value;
}

INSTANTIATE_TEST_SUITE_P(
    EveryMember, WrongTypeTest,
    testing::Values(
        Member{"zones",
               {"{}", "1", "\"\"", "false", "[null]", "[[]]", "[1]", "[{}]", R"([{"x":1,"y":2,"w":3,"h":4}])",
                R"([{"enabled":true,"y":2,"w":3,"h":4}])", R"([{"enabled":true,"x":1,"w":3,"h":4}])",
                R"([{"enabled":true,"x":1,"y":2,"h":4}])", R"([{"enabled":true,"x":1,"y":2,"w":3}])",
                R"([{"enabled":1,"x":1,"y":2,"w":3,"h":4}])", R"([{"enabled":null,"x":1,"y":2,"w":3,"h":4}])",
                R"([{"enabled":true,"x":"1","y":2,"w":3,"h":4}])",
                R"([{"enabled":true,"x":1,"y":2,"w":3,"h":4},7])"}},
        Member{"bindings",
               {"[]", "1", "\"\"", "true", R"({"zone1":null})", R"({"zone1":{}})",
                R"({"zone1":{"keyCode":1}})", R"({"zone1":{"mods":1}})",
                R"({"zone1":{"keyCode":1,"mods":null}})", R"({"zone1":{"keyCode":1.5,"mods":1}})",
                R"({"zone1":{"keyCode":"1","mods":1}})", R"({"zone1":{"keyCode":true,"mods":1}})",
                R"({"zone1":[1,2]})"}},
        Member{"userLayouts",
               {"{}", "1", "[1]", "[{}]", R"([{"name":"a"}])", R"([{"zones":[]}])",
                R"([{"name":1,"zones":[]}])", R"([{"name":null,"zones":[]}])",
                R"([{"name":"a","zones":null}])", R"([{"name":"a","zones":[{}]}])"}},
        Member{"gap", {"\"8\"", "true", "[]", "{}"}}, Member{"margin", {"\"8\"", "false", "[8]", "{}"}},
        Member{"dragEnabled", {"0", "1", "\"true\"", "[]", "{}"}},
        Member{"dragTrigger", {"0", "true", "[]", "{}", "[\"shift\"]"}},
        Member{"edgeSnap", {"0", "1", "\"\"", "[]", "{}"}},
        Member{"ignoredApps", {"{}", "\"a\"", "1", "true", "[1]", "[null]", "[\"a\",[]]"}},
        Member{"hasOnboarded", {"0", "1", "\"\"", "[]", "{}"}},
        Member{"gridStep", {"\"5\"", "true", "[]", "{}"}},
        Member{"lastUpdateCheck", {"\"2026-01-01\"", "true", "[]", "{}"}},
        Member{"rememberApps", {"0", "1", "\"\"", "[]", "{}"}},
        Member{"appZones",
               {"[]", "1", "\"a\"", R"({"a":1.5})", R"({"a":"1"})", R"({"a":null})", R"({"a":true})"}}),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(DecodeSettingsTest, AnIntegerMayBeWrittenWithAFractionOfZero) {
    EXPECT_EQ(appZone("18"), 18);
    EXPECT_EQ(appZone("18.0"), 18);
    EXPECT_EQ(appZone("1.8e1"), 18);
    EXPECT_EQ(appZone("-3"), -3);
    EXPECT_EQ(appZone("-0.0"), 0);
    EXPECT_EQ(appZone("18.5"), std::nullopt);
    EXPECT_EQ(appZone("1e-1"), std::nullopt);
}

TEST(DecodeSettingsTest, AnIntegerHasSixtyFourBits) {
    EXPECT_EQ(appZone("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(appZone("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(appZone("-9223372036854775808.0"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(appZone("9223372036854775808"), std::nullopt);
    EXPECT_EQ(appZone("18446744073709551615"), std::nullopt);
    EXPECT_EQ(appZone("18446744073709551616"), std::nullopt);
    EXPECT_EQ(appZone("-9223372036854775809"),
              std::numeric_limits<std::int64_t>::min()); // read as a double, which rounds to -2^63
    EXPECT_EQ(appZone("1e300"), std::nullopt);
}

TEST(DecodeSettingsTest, NumbersAreReadAtFullPrecision) {
    EXPECT_EQ(gap("33.333333333333336"), 100.0 / 3);
    EXPECT_EQ(gap("66.66666666666667"), 200.0 / 3);
    EXPECT_EQ(gap("0.1"), 0.1);
    EXPECT_EQ(gap("-12.5e-3"), -0.0125);
    EXPECT_EQ(gap("1E2"), 100);
    EXPECT_EQ(gap("1.25E+2"), 125);
    EXPECT_EQ(gap("0.00625e0004"), 62.5);
    EXPECT_EQ(gap("-0.5"), -0.5);
    EXPECT_EQ(gap("4.9406564584124654e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(gap("1." + std::string(400, '0')), 1);
    EXPECT_EQ(gap(std::string(400, '9') + ".5e-400"), 1);
    EXPECT_EQ(gap("18446744073709551615"), 18446744073709551615.0);
    EXPECT_EQ(gap("1.7976931348623157e308"), std::numeric_limits<double>::max());
}

TEST(DecodeSettingsTest, ANumberBeyondTheRangeOfADoubleFailsTheDocument) {
    EXPECT_EQ(gap("1e309"), std::nullopt);
    EXPECT_EQ(gap("-1e309"), std::nullopt);
    EXPECT_EQ(gap("1.5e309"), std::nullopt);
    EXPECT_EQ(gap("1.5e99999999999"), std::nullopt);
    EXPECT_EQ(gap(std::string(400, '9')), std::nullopt);
}

TEST(DecodeSettingsTest, TheLastOfDuplicateMembersWins) {
    EXPECT_EQ(decodeSettings(R"({"gap": 1, "gap": 2})")->gap, 2);
    EXPECT_EQ(decodeSettings(R"({"ignoredApps": ["a"], "ignoredApps": ["b"]})")->ignoredApps,
              std::vector<std::string>{"b"});
    EXPECT_EQ(decodeSettings(R"({"appZones": {"a": 1}, "appZones": {"b": 2}})")->appZones.count("a"), 0U);
}

TEST(DecodeSettingsTest, TextMustBeUtf8) {
    EXPECT_EQ(withMember("dragTrigger", "\"\xc3\xa9\"")->dragTrigger, "\xc3\xa9");
    EXPECT_EQ(withMember("dragTrigger", "\"\xff\""), std::nullopt);
    EXPECT_EQ(withMember("dragTrigger", "\"\xc3\""), std::nullopt);
    EXPECT_EQ(withMember("dragTrigger", "\"\xed\xa0\x80\""), std::nullopt);
    EXPECT_EQ(withMember("unknown", "\"\xff\""), std::nullopt);
}

TEST(DecodeSettingsTest, EscapesAreDecoded) {
    EXPECT_EQ(withMember("dragTrigger", R"("\u00e9\ud83d\ude00\"\\\n\u0000x")")->dragTrigger,
              std::string("\xc3\xa9\xf0\x9f\x98\x80\"\\\n\0x", 11));
    EXPECT_EQ(withMember("dragTrigger", R"("\ud83d")"), std::nullopt);
}

TEST(DecodeSettingsTest, DeepNestingDoesNotExhaustTheStack) {
    EXPECT_EQ(decodeSettings(nested(100'000)), AppSettings());
    EXPECT_EQ(decodeSettings(std::string(100'000, '[')), std::nullopt);
}

TEST(DecodeSettingsTest, UnknownMembersMayHoldAnything) {
    const std::string zone = R"({"enabled": true, "x": 1, "y": 2, "w": 3, "h": 4, "unknown": [-1e999]})";

    EXPECT_EQ(withMember("unknown", "[1e400, " + std::string(500, '9') + "]"), AppSettings());
    EXPECT_EQ(withMember("zones", "[" + zone + "]")->zones, (std::vector<Zone>{{true, 1, 2, 3, 4}}));
}

TEST(DecodeSettingsTest, ANumberTooLargeForADoubleIsOfNoType) {
    for (const char* name : {"zones", "bindings", "gap", "dragEnabled", "dragTrigger", "ignoredApps"})
        EXPECT_EQ(withMember(name, "1e400"), std::nullopt) << name;
    EXPECT_EQ(appZone("1e400"), std::nullopt);
}

TEST(DecodeSettingsTest, ANumberTooSmallForADoubleIsZero) {
    EXPECT_EQ(gap("1e-400"), 0);
    EXPECT_EQ(appZone("-1e-400"), 0);
}

TEST(DecodeSettingsTest, AZeroByteMakesTheDocumentUnreadable) {
    EXPECT_EQ(decodeSettings(std::string("{\"gap\": 8}\0", 11)), std::nullopt);
}

TEST(EncodeSettingsTest, WritesEveryMember) {
    const auto document = encodeSettings(AppSettings());

    ASSERT_TRUE(document);
    for (const std::string_view name :
         {"zones", "bindings", "userLayouts", "gap", "margin", "dragEnabled", "dragTrigger", "edgeSnap",
          "ignoredApps", "hasOnboarded", "gridStep", "lastUpdateCheck", "rememberApps", "appZones"})
        EXPECT_NE(document->find("\"" + std::string(name) + "\":"), std::string::npos) << name;
}

TEST(EncodeSettingsTest, KeepsUnknownMembersAsTheyWereWritten) {
    const std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
    const std::string unknown = R"("Unknown":[1e400,12345678901234567890123,1.50,"\u00e9"])";
    const std::string document = encodeSettings(AppSettings()).value();

    EXPECT_EQ(encodeSettings(AppSettings(), "{\n " + unknown + ", \"gap\": 8}"),
              "{" + unknown + "," + document.substr(1));
    EXPECT_EQ(encodeSettings(AppSettings(), "{\"Unknown\":" + deep + "}"),
              "{\"Unknown\":" + deep + "," + document.substr(1));
}

TEST(EncodeSettingsTest, IsCompactAndWritesWholeNumbersWithoutAFraction) {
    AppSettings settings;
    settings.zones = {{true, 100.0 / 3, 0, 50, 100}};
    settings.bindings = {{"maximize", {36, 6144}}};
    settings.userLayouts = {{"Mine", {}}};
    settings.appZones = {{"org.example.one", 3}};
    settings.lastUpdateCheck = 1700000000.25;

    EXPECT_EQ(encodeSettings(settings),
              R"({"appZones":{"org.example.one":3},"bindings":{"maximize":{"keyCode":36,"mods":6144}},)"
              R"("dragEnabled":true,"dragTrigger":"shift","edgeSnap":false,"gap":0,"gridStep":5,)"
              R"("hasOnboarded":false,"ignoredApps":[],"lastUpdateCheck":1700000000.25,"margin":0,)"
              R"("rememberApps":true,"userLayouts":[{"name":"Mine","zones":[]}],)"
              R"("zones":[{"enabled":true,"h":100,"w":50,"x":33.333333333333336,"y":0}]})");
}

TEST(EncodeSettingsTest, WritesWholeNumbersAsIntegersBelowTwoToThe53) {
    AppSettings settings;
    settings.gap = 9007199254740991;
    settings.margin = -9007199254740991;
    settings.gridStep = 9007199254740992;

    const std::string document = encodeSettings(settings).value();

    EXPECT_NE(document.find("\"gap\":9007199254740991,"), std::string::npos) << document;
    EXPECT_NE(document.find("\"margin\":-9007199254740991,"), std::string::npos) << document;
    EXPECT_EQ(document.find("\"gridStep\":9007199254740992,"), std::string::npos) << document;
    EXPECT_EQ(decodeSettings(document), settings);
}

TEST(EncodeSettingsTest, AZeroHasNoSign) {
    AppSettings settings;
    settings.zones = {{true, -0.0, -0.0, -0.0, -0.0}};
    settings.gap = settings.margin = settings.gridStep = settings.lastUpdateCheck = -0.0;

    const std::string document = encodeSettings(settings).value();

    EXPECT_EQ(document.find("-0"), std::string::npos) << document;
    EXPECT_EQ(decodeSettings(document), settings);
}

TEST(EncodeSettingsTest, KeepsEmptyListsAndMaps) {
    AppSettings settings;
    settings.zones.clear();
    settings.bindings.clear();

    EXPECT_EQ(decodeSettings(encodeSettings(settings).value()), settings);
}

TEST(EncodeSettingsTest, RejectsNonFiniteNumbers) {
    for (const double number : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        for (double AppSettings::*const field : {&AppSettings::gap, &AppSettings::margin,
                                                 &AppSettings::gridStep, &AppSettings::lastUpdateCheck}) {
            AppSettings settings;
            settings.*field = number;
            EXPECT_EQ(encodeSettings(settings), std::nullopt);
        }
        for (double Zone::*const field : {&Zone::x, &Zone::y, &Zone::w, &Zone::h}) {
            Zone zone;
            zone.*field = number;
            AppSettings active;
            active.zones.back() = zone;
            EXPECT_EQ(encodeSettings(active), std::nullopt);
            AppSettings saved;
            saved.userLayouts = {{"a", {}}, {"b", {zone}}};
            EXPECT_EQ(encodeSettings(saved), std::nullopt);
        }
    }
}

TEST(EncodeSettingsTest, RejectsTextThatIsNotUtf8) {
    AppSettings trigger;
    trigger.dragTrigger = "\xff";
    AppSettings ignored;
    ignored.ignoredApps = {"\xc3"};
    AppSettings layout;
    layout.userLayouts = {{"\xed\xa0\x80", {}}};
    AppSettings application;
    application.appZones = {{"\xfe", 1}};

    EXPECT_EQ(encodeSettings(trigger), std::nullopt);
    EXPECT_EQ(encodeSettings(ignored), std::nullopt);
    EXPECT_EQ(encodeSettings(layout), std::nullopt);
    EXPECT_EQ(encodeSettings(application), std::nullopt);
}

} // namespace
} // namespace tessarel
