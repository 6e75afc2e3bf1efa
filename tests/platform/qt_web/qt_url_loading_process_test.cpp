// SPDX-License-Identifier: MIT

#include "platform/qt_web/process/qt_url_loading_process.h"

#include "platform/qt_web/process/url_messages.h"
#include "support/scratch_folder.h"
#include "web_test.h"

#include <QProcess>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessarel::qt {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::Optional;

/// Requests by helper programs that are shell scripts.
class QtUrlLoadingProcessTest : public WebTest {
protected:
    QtUrlLoadingProcessTest() = default;
    ~QtUrlLoadingProcessTest() override { EXPECT_TRUE(loopUntilNoChild()) << "a helper is left"; }

    static UrlRequest request(const std::string& url = "https://127.0.0.1/feed") {
        return {.url = url, .userAgent = "Test/1.0", .timeLimit = 15s, .largestBody = 100};
    }

    /// Makes the helper a shell script with these lines.
    void write(const std::string& lines) const {
        ScratchFolder::write(helper(), "#!/bin/sh\n" + lines + "\n");
        std::filesystem::permissions(helper(), std::filesystem::perms::owner_all);
    }
    /// Makes the helper write its process id to a file and then run these lines.
    void writeWithId(const std::string& lines) const { write("echo $$ >" + file("id") + "\n" + lines); }

    std::optional<UrlResponse> get(const UrlRequest& request) { return get(loading, request); }
    std::optional<UrlResponse> getByProduct(const UrlRequest& request) { return get(real, request); }

    static std::optional<UrlResponse> get(QtUrlLoadingProcess& loading, const UrlRequest& request) {
        int answers = 0;
        std::optional<UrlResponse> answer;
        const auto load = loading.load(request, [&](const auto& response) {
            ++answers;
            answer = response;
        });
        EXPECT_EQ(answers, 0) << "not before the call has returned";
        EXPECT_TRUE(loopUntil([&] { return answers > 0; }));
        EXPECT_EQ(answers, 1);
        return answer;
    }

    /// Waits until the file with the process id of the helper is complete.
    [[nodiscard]] bool hasStarted() const {
        return loopUntilOutside(
            [this] { return ScratchFolder::read(file("id")).value_or("").ends_with("\n"); });
    }
    /// Waits until the process with that id has exited and the parent has collected it.
    [[nodiscard]] bool hasEnded() const {
        return hasStarted() && loopUntilOutside([this] {
                   const std::string id = ScratchFolder::read(file("id")).value_or("");
                   return !std::filesystem::exists("/proc/" + id.substr(0, id.size() - 1));
               });
    }
    [[nodiscard]] std::string file(const std::string& name) const { return (folder.path() / name).string(); }
    [[nodiscard]] std::string helper() const { return file(QtUrlLoadingProcess::kProgram); }

    ScratchFolder folder;
    QtUrlLoadingProcess loading{{"no/such/folder", folder.path().string()}};
    QtUrlLoadingProcess real; ///< with the helper of the product
};

/// What a helper prints for the status 200 and the body "x".
constexpr const char* kAnswer = R"(echo '{"statusCode":200,"body":"eA=="}')";
const UrlResponse kAnswered{200, "x"};

TEST_F(QtUrlLoadingProcessTest, TheHelperBesideTheProgramLoadsTheUrl) {
    WebServer server;
    server.at("/", reply("404 Not Found", std::string("\0\xFF\"\n", 4)));
    server.at("/large", reply("200 OK", std::string(101, 'x')));
    int answers = 0;
    std::optional<UrlResponse> first;
    std::optional<UrlResponse> second;

    const auto one = real.load(request(server.url("/")), [&](const auto& response) {
        first = response;
        ++answers;
    });
    const auto other = real.load(request(server.url("/large")), [&](const auto& response) {
        second = response;
        ++answers;
    });

    EXPECT_TRUE(loopUntil([&] { return answers == 2; }));
    EXPECT_THAT(first, Optional(UrlResponse{404, std::string("\0\xFF\"\n", 4)}));
    EXPECT_THAT(second, Optional(UrlResponse{200, std::nullopt}));
    EXPECT_THAT(server.requests, Each(HasSubstr("User-Agent: Test/1.0\r\n")));
}

