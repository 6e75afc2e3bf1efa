// SPDX-License-Identifier: MIT

#pragma once

#include "model/config.h"
#include "model/settings/store.h"
#include "model/subscription.h"
#include "ports/alerts_port.h"
#include "ports/application_port.h"
#include "ports/open_url_port.h"
#include "ports/url_loading_port.h"
#include "ports/wall_clock_port.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// Where the updater looks for a new version, and which version it compares it with.
struct UpdateSource {
    std::string feedURL{Config::updateFeedURL};
    /// Download page for a feed that has no address of its own.
    std::string websiteURL{Config::websiteURL};
    std::string runningVersion{Config::version};
    /// Limit for loading the feed.
    std::chrono::milliseconds timeLimit = std::chrono::seconds(15);
};

/// Tells the user about a newer version and opens its download page. Downloads and installs nothing.
///
/// Checks are independent of each other; several may run at the same time, and each shows its own message.
/// Destroying the updater cancels the checks and removes the messages.
class Updater {
public:
    /// Maximum size of the feed, in bytes.
    static constexpr std::size_t kLargestFeed = 1024UL * 1024;
    /// Minimum time between a successful check and the next automatic one, in seconds.
    static constexpr double kInterval = 86'400;

    /// The store and all ports must outlive the updater.
    Updater(Store& store, UrlLoadingPort& urlLoading, WallClockPort& wallClock, AlertsPort& alerts,
            ApplicationPort& application, OpenUrlPort& openUrl, UpdateSource source = {});
    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;
    ~Updater() = default;

    /// Loads the feed once. Always tells the user about a newer version. That there is none, or that the
    /// check failed, is shown only if the check is `manual`. Does nothing if the address of the feed is not a
    /// web address. A successful check stores its time in the settings.
    void check(bool manual);

    /// Starts an automatic check if the last successful one is more than a day ago.
    void checkIfDue();

    /// Returns whether version `a` is newer than version `than`. Both consist of numbers separated by dots,
    /// which are compared from the left. Empty components are skipped; missing and non-numeric ones count as
    /// 0. A number may have a sign and any number of digits.
    [[nodiscard]] static bool isNewer(std::string_view a, std::string_view than);

private:
    /// Handles the response to a check.
    void finish(bool manual, const std::optional<UrlResponse>& response);
    /// Shows a message, with a button that opens `downloadURL` if it is given.
    void alert(const std::string& title, const std::string& message,
               const std::optional<std::string>& downloadURL = std::nullopt);

    Store& m_store;
    UrlLoadingPort& m_urlLoading;
    WallClockPort& m_wallClock;
    AlertsPort& m_alerts;
    ApplicationPort& m_application;
    OpenUrlPort& m_openUrl;
    UpdateSource m_source;
    /// Loads in progress, by number.
    std::map<int, SubscriptionPtr> m_loads;
    int m_lastLoad = 0;
    /// Messages that the user has not closed yet, by number.
    std::map<int, SubscriptionPtr> m_messages;
    int m_lastMessage = 0;
};

} // namespace tessarel
