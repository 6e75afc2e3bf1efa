// SPDX-License-Identifier: MIT

#include "platform/qt_web/qt_url_loading.h"

#include "web_test.h"

#include <QSet>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace tessarel::qt {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::Eq;
using testing::Optional;

constexpr std::chrono::milliseconds kLong = 15s;
constexpr std::chrono::milliseconds kShort = 150ms;

class QtUrlLoadingTest : public WebTest {
protected:
    static UrlRequest request(const std::string& url) {
        return {.url = url, .userAgent = "Test/1.0", .timeLimit = kLong, .largestBody = 1000};
    }

    std::optional<UrlResponse> get(const UrlRequest& request) {
        bool isDone = false;
        std::optional<UrlResponse> answer;
        const auto load = loading.load(request, [&](const auto& response) {
            answer = response;
            isDone = true;
        });
        EXPECT_FALSE(isDone) << "not before the call has returned";
        EXPECT_TRUE(loopUntil([&] { return isDone; }));
        return answer;
    }
    std::optional<UrlResponse> get(const std::string& path) { return get(request(server.url(path))); }

    /// Returns the response to `path`, for which the server takes longer than the time limit, and expects
    /// that the server has received at least `requests` requests. Doubles the time limit until they arrive
    /// even on a busy machine.
    std::optional<UrlResponse> getInAHurry(const std::string& path, std::size_t requests = 1) {
        UrlRequest hurried = request(server.url(path));
        std::optional<UrlResponse> response;
        for (hurried.timeLimit = kShort; hurried.timeLimit < kLong; hurried.timeLimit *= 2) {
            server.requests.clear();
            response = get(hurried);
            if (response || server.requests.size() >= requests)
                break;
        }
        EXPECT_GE(server.requests.size(), requests);
        return response;
    }

    WebServer server;
    QtUrlLoading loading;
};

TEST_F(QtUrlLoadingTest, ReturnsStatusAndBody) {
    server.at("/", reply("200 OK", "the body"));

    EXPECT_THAT(get("/"), Optional(UrlResponse{200, "the body"}));
}

TEST_F(QtUrlLoadingTest, ABodyMayBeEmpty) {
    server.at("/", reply("200 OK", ""));
    server.at("/none", raw("HTTP/1.1 204 No Content\r\n\r\n"));

    EXPECT_THAT(get("/"), Optional(UrlResponse{200, ""}));
    EXPECT_THAT(get("/none"), Optional(UrlResponse{204, ""}));
}

TEST_F(QtUrlLoadingTest, TheBytesOfABodyAreNotConverted) {
    const std::string bytes("\xEF\xBB\xBF\xFF\0\r\n\x80", 8);
    server.at("/", reply("200 OK", bytes, "Content-Type: application/json; charset=latin1\r\n"));

    EXPECT_THAT(get("/"), Optional(UrlResponse{200, bytes}));
}

TEST_F(QtUrlLoadingTest, AnErrorStatusIsAResponse) {
    for (const int status :
         {400, 401, 403, 404, 405, 407, 409, 410, 418, 429, 500, 501, 502, 503, 504, 599}) {
        server.at("/", reply(std::to_string(status) + " Status", "the body"));

        EXPECT_THAT(get("/"), Optional(UrlResponse{status, "the body"}));
    }
}

TEST_F(QtUrlLoadingTest, ARedirectWithoutATargetIsAResponse) {
    for (const int status : {300, 301, 302, 303, 304, 305, 307, 308}) {
        const std::string body = status == 304 ? "" : "the body";
        server.at("/", reply(std::to_string(status) + " Status", body));

        EXPECT_THAT(get("/"), Optional(UrlResponse{status, body}));
    }
}

