// SPDX-License-Identifier: MIT

#pragma once

#include <string_view>

namespace tessarel {

/// Fixed facts about the application. All except the name are set at build time.
class Config {
public:
    static constexpr std::string_view appName = "Tessarel";
    static const std::string_view version;
    static const std::string_view bundleID;
    static const std::string_view websiteURL;
    static const std::string_view supportEmail;
    /// HTTPS address of the version feed.
    static const std::string_view updateFeedURL;
};

} // namespace tessarel
