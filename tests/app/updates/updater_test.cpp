// SPDX-License-Identifier: MIT

#include "app/updates/updater.h"

#include "model/settings/settings_codec.h"
#include "platform/sim/sim_desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr bool kManual = true;
constexpr bool kAutomatic = false;
constexpr const char* kNewer = R"({"version": "1.3", "notes": "Faster.", "url": "https://a.example/1.3"})";
constexpr std::size_t kDownload = 0; // positions of the buttons of an offer
constexpr std::size_t kLater = 1;
constexpr const char* kFailed = "Could not check for updates";

class UpdaterTest : public testing::Test {
protected:
    std::unique_ptr<Updater> makeUpdater() {
        return std::make_unique<Updater>(store, web, desktop.wallClock(), desktop.alerts(),
                                         desktop.ownApplication(), desktop.openUrl(), source);
    }

    /// Runs a check and replies to its request with `response`; `std::nullopt` is a failed connection.
    void check(bool manual, std::optional<UrlResponse> response) {
        updater->check(manual);
        web.answer(web.requests.size() - 1, std::move(response));
    }
    void check(bool manual, const std::string& body) { check(manual, UrlResponse{200, body}); }

    [[nodiscard]] const std::vector<Alert>& alerts() { return desktop.alerts().shown; }
    [[nodiscard]] std::optional<AppSettings> savedSettings() {
        const auto document = desktop.preferences().data(Store::key);
        return document ? decodeSettings(*document) : std::nullopt;
    }

    sim::SimDesktop desktop;
    Store store{desktop.preferences()};
    sim::SimUrlLoading& web = desktop.urlLoading();
    UpdateSource source{.feedURL = "https://tessarel.example/feed",
                        .websiteURL = "https://tessarel.example/home",
                        .runningVersion = "1.2"};
    std::unique_ptr<Updater> updater = makeUpdater();
};

TEST_F(UpdaterTest, RequestsTheFeedOnceAndSendsOnlyNameAndVersion) {
    updater->check(kManual);

    EXPECT_THAT(web.requests, ElementsAre(UrlRequest{.url = "https://tessarel.example/feed",
                                                     .userAgent = "Tessarel/1.2",
                                                     .timeLimit = std::chrono::seconds(15),
                                                     .largestBody = 1'048'576}));
}

TEST_F(UpdaterTest, TheDefaultSourceIsTheConfiguredFeedOverHttps) {
    EXPECT_EQ(UpdateSource().feedURL, Config::updateFeedURL);
    EXPECT_EQ(UpdateSource().websiteURL, Config::websiteURL);
    EXPECT_EQ(UpdateSource().runningVersion, Config::version);
    EXPECT_TRUE(UpdateSource().feedURL.starts_with("https://"));
}