TEST_F(QtUrlLoadingTest, TheRequestHasTheUserAgentAndOtherwiseOnlyGenericHeaders) {
    server.at("/", reply("200 OK", ""));

    ASSERT_TRUE(get("/"));

    ASSERT_EQ(server.requests.size(), 1U);
    QList<QByteArray> lines = server.requests[0].trimmed().split('\n');
    EXPECT_EQ(lines.takeFirst(), "GET / HTTP/1.1\r");
    QSet<QByteArray> headers;
    for (const QByteArray& line : lines)
        headers << line.trimmed();
    const QByteArray host = QByteArray::fromStdString(server.url("").substr(7));
    EXPECT_EQ(headers, (QSet<QByteArray>{"Host: " + host, "User-Agent: Test/1.0", "Accept-Language: *",
                                         "Accept-Encoding: identity", "Cache-Control: no-cache",
                                         "Pragma: no-cache", "Connection: Keep-Alive"}));
}

TEST_F(QtUrlLoadingTest, CookiesAndCachedBodiesAreNotReused) {
    server.at("/", reply("200 OK", "old", "Set-Cookie: id=1; Path=/\r\nCache-Control: max-age=999\r\n"));
    ASSERT_TRUE(get("/"));
    server.at("/", reply("200 OK", "new"));

    EXPECT_THAT(get("/"), Optional(UrlResponse{200, "new"}));

    EXPECT_FALSE(server.requests.at(1).contains("Cookie"));
}

TEST_F(QtUrlLoadingTest, ACookieSetByARedirectIsNotSent) {
    server.at("/", reply("302 Found", "", "Location: /next\r\nSet-Cookie: id=1; Path=/\r\n"));
    server.at("/next", reply("200 OK", ""));

    ASSERT_TRUE(get("/"));

    EXPECT_FALSE(server.requests.at(1).contains("Cookie"));
}

TEST_F(QtUrlLoadingTest, ABodyOfTheLargestSizeIsRead) {
    server.at("/", reply("200 OK", std::string(1000, 'x')));

    EXPECT_THAT(get("/"), Optional(UrlResponse{200, std::string(1000, 'x')}));
}

TEST_F(QtUrlLoadingTest, ALargerBodyIsDropped) {
    server.at("/", reply("404 Not Found", std::string(1001, 'x')));
    server.at("/chunked", raw("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3e9\r\n" +
                              std::string(1001, 'x') + "\r\n0\r\n\r\n"));

    EXPECT_THAT(get("/"), Optional(UrlResponse{404, std::nullopt}));
    EXPECT_THAT(get("/chunked"), Optional(UrlResponse{200, std::nullopt}));
}

TEST_F(QtUrlLoadingTest, AFarTooLargeBodyIsAborted) {
    constexpr qint64 kSize = 100'000'000;
    const auto sent = std::make_shared<qint64>(0);
    server.at("/", flood(kSize, sent));
    UrlRequest large = request(server.url("/"));
    large.largestBody = 1'048'576;

    EXPECT_THAT(get(large), Optional(UrlResponse{200, std::nullopt}));

    EXPECT_LT(*sent, kSize / 2);
}

TEST_F(QtUrlLoadingTest, AHeadMayHave64KiBOfHeaders) {
    constexpr std::size_t kMost = 64UL * 1024;
    const auto headers = [](std::size_t size) {
        const std::size_t others = std::string("Content-Length0Connectionclose").size();
        std::string lines;
        std::size_t left = size - others;
        for (char name = 'A'; left > 1; ++name) {
            const std::size_t value = std::min<std::size_t>(left - 1, 7000);
            lines += std::string(1, name) + ": " + std::string(value, 'x') + "\r\n";
            left -= value + 1;
        }
        return lines;
    };
    server.at("/largest", reply("200 OK", "", headers(kMost)));
    server.at("/larger", reply("200 OK", "", headers(kMost + 1)));

    EXPECT_THAT(get("/largest"), Optional(UrlResponse{200, ""}));
    EXPECT_EQ(get("/larger"), std::nullopt);
}

TEST_F(QtUrlLoadingTest, ASilentServerTimesOut) {
    EXPECT_EQ(getInAHurry("/silent"), std::nullopt);
}

TEST_F(QtUrlLoadingTest, TheTimeLimitCoversTheWholeResponse) {
    server.at("/head", trickle("HTTP/1.1 200 OK\r\nX: "));
    server.at("/body", trickle("HTTP/1.1 200 OK\r\nContent-Length: 999\r\n\r\n"));

    EXPECT_EQ(getInAHurry("/head"), std::nullopt);
    EXPECT_EQ(getInAHurry("/body"), std::nullopt);
}

