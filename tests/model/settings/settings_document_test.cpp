// SPDX-License-Identifier: MIT

// Random settings documents: an encoded document decodes to the same settings, and a damaged one is rejected
// as a whole or decodes to settings that can be stored again.

#include "model/settings/settings_codec.h"
#include "support/long_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {
namespace {

class RandomSettings {
public:
    explicit RandomSettings(unsigned seed) : m_random(seed) {}

    std::size_t below(std::size_t count) { return m_random() % count; }
    bool flag() { return below(2) == 0; }

    double number() {
        switch (below(5)) {
        case 0:
            return static_cast<double>(below(2000)) - 1000;
        case 1:
            return static_cast<double>(m_random()) / 3;
        case 2:
            return static_cast<double>(m_random()) * 1e280;
        case 3:
            return -static_cast<double>(m_random()) * 1e-310;
        default:
            return finite(m_random());
        }
    }

    std::int64_t integer() { return static_cast<std::int64_t>(m_random()) >> below(64); }

    std::string text() {
        constexpr std::string_view kPieces[] = {"a",    "Z", ".",  "\"", "\\", "\n",
                                                "\x01", "é", "日", "😀",  "/",  "'"};
        std::string text;
        for (std::size_t length = below(12); length > 0; --length)
            text += kPieces[below(std::size(kPieces))];
        return text;
    }

    Zone zone() { return {flag(), number(), number(), number(), number()}; }

    std::vector<Zone> zones() {
        std::vector<Zone> zones(below(12));
        for (Zone& each : zones)
            each = zone();
        return zones;
    }

    AppSettings settings() {
        AppSettings settings;
        settings.zones = zones();
        settings.bindings.clear();
        for (std::size_t count = below(20); count > 0; --count)
            settings.bindings[text()] = {integer(), integer()};
        for (std::size_t count = below(4); count > 0; --count)
            settings.userLayouts.push_back({text(), zones()});
        settings.gap = number();
        settings.margin = number();
        settings.dragEnabled = flag();
        settings.dragTrigger = text();
        settings.edgeSnap = flag();
        for (std::size_t count = below(4); count > 0; --count)
            settings.ignoredApps.push_back(text());
        settings.hasOnboarded = flag();
        settings.gridStep = number();
        settings.lastUpdateCheck = number();
        settings.rememberApps = flag();
        for (std::size_t count = below(4); count > 0; --count)
            settings.appZones[text()] = integer();
        return settings;
    }

private:
    static double finite(std::uint64_t bits) {
        const auto value = std::bit_cast<double>(bits);
        return std::isfinite(value) ? value : 0;
    }

    std::mt19937_64 m_random;
};

TEST(SettingsDocumentTest, EncodedSettingsDecodeToTheSameSettings) {
    RandomSettings random(1);
    for (int round = 0; round < 500; ++round) {
        const AppSettings settings = random.settings();
        const auto document = encodeSettings(settings);
        ASSERT_TRUE(document);
        ASSERT_EQ(decodeSettings(*document), settings) << *document;
    }
}

std::string damaged(std::string document, RandomSettings& random) {
    using namespace std::literals;
    constexpr std::string_view kTokens[] = {
        "{",   "}",   "[",  "]",    ",",    ":",        "\"", "null", "true", "-1",    "1e99", "1e999",
        "0.5", "\\u", "\\", "\xff", "\xc3", "\"gap\":", "{}", "[]",   "\"\"", "\0x"sv, " "};
    static_assert(std::ranges::none_of(kTokens, &std::string_view::empty));
    for (std::size_t changes = 1 + random.below(3); changes > 0; --changes) {
        const auto at = random.below(document.size() + 1);
        switch (random.below(4)) {
        case 0:
            document.erase(at, 1 + random.below(20));
            break;
        case 1:
            document.insert(at, kTokens[random.below(std::size(kTokens))]);
            break;
        case 2:
            document.insert(at, document.substr(random.below(document.size() + 1), random.below(30)));
            break;
        default:
            if (at < document.size())
                document[at] = static_cast<char>(random.below(256));
        }
    }
    return document;
}

TEST(SettingsDocumentTest, ADamagedDocumentIsRejectedOrGivesSettingsThatCanBeStored) {
    RandomSettings random(2);
    const std::string document = encodeSettings(random.settings()).value();
    const int documents = rounds(5'000, 20'000);
    int accepted = 0;
    for (int round = 0; round < documents; ++round) {
        const std::string text = damaged(document, random);
        const auto settings = decodeSettings(text);
        if (!settings)
            continue;
        ++accepted;
        const auto written = encodeSettings(*settings);
        ASSERT_TRUE(written) << text;
        ASSERT_EQ(decodeSettings(*written), settings) << text;
    }

    EXPECT_GT(accepted, 100); // too few accepted documents would test nothing
    EXPECT_LT(accepted, documents * 3 / 4);
}

TEST(SettingsDocumentTest, ATruncatedDocumentIsRejected) {
    RandomSettings random(3);
    const std::string document = encodeSettings(random.settings()).value();

    for (std::size_t length = 0; length < document.size(); ++length)
        ASSERT_EQ(decodeSettings(std::string_view(document).substr(0, length)), std::nullopt) << length;
}

/// Runs each test in a C locale with a decimal comma.
class LocaleTest : public testing::Test {
protected:
    void SetUp() override {
        ::setenv("LOCPATH", TESSAREL_TEST_LOCALES, 1);
        ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
        ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

TEST_F(LocaleTest, NumbersDoNotDependOnTheLocale) {
    AppSettings settings;
    settings.gap = 1234567.75;
    settings.margin = 1e-7;

    const auto document = encodeSettings(settings);

    ASSERT_TRUE(document);
    EXPECT_NE(document->find("\"gap\":1234567.75"), std::string::npos) << *document;
    EXPECT_EQ(decodeSettings(*document), settings);
    EXPECT_EQ(decodeSettings(R"({"gap": 12.5e3})")->gap, 12500);
    EXPECT_EQ(decodeSettings(R"({"gap": 1.5e309})"), std::nullopt);
    EXPECT_EQ(decodeSettings(R"({"gap": 1,5})"), std::nullopt);
}

} // namespace
} // namespace tessarel