TEST_F(QtUrlLoadingProcessTest, TheHelperBesideTheProgramVerifiesCertificates) {
    WebServer impostor(makeIdentity("127.0.0.1"));
    impostor.at("/", reply("200 OK", "unsafe"));
    bool isDone = false;
    std::optional<UrlResponse> answer;

    const auto load = real.load(request(impostor.url("/")), [&](const auto& response) {
        answer = response;
        isDone = true;
    });

    EXPECT_TRUE(loopUntil([&] { return isDone; }));
    EXPECT_EQ(answer, std::nullopt);
    EXPECT_TRUE(impostor.requests.empty());
}

TEST_F(QtUrlLoadingProcessTest, TheHelperUsesTheProxyOfTheEnvironment) {
    WebServer proxy;
    proxy.at("example.org:443", reply("407 Proxy Authentication Required", "no"));
    qputenv("https_proxy", QByteArray::fromStdString(proxy.url("")));
    bool isDone = false;
    std::optional<UrlResponse> answer;

    const auto load = real.load(request("https://example.org/"), [&](const auto& response) {
        answer = response;
        isDone = true;
    });

    EXPECT_TRUE(loopUntil([&] { return isDone; }));
    qunsetenv("https_proxy");
    EXPECT_EQ(answer, std::nullopt);
    EXPECT_THAT(proxy.requests, Contains(HasSubstr("CONNECT example.org:443 ")));
}

TEST_F(QtUrlLoadingProcessTest, TheHelperExitsAfterItsResponse) {
    WebServer server;
    server.at("/", reply("200 OK", "x"));
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + "/" + QtUrlLoadingProcess::kProgram,
                  QStringList());
    process.write(encodeUrlRequest(request(server.url("/")))); // its input stays open

    EXPECT_TRUE(loopUntil([&] {
        return process.state() == QProcess::NotRunning && process.error() == QProcess::UnknownError;
    }));

    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(decodeUrlResponse(process.readAllStandardOutput()), kAnswered);
    EXPECT_EQ(process.readAllStandardError(), "");
}

TEST_F(QtUrlLoadingProcessTest, TheHelperRejectsAnythingButARequest) {
    for (const char* message :
         {"", "\n", "rubbish\n", "[]\n", "{\"url\":1}\n", "{\"url\":\"http://127.0.0.1\"}\n"}) {
        QProcess process;
        process.start(QCoreApplication::applicationDirPath() + "/" + QtUrlLoadingProcess::kProgram,
                      QStringList());
        process.write(message);
        process.closeWriteChannel();

        EXPECT_TRUE(loopUntil([&] { return process.state() == QProcess::NotRunning; }));

        EXPECT_EQ(process.exitCode(), 1) << message;
        EXPECT_EQ(process.readAllStandardOutput(), "") << message;
    }
}

TEST_F(QtUrlLoadingProcessTest, TheMemoryOfTheHelperIsLimited) {
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + "/" + QtUrlLoadingProcess::kProgram,
                  QStringList());
    const std::string limits = "/proc/" + std::to_string(process.processId()) + "/limits";

    EXPECT_TRUE(loopUntilOutside([&] {
        const std::string lines = ScratchFolder::read(limits).value_or("");
        const std::size_t line = lines.find("Max data size");
        return line != std::string::npos && lines.find("unlimited", line) > lines.find('\n', line);
    }));

    process.kill();
    EXPECT_TRUE(loopUntil([&] { return process.state() == QProcess::NotRunning; }));
}

