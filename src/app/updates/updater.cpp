// SPDX-License-Identifier: MIT

#include "app/updates/updater.h"

#include "app/updates/update_feed.h"
#include "model/web_address.h"

#include <algorithm>
#include <compare>
#include <utility>

namespace tessarel {
namespace {

constexpr const char* kDownload = "Download";
constexpr const char* kLater = "Later";
constexpr const char* kOk = "OK";
constexpr std::size_t kDownloadButton = 0;

/// A number of a version, with any number of digits. Compared as text, because it may exceed every integer
/// type.
struct Component {
    bool isNegative = false;
    /// Without leading zeros; empty for 0.
    std::string_view digits;
};

std::strong_ordering operator<=>(const Component& a, const Component& b) {
    if (a.isNegative != b.isNegative)
        return a.isNegative ? std::strong_ordering::less : std::strong_ordering::greater;
    const auto magnitude =
        a.digits.size() != b.digits.size() ? a.digits.size() <=> b.digits.size() : a.digits <=> b.digits;
    if (!a.isNegative)
        return magnitude;
    return std::is_gt(magnitude)   ? std::strong_ordering::less
           : std::is_lt(magnitude) ? std::strong_ordering::greater
                                   : magnitude;
}

/// Parses a number with an optional sign. Returns 0 for any other text.
Component component(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789";
    const bool hasSign = text.starts_with('-') || text.starts_with('+');
    std::string_view digits = text.substr(hasSign ? 1 : 0);
    if (digits.find_first_not_of(kDigits) != std::string_view::npos)
        return {};
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return {text.starts_with('-') && !digits.empty(), digits};
}

/// Removes the first non-empty component from `version` and returns it; 0 if there is none.
Component takeComponent(std::string_view& version) {
    version.remove_prefix(std::min(version.find_first_not_of('.'), version.size()));
    const std::string_view text = version.substr(0, version.find('.'));
    version.remove_prefix(text.size());
    return component(text);
}

std::string text(std::string_view view) {
    return std::string(view);
}

std::string failureMessage(const std::optional<UrlResponse>& response) {
    if (!response)
        return "Please check your internet connection and try again.";
    return "The update information is not available right now (code " + std::to_string(response->statusCode) +
           "). Please try again later.";
}

} // namespace

Updater::Updater(Store& store, UrlLoadingPort& urlLoading, WallClockPort& wallClock, AlertsPort& alerts,
                 ApplicationPort& application, OpenUrlPort& openUrl, UpdateSource source)
    : m_store(store), m_urlLoading(urlLoading), m_wallClock(wallClock), m_alerts(alerts),
      m_application(application), m_openUrl(openUrl), m_source(std::move(source)) {}

void Updater::check(bool manual) {
    if (!isWebAddress(m_source.feedURL))
        return;
    const UrlRequest request{.url = m_source.feedURL,
                             .userAgent = text(Config::appName) + "/" + m_source.runningVersion,
                             .timeLimit = m_source.timeLimit,
                             .largestBody = kLargestFeed};
    const int load = ++m_lastLoad;
    m_loads[load] =
        m_urlLoading.load(request, [this, load, manual](const std::optional<UrlResponse>& response) {
            // Removes the load, but keeps it, and with it this callback's captures, alive until the callback
            // returns.
            const auto ended = m_loads.extract(load);
            finish(manual, response);
        });
}

void Updater::checkIfDue() {
    if (m_wallClock.secondsSince1970() - m_store.settings.lastUpdateCheck > kInterval)
        check(false);
}

bool Updater::isNewer(std::string_view a, std::string_view than) {
    while (!a.empty() || !than.empty()) {
        const auto order = takeComponent(a) <=> takeComponent(than);
        if (std::is_neq(order))
            return std::is_gt(order);
    }
    return false;
}

void Updater::finish(bool manual, const std::optional<UrlResponse>& response) {
    const auto feed = response && response->body ? decodeUpdateFeed(*response->body) : std::nullopt;
    if (!feed) {
        if (manual)
            alert("Could not check for updates", failureMessage(response));
        return;
    }
    // A failed check does not count, so that the next start tries again.
    m_store.settings.lastUpdateCheck = m_wallClock.secondsSince1970();
    m_store.save();
    if (isNewer(feed->version, m_source.runningVersion)) {
        alert(text(Config::appName) + " " + feed->version + " is available",
              "You have version " + m_source.runningVersion + ". " + feed->notes,
              feed->url.value_or(m_source.websiteURL));
    } else if (manual) {
        alert("You are up to date",
              text(Config::appName) + " " + m_source.runningVersion + " is the latest version.");
    }
}

void Updater::alert(const std::string& title, const std::string& message,
                    const std::optional<std::string>& downloadURL) {
    const auto buttons = downloadURL ? std::vector<std::string>{kDownload, kLater} : std::vector{text(kOk)};
    const int number = ++m_lastMessage;
    m_application.activate();
    m_messages[number] = m_alerts.show(
        {title, message, buttons}, [this, number, downloadURL](std::optional<std::size_t> button) {
            // Removes the message, but keeps this callback's captures alive until it returns.
            const auto closed = m_messages.extract(number);
            if (!downloadURL || button != kDownloadButton || !isWebAddress(*downloadURL))
                return;
            if (!m_openUrl.open(*downloadURL))
                alert("Could not open the download page",
                      "Please open this address in a web browser: " + *downloadURL);
        });
}

} // namespace tessarel
