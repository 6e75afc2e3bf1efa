#pragma once

#include "model/config.h"
#include "model/store.h"
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

/// Where the updater asks, and for whom.
struct UpdateSource {
    std::string feedURL{Config::updateFeedURL};
    std::string websiteURL{Config::websiteURL}; ///< the download page of a feed that names none
    std::string runningVersion{Config::version};
    std::chrono::milliseconds timeLimit = std::chrono::seconds(15);
};

/// Tells the user when there is a newer version, and opens its download page. Nothing is downloaded or
/// installed.
///
/// Each check stands for itself, however many are on their way; those on their way end with the updater.
class Updater {
public:
    /// The largest feed that is read, in bytes.
    static constexpr std::size_t kLargestFeed = 1024UL * 1024;
    /// More than this since the last successful check, in seconds, and the next one is due.
    static constexpr double kInterval = 86'400;

    Updater(Store& store, UrlLoadingPort& urlLoading, WallClockPort& wallClock, AlertsPort& alerts,
            ApplicationPort& application, OpenUrlPort& openUrl, UpdateSource source = {});
    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;
    ~Updater() = default;

    /// Asks once which version is current. A newer one is always reported to the user; that there is none, or
    /// that it could not be found out, only when the check is `manual`. Does nothing when the feed's address
    /// is none.
    void check(bool manual);

    /// An automatic check, if the last successful one is more than a day ago.
    void checkIfDue();

    /// Whether version `a` is newer than version `b`. Both are numbers separated by dots, compared from the
    /// left; a missing one, or one that is no number, counts as 0. Numbers may have a sign and any length.
    [[nodiscard]] static bool isNewer(std::string_view a, std::string_view than);

private:
    void finish(bool manual, const std::optional<UrlResponse>& response);
    void alert(const std::string& title, const std::string& message,
               const std::optional<std::string>& downloadURL = std::nullopt);

    Store& m_store;
    UrlLoadingPort& m_urlLoading;
    WallClockPort& m_wallClock;
    AlertsPort& m_alerts;
    ApplicationPort& m_application;
    OpenUrlPort& m_openUrl;
    UpdateSource m_source;
    std::map<int, SubscriptionPtr> m_loads; // those on their way, numbered
    int m_lastLoad = 0;
};

} // namespace tessarel