TEST_F(QtUrlLoadingProcessTest, AHelperThatReadsAnEndlessHeadEndsAtTheTimeLimit) {
    struct Endless {
        std::string start;
        std::string piece;
    };
    for (const Endless& head :
         {Endless{"HTTP/1.1 200 ", "x"}, Endless{"HTTP/1.1 200 OK\r\nX: ", "x"},
          Endless{"HTTP/1.1 200 OK\r\n", "X: y\r\n"}, Endless{"", "HTTP/1.1 100 Continue\r\n\r\n"},
          Endless{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1;", "x"}}) {
        WebServer server;
        server.at("/", flood(100'000'000, std::make_shared<qint64>(0), head.start, head.piece));
        UrlRequest hurried = request(server.url("/"));
        // Doubles the time limit until the request arrives even on a busy machine.
        for (hurried.timeLimit = 150ms; server.requests.empty() && hurried.timeLimit < 15s;
             hurried.timeLimit *= 2)
            EXPECT_EQ(getByProduct(hurried), std::nullopt) << head.start << head.piece;
        EXPECT_FALSE(server.requests.empty());
    }
}

TEST_F(QtUrlLoadingProcessTest, TheHelperGetsTheRequestOnOneLine) {
    write("cat >" + file("request") + "\n" + kAnswer);

    EXPECT_EQ(get(request()), kAnswered);

    const std::string sent = ScratchFolder::read(file("request")).value_or("");
    EXPECT_EQ(sent.find('\n'), sent.size() - 1);
    EXPECT_EQ(decodeUrlRequest(QByteArray::fromStdString(sent)), request());
}

TEST_F(QtUrlLoadingProcessTest, OfTheEnvironmentTheHelperGetsOnlyWhatConcernsTheNetwork) {
    qputenv("https_proxy", "http://127.0.0.1:9");
    qputenv("TESSAREL_TEST_SECRET", "secret");
    write("/usr/bin/env >" + file("environment") + "\npwd >>" + file("environment") + "\n" + kAnswer);

    EXPECT_EQ(get(request()), kAnswered);
    qunsetenv("https_proxy");
    qunsetenv("TESSAREL_TEST_SECRET");

    const std::string seen = ScratchFolder::read(file("environment")).value_or("");
    EXPECT_THAT(seen, AllOf(HasSubstr("https_proxy=http://127.0.0.1:9\n"), testing::EndsWith("\n/\n")));
    for (const char* name : {"TESSAREL_TEST_SECRET", "HOME=", "DISPLAY", "XAUTHORITY", "DBUS_", "USER="})
        EXPECT_THAT(seen, testing::Not(HasSubstr(name)));
}

TEST_F(QtUrlLoadingProcessTest, TheHelperGetsEveryVariableThatConcernsTheNetwork) {
    constexpr std::array kVariables = {"http_proxy", "https_proxy", "all_proxy", "no_proxy",
                                       "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY", "NO_PROXY"};
    write("/usr/bin/env >" + file("environment") + "\n" + kAnswer);
    for (const char* name : kVariables)
        qputenv(name, QByteArray("value of ") + name);

    EXPECT_EQ(get(request()), kAnswered);
    for (const char* name : kVariables)
        qunsetenv(name);

    const std::string seen = ScratchFolder::read(file("environment")).value_or("");
    for (const char* name : kVariables)
        EXPECT_THAT(seen, HasSubstr(std::string(name) + "=value of " + name + "\n"));
}

TEST_F(QtUrlLoadingProcessTest, WithoutAHelperARequestHasNoResponse) {
    EXPECT_EQ(get(request()), std::nullopt);

    ScratchFolder::write(helper(), "#!/bin/sh\n");
    EXPECT_EQ(get(request()), std::nullopt) << "it must be executable";
    std::filesystem::remove(helper());
    std::filesystem::create_directory(helper());
    EXPECT_EQ(get(request()), std::nullopt) << "it must be a file";
}

TEST_F(QtUrlLoadingProcessTest, AHelperThatCannotBeStartedGivesNoResponse) {
    write("");
    ScratchFolder::write(helper(), "#!/no/such/interpreter\n");

    EXPECT_EQ(get(request()), std::nullopt);
}

TEST_F(QtUrlLoadingProcessTest, TheHelperIsNotLookedUpInThePath) {
    write(kAnswer);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QByteArray::fromStdString(folder.path().string()) + ":" + path);
    QtUrlLoadingProcess nowhere({"no/such/folder"});
    bool isDone = false;
    std::optional<UrlResponse> answer;

    const auto load = nowhere.load(request(), [&](const auto& response) {
        answer = response;
        isDone = true;
    });

    EXPECT_TRUE(loopUntil([&] { return isDone; }));
    qputenv("PATH", path);
    EXPECT_EQ(answer, std::nullopt);
}

TEST_F(QtUrlLoadingProcessTest, AHelperThatEndsWithoutAResponseGivesNone) {
    for (const char* lines :
         {"exit 0", "exit 3", "kill -SEGV $$", "exec >&-; cat >/dev/null", "printf '{}'"}) {
        write(lines);

        EXPECT_EQ(get(request()), std::nullopt) << lines;
    }
}

TEST_F(QtUrlLoadingProcessTest, RubbishIsNoResponse) {
    const std::string large = R"({"statusCode":200,"body":")" + std::string(150, 'A') + "\"}";
    for (const std::string& line :
         {std::string(), std::string("rubbish"), std::string("[]"), std::string("{}"),
          std::string(R"({"body":"eA=="})"), std::string(R"({"statusCode":"200","body":"eA=="})"),
          std::string(R"({"statusCode":200.5})"), std::string(R"({"statusCode":-200})"),
          std::string(R"({"statusCode":200,"body":1})"), std::string(R"({"statusCode":200,"body":null})"),
          std::string(R"({"statusCode":200,"body":"?"})"), std::string(R"({"statusCode":200,"body":"eA==")"),
          large}) {
        write("echo '" + line + "'\n" + kAnswer); // only the first line counts

        EXPECT_EQ(get(request()), std::nullopt) << line;
    }
}