TEST_F(UpdaterTest, AnInvalidFeedAddressIsIgnoredSilently) {
    for (const char* address : {"", "tessarel.example/feed", "file:///etc/passwd", "https://"}) {
        source.feedURL = address;
        makeUpdater()->check(kManual);
    }

    EXPECT_THAT(web.requests, IsEmpty());
    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(UpdaterTest, ANewerVersionIsOfferedByManualAndAutomaticChecks) {
    check(kManual, kNewer);
    check(kAutomatic, kNewer);

    const Alert offer{"Tessarel 1.3 is available", "You have version 1.2. Faster.", {"Download", "Later"}};
    EXPECT_THAT(alerts(), ElementsAre(offer, offer));
}

TEST_F(UpdaterTest, WithoutNotesTheMessageEndsAfterTheVersion) {
    check(kManual, R"({"version": "1.3"})");

    EXPECT_EQ(alerts().at(0).informativeText, "You have version 1.2. ");
}

TEST_F(UpdaterTest, TheSameVersionIsReportedByAManualCheckOnly) {
    check(kAutomatic, R"({"version": "1.2.0"})");
    EXPECT_THAT(alerts(), IsEmpty());

    check(kManual, R"({"version": "1.2.0"})");
    EXPECT_THAT(alerts(),
                ElementsAre(Alert{"You are up to date", "Tessarel 1.2 is the latest version.", {"OK"}}));
}

TEST_F(UpdaterTest, AnOlderVersionIsNoUpdate) {
    check(kAutomatic, R"({"version": "1.1.9"})");
    check(kManual, R"({"version": "1.1.9"})");

    ASSERT_EQ(alerts().size(), 1U);
    EXPECT_EQ(alerts()[0].messageText, "You are up to date");
}

TEST_F(UpdaterTest, TheProgramComesToTheFrontOnlyForAMessage) {
    check(kAutomatic, R"({"version": "1.2"})");
    EXPECT_EQ(desktop.ownApplication().activations, 0);

    check(kManual, R"({"version": "1.2"})");
    EXPECT_EQ(desktop.ownApplication().activations, 1);
}

TEST_F(UpdaterTest, DownloadOpensTheAddressOfTheFeed) {
    check(kManual, kNewer);
    EXPECT_THAT(desktop.openUrl().opened, IsEmpty());

    desktop.alerts().close(kDownload);

    EXPECT_THAT(desktop.openUrl().opened, ElementsAre("https://a.example/1.3"));
}

TEST_F(UpdaterTest, DownloadOpensTheWebsiteWhenTheFeedNamesNoAddress) {
    for (const char* const feed : {R"({"version": "1.3"})", R"({"version": "1.3", "url": 3})"}) {
        check(kManual, feed);
        desktop.alerts().close(kDownload);
    }

    EXPECT_THAT(desktop.openUrl().opened,
                ElementsAre("https://tessarel.example/home", "https://tessarel.example/home"));
}

TEST_F(UpdaterTest, ADownloadThatNoBrowserOpensNamesItsAddress) {
    desktop.openUrl().hasBrowser = false;
    check(kAutomatic, kNewer);

    desktop.alerts().close(kDownload);

    ASSERT_EQ(alerts().size(), 2U);
    EXPECT_EQ(alerts()[1], (Alert{"Could not open the download page",
                                  "Please open this address in a web browser: https://a.example/1.3",
                                  {"OK"}}));
    EXPECT_TRUE(desktop.alerts().close(0));
}

TEST_F(UpdaterTest, LaterAndClosingOpenNothing) {
    for (const auto button : {std::optional(kLater), std::optional<std::size_t>()}) {
        check(kManual, kNewer);
        EXPECT_TRUE(desktop.alerts().close(button));
    }

    EXPECT_THAT(desktop.openUrl().opened, IsEmpty());
}

TEST_F(UpdaterTest, AMessageWithoutADownloadOpensNothing) {
    check(kManual, R"({"version": "1.2", "url": "https://a.example/1.2"})");
    EXPECT_TRUE(desktop.alerts().close(0));

    EXPECT_THAT(desktop.openUrl().opened, IsEmpty());
}

TEST_F(UpdaterTest, DownloadOpensOnlyWebAddresses) {
    for (const char* url : {"", "file:///etc/passwd", "javascript:alert(1)", "example.org/1.3",
                            "//example.org", "https://a b", "mailto:a@example.org"}) {
        check(kManual, std::string(R"({"version": "1.3", "url": ")") + url + R"("})");
        desktop.alerts().close(kDownload);
    }

    EXPECT_EQ(alerts().size(), 7U);
    EXPECT_THAT(desktop.openUrl().opened, IsEmpty());
}

TEST_F(UpdaterTest, TheTimeOfASuccessfulCheckIsSavedForAnyVersion) {
    for (const char* version : {"1.1", "1.2", "1.3"}) {
        desktop.advance(std::chrono::seconds(10));
        check(kAutomatic, std::string(R"({"version": ")") + version + R"("})");

        EXPECT_EQ(store.settings.lastUpdateCheck, desktop.wallClock().secondsSince1970());
        EXPECT_EQ(savedSettings()->lastUpdateCheck, desktop.wallClock().secondsSince1970());
    }
}

TEST_F(UpdaterTest, TheTimeOfACheckIsThatOfItsReply) {
    updater->check(kAutomatic);
    desktop.advance(std::chrono::seconds(10));

    web.answer(0, UrlResponse{200, kNewer});

    EXPECT_EQ(store.settings.lastUpdateCheck, desktop.wallClock().secondsSince1970());
}

/// Alerts that record the stored settings and the number of activations when a message is shown.
class DoneWhenShown : public AlertsPort {
public:
    DoneWhenShown(PreferencesPort& preferences, const sim::SimOwnApplication& application)
        : m_preferences(preferences), m_application(application) {}

    [[nodiscard]] SubscriptionPtr show(const Alert&, Closed) override {
        document = m_preferences.data(Store::key);
        activations = m_application.activations;
        return nullptr;
    }
    void runModal(const Alert&) override {}
    std::optional<std::string> runModalForText(const Alert&) override { return std::nullopt; }

    std::optional<std::string> document;
    int activations = 0; ///< of the program, up to then

private:
    PreferencesPort& m_preferences;
    const sim::SimOwnApplication& m_application;
};

TEST_F(UpdaterTest, ASuccessIsSavedAndTheProgramActivatedBeforeTheMessage) {
    DoneWhenShown message(desktop.preferences(), desktop.ownApplication());
    Updater other(store, web, desktop.wallClock(), message, desktop.ownApplication(), desktop.openUrl(),
                  source);

    other.check(kManual);
    web.answer(0, UrlResponse{200, kNewer});

    ASSERT_TRUE(message.document);
    EXPECT_EQ(decodeSettings(*message.document)->lastUpdateCheck, desktop.wallClock().secondsSince1970());
    EXPECT_EQ(message.activations, 1);
}

TEST_F(UpdaterTest, ACheckPostsNoSettingsChange) {
    int told = 0;
    const auto observer = store.tessarelSettingsChanged.connect([&] { ++told; });

    check(kManual, kNewer);

    EXPECT_EQ(told, 0);
}

TEST_F(UpdaterTest, TheHttpStatusOfAValidFeedDoesNotMatter) {
    check(kManual, UrlResponse{404, kNewer});
    check(kManual, UrlResponse{500, kNewer});
    check(kManual, UrlResponse{0, kNewer});

    ASSERT_EQ(alerts().size(), 3U);
    for (const Alert& alert : alerts())
        EXPECT_EQ(alert.messageText, "Tessarel 1.3 is available");
}

TEST_F(UpdaterTest, AnInvalidFeedIsReportedWithItsHttpStatus) {
    check(kManual, UrlResponse{500, "<html>Internal error</html>"});

    EXPECT_THAT(alerts(), ElementsAre(Alert{kFailed,
                                            "The update information is not available right now (code 500). "
                                            "Please try again later.",
                                            {"OK"}}));
}

TEST_F(UpdaterTest, AFeedWhoseVersionIsANumberIsInvalid) {
    check(kManual, R"({"version": 1.3})");

    EXPECT_THAT(alerts().at(0).informativeText, testing::HasSubstr("(code 200)"));
}

TEST_F(UpdaterTest, ABodyThatIsTooLargeIsReportedWithItsHttpStatus) {
    check(kManual, UrlResponse{200, std::nullopt});

    EXPECT_EQ(alerts().at(0).messageText, kFailed);
    EXPECT_THAT(alerts().at(0).informativeText, testing::HasSubstr("(code 200)"));
}

TEST_F(UpdaterTest, WithoutAResponseTheMessageNamesTheConnection) {
    check(kManual, std::nullopt);

    EXPECT_THAT(alerts(),
                ElementsAre(Alert{kFailed, "Please check your internet connection and try again.", {"OK"}}));
}

TEST_F(UpdaterTest, AFailedAutomaticCheckIsSilentAndNotRecorded) {
    store.settings.lastUpdateCheck = 5;
    const int writes = desktop.preferencesStorage().writes;

    check(kAutomatic, std::nullopt);
    check(kAutomatic, "[]");
    check(kAutomatic, UrlResponse{500, "<html>"});
    check(kAutomatic, UrlResponse{200, std::nullopt});

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(store.settings.lastUpdateCheck, 5);
    EXPECT_EQ(desktop.preferencesStorage().writes, writes);
}

TEST_F(UpdaterTest, AFailedManualCheckIsNotRecorded) {
    check(kManual, "{}");

    EXPECT_EQ(store.settings.lastUpdateCheck, 0);
    EXPECT_FALSE(savedSettings());
}

TEST_F(UpdaterTest, AFailedCheckIsNotRetried) {
    check(kAutomatic, std::nullopt);
    desktop.advance(std::chrono::hours(48));

    EXPECT_EQ(web.requests.size(), 1U);
}

TEST_F(UpdaterTest, TheFirstLaunchChecks) {
    updater->checkIfDue();

    EXPECT_EQ(web.waiting(), 1U);
}

TEST_F(UpdaterTest, ACheckIsDueAfterMoreThanADay) {
    store.settings.lastUpdateCheck = desktop.wallClock().secondsSince1970();

    desktop.advance(std::chrono::seconds(86'400));
    updater->checkIfDue();
    EXPECT_EQ(web.requests.size(), 0U);

    desktop.advance(std::chrono::seconds(1));
    updater->checkIfDue();
    EXPECT_EQ(web.requests.size(), 1U);
}

TEST_F(UpdaterTest, AfterTheClockWasSetBackNoCheckIsDue) {
    store.settings.lastUpdateCheck = desktop.wallClock().secondsSince1970() + 1e9;

    updater->checkIfDue();

    EXPECT_THAT(web.requests, IsEmpty());
}

TEST_F(UpdaterTest, ADueCheckIsAutomatic) {
    updater->checkIfDue();
    web.answer(0, std::nullopt);

    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(UpdaterTest, AManualCheckRunsEvenWhenNotDue) {
    store.settings.lastUpdateCheck = desktop.wallClock().secondsSince1970();

    updater->check(kManual);

    EXPECT_EQ(web.requests.size(), 1U);
}

TEST_F(UpdaterTest, ConcurrentChecksAreReportedInTheOrderOfTheirReplies) {
    updater->check(kManual);
    updater->check(kAutomatic);
    updater->check(kManual);

    web.answer(2, UrlResponse{200, R"({"version": "1.2"})"});
    web.answer(0, std::nullopt);
    web.answer(1, UrlResponse{200, kNewer});

    ASSERT_EQ(alerts().size(), 3U);
    EXPECT_EQ(alerts()[0].messageText, "You are up to date");
    EXPECT_EQ(alerts()[1].messageText, kFailed);
    EXPECT_EQ(alerts()[2].messageText, "Tessarel 1.3 is available");
}

TEST_F(UpdaterTest, AnAutomaticCheckFailsSilentlyBesideAManualOne) {
    updater->check(kAutomatic);
    updater->check(kManual);

    web.answer(0, std::nullopt);
    EXPECT_THAT(alerts(), IsEmpty());

    web.answer(1, std::nullopt);
    EXPECT_EQ(alerts().size(), 1U);
}

TEST_F(UpdaterTest, EveryCheckHasItsOwnMessage) {
    check(kManual, std::nullopt);
    check(kManual, kNewer);
    ASSERT_EQ(desktop.alerts().standing().size(), 2U);

    desktop.alerts().close(kDownload);

    EXPECT_THAT(desktop.openUrl().opened, ElementsAre("https://a.example/1.3"));
    EXPECT_THAT(desktop.alerts().standing(), ElementsAre(alerts().front()));
}

TEST_F(UpdaterTest, EachMessageOpensItsOwnAddress) {
    check(kManual, R"({"version": "1.3", "url": "https://a.example/first"})");
    check(kManual, R"({"version": "1.3", "url": "https://a.example/second"})");

    desktop.alerts().close(kDownload);
    desktop.alerts().close(kDownload);

    EXPECT_THAT(desktop.openUrl().opened, ElementsAre("https://a.example/second", "https://a.example/first"));
}

TEST_F(UpdaterTest, DestroyingTheUpdaterRemovesItsMessages) {
    check(kManual, kNewer);
    check(kManual, std::nullopt);

    updater.reset();

    EXPECT_THAT(desktop.alerts().standing(), IsEmpty());
}

TEST_F(UpdaterTest, DestroyingTheUpdaterCancelsItsChecks) {
    updater->check(kManual);
    updater->check(kAutomatic);

    updater.reset();

    EXPECT_EQ(web.waiting(), 0U);
}

TEST_F(UpdaterTest, ASecondReplyToACheckIsIgnored) {
    check(kManual, kNewer);

    web.answer(0, UrlResponse{200, kNewer});

    EXPECT_EQ(alerts().size(), 1U);
}

} // namespace
} // namespace tessarel
