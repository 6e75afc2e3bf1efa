// SPDX-License-Identifier: MIT

#include "model/config.h"

#include <gtest/gtest.h>

#include <string_view>

namespace tessarel {
namespace {

TEST(ConfigTest, TheApplicationIsCalledTessarel) {
    EXPECT_EQ(Config::appName, "Tessarel");
}

TEST(ConfigTest, TheVersionIsTheProjectVersion) {
    EXPECT_EQ(Config::version, TESSAREL_EXPECTED_VERSION);
}

TEST(ConfigTest, TheUpdateFeedIsVersionJsonOverHttps) {
    EXPECT_TRUE(Config::updateFeedURL.starts_with("https://"));
    EXPECT_TRUE(Config::updateFeedURL.ends_with("/version.json"));
}

TEST(ConfigTest, NoValueIsEmptyOrAnUnreplacedPlaceholder) {
    for (const std::string_view text : {Config::version, Config::bundleID, Config::websiteURL,
                                        Config::supportEmail, Config::updateFeedURL}) {
        EXPECT_FALSE(text.empty());
        EXPECT_EQ(text.find('@'), text == Config::supportEmail ? text.rfind('@') : std::string_view::npos);
    }
}

} // namespace
} // namespace tessarel