TEST_F(QtUrlLoadingProcessTest, UnknownMembersOfTheResponseAreIgnored) {
    write(R"(echo '{"new":[1],"statusCode":404}')");

    EXPECT_THAT(get(request()), Optional(UrlResponse{404, std::nullopt}));
}

TEST_F(QtUrlLoadingProcessTest, AHelperThatNeverStopsWritingIsKilled) {
    writeWithId("exec cat /dev/zero");

    EXPECT_EQ(get(request()), std::nullopt);
    EXPECT_TRUE(hasEnded());
}

TEST_F(QtUrlLoadingProcessTest, AHelperThatDoesNotRespondIsKilledAtTheTimeLimit) {
    writeWithId("trap '' TERM HUP INT\nexec sleep 1000");
    UrlRequest hurried = request();
    // Doubles the time limit until the helper has started even on a busy machine.
    for (hurried.timeLimit = 100ms; !std::filesystem::exists(file("id")); hurried.timeLimit *= 2)
        EXPECT_EQ(get(hurried), std::nullopt);

    EXPECT_TRUE(hasEnded());
}

TEST_F(QtUrlLoadingProcessTest, AHelperThatRespondsAndDoesNotExitIsKilled) {
    writeWithId(std::string(kAnswer) + "\nexec sleep 1000");

    EXPECT_EQ(get(request()), kAnswered);
    EXPECT_TRUE(hasEnded());
}

TEST_F(QtUrlLoadingProcessTest, AHelperThatClosesItsInputUnreadMayRespond) {
    write(std::string("exec <&-\n") + kAnswer);
    UrlRequest large = request("https://127.0.0.1/" + std::string(1'000'000, 'x'));

    EXPECT_EQ(get(large), kAnswered);
}

TEST_F(QtUrlLoadingProcessTest, ACancelledRequestKillsTheHelper) {
    writeWithId("exec sleep 1000");
    bool isDone = false;
    auto load = loading.load(request(), [&](const auto&) { isDone = true; });
    EXPECT_TRUE(hasStarted());

    load.reset();

    EXPECT_TRUE(hasEnded());
    EXPECT_FALSE(isDone);
}

TEST_F(QtUrlLoadingProcessTest, AHelperDoesNotOutliveThePort) {
    writeWithId("exec sleep 1000");
    {
        QtUrlLoadingProcess brief({folder.path().string()});
        const auto load = brief.load(request(), [](const auto&) {});
        EXPECT_TRUE(hasStarted());
    }

    EXPECT_TRUE(hasEnded());
}

TEST_F(QtUrlLoadingProcessTest, TheCallbackMayCancelTheRequest) {
    write(kAnswer);
    SubscriptionPtr load;
    const auto captured = std::make_shared<int>(7);
    int seen = 0;
    load = loading.load(request(), [&load, &seen, captured](const auto&) {
        load.reset();
        seen = *captured;
    });

    EXPECT_TRUE(loopUntil([&] { return seen == 7; }));
}

} // namespace
} // namespace tessarel::qt