TEST_F(QtUrlLoadingTest, TheTimeLimitCoversAllRedirectsTogether) {
    server.at("/", redirect("/next"));
    server.at("/next", trickle("HTTP/1.1 200 OK\r\n"));

    EXPECT_EQ(getInAHurry("/", 2), std::nullopt);
}

TEST_F(QtUrlLoadingTest, AClosedPortGivesNoResponse) {
    const UrlRequest lost = request(server.url("/"));
    server.close();

    EXPECT_EQ(get(lost), std::nullopt);
}

TEST_F(QtUrlLoadingTest, ABrokenConnectionGivesNoResponse) {
    server.at("/reset", [](QTcpSocket& client) { client.abort(); });
    server.at("/cut", raw("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\nhalf"));
    server.at("/error", raw("HTTP/1.1 404 Not Found\r\nContent-Length: 50\r\n\r\nhalf"));
    server.at("/garbage", raw("220 mail.example ESMTP\r\n"));

    for (const char* path : {"/reset", "/cut", "/error", "/garbage"})
        EXPECT_EQ(get(path), std::nullopt) << path;
}

TEST_F(QtUrlLoadingTest, OnlyHttpAndHttpsUrlsAreLoaded) {
    for (const char* url :
         {"", "file:///etc/hostname", "data:text/plain,x", "qrc:/x", "http://[", "example.org"})
        EXPECT_EQ(get(request(url)), std::nullopt) << url;
}

class QtUrlLoadingRedirectTest : public QtUrlLoadingTest {
protected:
    /// Makes "/1" redirect to "/2", and so on, `count` times; the last target has a body.
    void leadAstray(int count) {
        for (int step = 1; step <= count; ++step)
            server.at("/" + std::to_string(step), redirect("/" + std::to_string(step + 1)));
        server.at("/" + std::to_string(count + 1), reply("200 OK", "here"));
    }

    WebServer secure{identity()};
};

TEST_F(QtUrlLoadingRedirectTest, FiveRedirectsAreFollowed) {
    leadAstray(5);

    EXPECT_THAT(get("/1"), Optional(UrlResponse{200, "here"}));
}

TEST_F(QtUrlLoadingRedirectTest, TheSixthRedirectIsNotFollowed) {
    leadAstray(6);

    EXPECT_EQ(get("/1"), std::nullopt);
    // Qt sends a request again if its connection was being closed, so count the paths instead of the
    // requests.
    std::set<QByteArray> paths;
    for (const QByteArray& sent : server.requests)
        paths.insert(sent.split(' ').value(1));
    EXPECT_THAT(paths, ElementsAre("/1", "/2", "/3", "/4", "/5", "/6"));
}

TEST_F(QtUrlLoadingRedirectTest, EveryKindOfRedirectIsFollowed) {
    server.at("/here", reply("200 OK", "here"));
    for (const int status : {301, 302, 303, 307, 308}) {
        server.at("/", reply(std::to_string(status) + " Status", "there", "Location: here\r\n"));

        EXPECT_THAT(get("/"), Optional(UrlResponse{200, "here"})) << status;
    }
}

TEST_F(QtUrlLoadingRedirectTest, TheBodyOfARedirectIsNotRead) {
    constexpr qint64 kSize = 100'000'000;
    const auto sent = std::make_shared<qint64>(0);
    server.at("/", flood(kSize, sent, "HTTP/1.1 302 Found\r\nLocation: /here\r\n\r\n"));
    server.at("/here", reply("200 OK", "here"));

    EXPECT_THAT(get("/"), Optional(UrlResponse{200, "here"}));

    EXPECT_LT(*sent, kSize / 2);
}

TEST_F(QtUrlLoadingRedirectTest, ARedirectLoopEnds) {
    server.at("/", redirect("/"));

    EXPECT_EQ(get("/"), std::nullopt);
}

