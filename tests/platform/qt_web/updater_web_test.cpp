// SPDX-License-Identifier: MIT

#include "app/updates/updater.h"
#include "platform/qt_web/qt_url_loading.h"
#include "platform/sim/sim_desktop.h"
#include "web_test.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::qt {
namespace {

using namespace std::chrono_literals;

/// The result that the user should see.
enum class Outcome { Newer, UpToDate, NoConnection, NotAvailable };

struct Case {
    std::string name;
    WebServer::Answer answer; ///< null: the server is silent
    Outcome outcome = Outcome::NoConnection;
    int status = 200; ///< shown to the user for NotAvailable
    std::chrono::milliseconds timeLimit = 15s;
};

std::ostream& operator<<(std::ostream& out, const Case& tested) {
    return out << tested.name;
}

std::string nested(std::size_t depth) {
    return R"({"a":)" + std::string(depth, '[') + std::string(depth, ']') + R"(,"version":"9"})";
}

std::vector<Case> cases() {
    const auto ok = [](const std::string& body) { return reply("200 OK", body); };
    const auto inAHurry = 150ms;
    const std::string huge(5000, '9');
    return {
        {"Newer", ok(R"({"version": "1.3", "notes": "Notes"})"), Outcome::Newer},
        {"Equal", ok(R"({"version": "1.2.0"})"), Outcome::UpToDate},
        {"Older", ok(R"({"version": "1.1.99"})"), Outcome::UpToDate},
        {"NotFoundWithAFeed", reply("404 Not Found", R"({"version": "1.3"})"), Outcome::Newer},
        {"ErrorWithHtml", reply("500 Oops", "<html>oops</html>"), Outcome::NotAvailable, 500},
        {"ProxyAuthenticationWithHtml", reply("407 No", "<html>no</html>"), Outcome::NotAvailable, 407},
        {"ProxyAuthenticationWithAFeed", reply("407 No", R"({"version": "1.3"})"), Outcome::Newer},
        {"RedirectWithoutATarget", reply("302 Found", "<html>there</html>"), Outcome::NotAvailable, 302},
        {"RedirectWithoutATargetButAFeed", reply("302 Found", R"({"version": "1.3"})"), Outcome::Newer},
        {"Empty", ok(""), Outcome::NotAvailable},
        {"NoContent", raw("HTTP/1.1 204 No Content\r\n\r\n"), Outcome::NotAvailable, 204},
        {"TruncatedJson", ok(R"({"version": "1.3", "no)"), Outcome::NotAvailable},
        {"DeepNesting", ok(nested(100'000)), Outcome::Newer},
        {"VersionIsANumber", ok(R"({"version": 1.3})"), Outcome::NotAvailable},
        {"OtherTypes", ok(R"({"version": "1.3", "notes": 1, "url": []})"), Outcome::Newer},
        {"NoObject", ok(R"(["version", "1.3"])"), Outcome::NotAvailable},
        {"KeysTwice", ok(R"({"version": "1.3", "version": "1.1"})"), Outcome::UpToDate},
        {"HugeVersion", ok(R"({"version": ")" + huge + R"("})"), Outcome::Newer},
        {"NotUtf8", ok("{\"version\": \"1.3\xFF\"}"), Outcome::NotAvailable},
        {"Flood", flood(100'000'000, std::make_shared<qint64>(0)), Outcome::NotAvailable},
        {"TooLargeHead", reply("200 OK", R"({"version": "1.3"})", "X: " + std::string(70'000, 'x') + "\r\n"),
         Outcome::NoConnection},
        {"TrickledHead", trickle("HTTP/1.1 200 OK\r\nX: "), Outcome::NoConnection, 0, inAHurry},
        {"TrickledBody", trickle("HTTP/1.1 200 OK\r\n\r\n"), Outcome::NoConnection, 0, inAHurry},
        {"Silence", nullptr, Outcome::NoConnection, 0, inAHurry},
        {"RedirectLoop", redirect("/feed"), Outcome::NoConnection},
        {"RedirectToAFile", redirect("file:///etc/hostname"), Outcome::NoConnection},
        {"Reset", [](QTcpSocket& client) { client.abort(); }, Outcome::NoConnection},
    };
}

/// Counts the responses that the updater has processed.
class CountedLoading : public UrlLoadingPort {
public:
    [[nodiscard]] SubscriptionPtr load(const UrlRequest& request, Done done) override {
        return m_loading.load(request, [this, done = std::move(done)](std::optional<UrlResponse> response) {
            ++answers;
            done(std::move(response));
        });
    }

    int answers = 0;

private:
    QtUrlLoading m_loading;
};

class UpdaterWebTest : public WebTest, public testing::WithParamInterface<Case> {
protected:
    /// Checks for updates at `feedURL` and waits until the updater has processed the response.
    void check(bool manual, const std::string& feedURL) {
        CountedLoading loading;
        Updater updater(store, loading, desktop.wallClock(), desktop.alerts(), desktop.ownApplication(),
                        desktop.openUrl(),
                        {.feedURL = feedURL, .runningVersion = "1.2", .timeLimit = GetParam().timeLimit});
        updater.check(manual);
        EXPECT_TRUE(loopUntil([&] { return loading.answers == 1; }));
    }

    void checkBothWays(const std::string& feedURL) {
        check(false, feedURL);
        const bool isNewer = GetParam().outcome == Outcome::Newer;
        EXPECT_EQ(desktop.alerts().shown.size(), isNewer ? 1U : 0U) << "by itself";
        EXPECT_EQ(store.settings.lastUpdateCheck != 0, isSuccess());

        check(true, feedURL);
        ASSERT_EQ(desktop.alerts().shown.size(), isNewer ? 2U : 1U) << "on request";
        expectOutcome(desktop.alerts().shown.back());
    }

    [[nodiscard]] static bool isSuccess() {
        return GetParam().outcome == Outcome::Newer || GetParam().outcome == Outcome::UpToDate;
    }

    static void expectOutcome(const Alert& shown) {
        switch (GetParam().outcome) {
        case Outcome::Newer:
            EXPECT_TRUE(shown.messageText.ends_with(" is available"));
            return;
        case Outcome::UpToDate:
            EXPECT_EQ(shown.messageText, "You are up to date");
            return;
        case Outcome::NoConnection:
            EXPECT_EQ(shown.informativeText, "Please check your internet connection and try again.");
            return;
        case Outcome::NotAvailable:
            EXPECT_EQ(shown.informativeText, "The update information is not available right now (code " +
                                                 std::to_string(GetParam().status) +
                                                 "). Please try again later.");
        }
    }

    sim::SimDesktop desktop;
    Store store{desktop.preferences()};
};

TEST_P(UpdaterWebTest, ShowsTheExpectedOutcomeOverHttp) {
    WebServer server;
    if (GetParam().answer)
        server.at("/feed", GetParam().answer);

    checkBothWays(server.url("/feed"));
}

TEST_P(UpdaterWebTest, ShowsTheExpectedOutcomeOverHttps) {
    WebServer server(identity());
    if (GetParam().answer)
        server.at("/feed", GetParam().answer);

    checkBothWays(server.url("/feed"));
}

INSTANTIATE_TEST_SUITE_P(Answers, UpdaterWebTest, testing::ValuesIn(cases()),
                         [](const auto& instance) { return instance.param.name; });

/// Servers that must not be trusted.
class UpdaterImpostorTest : public UpdaterWebTest {};

TEST_P(UpdaterImpostorTest, ARedirectToHttpIsNotFollowed) {
    WebServer secure(identity());
    WebServer open;
    secure.at("/feed", redirect(open.url("/feed")));
    open.at("/feed", reply("200 OK", R"({"version": "1.3"})"));

    checkBothWays(secure.url("/feed"));
}

TEST_P(UpdaterImpostorTest, ABadCertificateIsNotTrusted) {
    WebServer impostor(makeIdentity("127.0.0.1"));
    impostor.at("/feed", reply("200 OK", R"({"version": "1.3"})"));

    checkBothWays(impostor.url("/feed"));
}

INSTANTIATE_TEST_SUITE_P(Impostors, UpdaterImpostorTest, testing::Values(Case{"NoConnection", nullptr}),
                         [](const auto& instance) { return instance.param.name; });

} // namespace
} // namespace tessarel::qt