TEST_F(QtUrlLoadingRedirectTest, OnlyRedirectsToHttpAndHttpsAreFollowed) {
    for (const char* target :
         {"file:///etc/hostname", "data:text/plain,x", "ftp://127.0.0.1/", "qrc:/x", "http://["}) {
        server.at("/", redirect(target));

        EXPECT_EQ(get("/"), std::nullopt) << target;
    }
}

TEST_F(QtUrlLoadingRedirectTest, ARedirectFromHttpToHttpsIsFollowed) {
    server.at("/", redirect(secure.url("/")));
    secure.at("/", reply("200 OK", "safe"));

    EXPECT_THAT(get("/"), Optional(UrlResponse{200, "safe"}));
}

TEST_F(QtUrlLoadingRedirectTest, ARedirectFromHttpsToHttpIsNotFollowed) {
    secure.at("/", redirect(server.url("/")));
    server.at("/", reply("200 OK", "unsafe"));

    EXPECT_EQ(get(request(secure.url("/"))), std::nullopt);
    EXPECT_TRUE(server.requests.empty());
}

TEST_F(QtUrlLoadingRedirectTest, ALaterRedirectFromHttpsToHttpIsNotFollowed) {
    secure.at("/", redirect(secure.url("/next")));
    secure.at("/next", redirect(server.url("/")));
    server.at("/", reply("200 OK", "unsafe"));

    EXPECT_EQ(get(request(secure.url("/"))), std::nullopt);
    EXPECT_TRUE(server.requests.empty());
}

TEST_F(QtUrlLoadingTest, ATrustedHttpsServerIsUsed) {
    WebServer secure(identity());
    secure.at("/", reply("200 OK", "safe"));

    EXPECT_THAT(get(request(secure.url("/"))), Optional(UrlResponse{200, "safe"}));
}

TEST_F(QtUrlLoadingTest, AnUnknownCertificateIsRejected) {
    WebServer impostor(makeIdentity("127.0.0.1"));
    impostor.at("/", reply("200 OK", "unsafe"));

    EXPECT_EQ(get(request(impostor.url("/"))), std::nullopt);
    EXPECT_TRUE(impostor.requests.empty());
}

TEST_F(QtUrlLoadingTest, ACertificateForAnotherHostIsRejected) {
    const QSslConfiguration other = makeIdentity("other.example");
    QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
    trusting.addCaCertificate(other.localCertificate());
    QSslConfiguration::setDefaultConfiguration(trusting);
    WebServer impostor(other);
    impostor.at("/", reply("200 OK", "unsafe"));

    EXPECT_EQ(get(request(impostor.url("/"))), std::nullopt);
    EXPECT_TRUE(impostor.requests.empty());
}

TEST_F(QtUrlLoadingTest, NoResponseComesAfterTheRequestWasCancelled) {
    server.at("/", reply("200 OK", ""));
    server.at("/next", reply("200 OK", ""));
    bool isDone = false;
    auto load = loading.load(request(server.url("/")), [&](const auto&) { isDone = true; });
    EXPECT_TRUE(loopUntil([&] { return !server.requests.empty(); }));

    load.reset();

    ASSERT_TRUE(get("/next"));
    EXPECT_FALSE(isDone);
}

TEST_F(QtUrlLoadingTest, TheCallbackMayCancelTheRequest) {
    server.at("/", reply("200 OK", "x"));
    SubscriptionPtr load;
    const auto captured = std::make_shared<int>(7);
    int seen = 0;
    load = loading.load(request(server.url("/")), [&load, &seen, captured](const auto&) {
        load.reset();
        seen = *captured;
    });

    EXPECT_TRUE(loopUntil([&] { return seen == 7; }));
}

TEST_F(QtUrlLoadingTest, RequestsDoNotWaitForEachOther) {
    server.at("/", reply("200 OK", "second"));
    bool isFirstDone = false;
    const auto first = loading.load(request(server.url("/silent")), [&](const auto&) { isFirstDone = true; });

    EXPECT_THAT(get("/"), Optional(UrlResponse{200, "second"}));
    EXPECT_FALSE(isFirstDone);
}

} // namespace
} // namespace tessarel::qt
